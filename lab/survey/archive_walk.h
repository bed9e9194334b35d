#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "lab/survey/selected.h"
#include "platform/file_system.h"

struct archive;
struct archive_entry;

namespace fernwick::lab {

struct GzipInput;

/// Whether a file of this name is a recording: "*.registry.plist".
bool HasRecordingSuffix(std::string_view name);

/// Whether a file of this name is an archive: ".tar", ".tar.gz", ".tgz", ".tar.xz", ".txz",
/// ".tar.zst", ".tzst" or ".zip".
bool HasArchiveSuffix(std::string_view name);

/// Whether the path is to be read as an archive: because of its suffix or, for a file that has
/// neither that nor the suffix of a recording, because it begins as an archive does. A directory is
/// none.
bool IsArchive(const std::string& path);

/// Goes over every "*.registry.plist" in an archive, in its order: a tar archive, which may be
/// compressed by gzip, xz or zstd, or a zip file. Only regular files without encryption are read,
/// into memory alone: a name may be any text. Archives inside archives are not opened.
///
/// An archive that is damaged, truncated, or expands to more than 1 GiB plus 1000 times its size is
/// read up to there and ends with one result for itself. A damaged member of a zip file has an
/// error of its own.
class ArchiveWalk {
 public:
  /// A member of more than `maxSize` bytes has an error.
  ArchiveWalk(std::string path, std::size_t maxSize) : path_(std::move(path)), maxSize_(maxSize) {}

  /// Reads the next recording as a whole. Empty at the end.
  std::optional<Selected> Next();

 private:
  struct Close {
    void operator()(archive* opened) const;
    void operator()(GzipInput* input) const;
  };

  std::optional<Selected> Open();
  int OpenFile();
  std::optional<Selected> NextMember();
  std::optional<Selected> AtEnd();
  std::optional<Selected> MemberOf(archive_entry* entry);
  Selected Read(archive_entry* entry, std::string path);
  std::optional<Selected> SkipData();
  Selected EndWith(const std::string& error, int status);
  Selected EndWithFault();
  bool ExpandsTooMuch() const;

  std::string path_;
  std::size_t maxSize_;
  bool hasEnded_ = false;
  bool isZip_ = false;
  bool isCompressed_ = false;  // as a whole
  std::size_t size_ = 0;       // of the file
  std::uint64_t read_ = 0;     // bytes of the members that were read
  std::size_t members_ = 0;
  std::optional<Descriptor> file_;
  std::unique_ptr<GzipInput, Close> gzip_;   // reads file_, if that is compressed so
  std::unique_ptr<archive, Close> archive_;  // reads gzip_, otherwise file_
};

}  // namespace fernwick::lab
