#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace fernwick {

/// Read-only access to the files of a computer below a root directory: "/", or a copy of another
/// computer's files. Paths are relative to the root. Whatever cannot be read is absent: no call
/// fails in another way, waits for anything or changes anything.
class HostFiles {
 public:
  /// Links in a copy are followed as on the copied computer, with the copy as "/": nothing outside
  /// it is ever read. That needs openat2(2), Linux 5.6; where the system has none, a copy cannot be
  /// opened, since its links would lead to the files of this computer.
  explicit HostFiles(const std::string& root);

  /// Why a copy has no files: its directory cannot be opened, or has neither "proc" nor "sys".
  /// Empty when it has files, and for "/".
  const std::string& RootError() const { return rootError_; }

  /// Whether a symbolic link at the end of a path is followed. Those before it always are.
  enum class Links { Followed, Ignored };

  /// The contents of a regular file; absent when it has more than `maxSize` bytes.
  std::optional<std::string> Read(const std::string& path, std::size_t maxSize,
                                  Links links = Links::Followed) const;

  /// Whether there is a directory, links followed.
  bool IsDirectory(const std::string& path) const;

  /// The names in a directory by the kind of the entry, each list in byte order. Entries of other
  /// kinds are left out.
  struct Listing {
    std::vector<std::string> files = {};  // regular ones
    std::vector<std::string> directories = {};
    std::vector<std::string> links = {};
  };

  /// Empty lists when the directory cannot be read.
  Listing List(const std::string& path) const;

 private:
  std::string CopyError() const;
  Descriptor Open(const std::string& path, int flags) const;

  const bool isCopy_;
  Descriptor root_;  // of a copy
  std::string rootError_;
};

}  // namespace fernwick
