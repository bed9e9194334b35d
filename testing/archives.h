#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <string>
#include <vector>

// Archives in memory, for tests that link the lab.

namespace fernwick::testing {

/// A member of an archive: a regular file, or what `type` says (AE_IFLNK with the target `link`,
/// ...); a regular file with a link is a hard link.
struct ArchiveMember {
  std::string name;
  std::string bytes = {};
  __LA_MODE_T type = AE_IFREG;
  std::string link = {};
};

inline la_ssize_t AppendArchiveBytes(archive*, void* text, const void* bytes, std::size_t size) {
  static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), size);
  return static_cast<la_ssize_t>(size);
}

inline void WriteArchiveMember(archive* written, const ArchiveMember& member) {
  archive_entry* entry = archive_entry_new();
  archive_entry_set_pathname(entry, member.name.c_str());
  archive_entry_set_filetype(entry, member.type);
  archive_entry_set_perm(entry, 0644);
  archive_entry_set_size(entry, static_cast<la_int64_t>(member.bytes.size()));
  if (member.type == AE_IFLNK) archive_entry_set_symlink(entry, member.link.c_str());
  if (member.type == AE_IFREG && !member.link.empty()) {
    archive_entry_set_hardlink(entry, member.link.c_str());
  }
  archive_write_header(written, entry);
  archive_write_data(written, member.bytes.data(), member.bytes.size());
  archive_entry_free(entry);
}

/// The bytes of an archive: of a tar archive with a filter (ARCHIVE_FILTER_GZIP, ...), or of a zip
/// file, to which no filter applies.
inline std::string ArchiveOf(const std::vector<ArchiveMember>& members,
                             int format = ARCHIVE_FORMAT_TAR_GNUTAR,
                             int filter = ARCHIVE_FILTER_NONE) {
  std::string text;
  archive* written = archive_write_new();
  archive_write_set_format(written, format);
  archive_write_add_filter(written, filter);
  archive_write_set_bytes_in_last_block(written, 1);
  archive_write_open(written, &text, nullptr, AppendArchiveBytes, nullptr);
  for (const auto& member : members) WriteArchiveMember(written, member);
  archive_write_free(written);
  return text;
}

}  // namespace fernwick::testing
