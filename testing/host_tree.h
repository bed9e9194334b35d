#pragma once

#include <string>
#include <string_view>

#include "testing/temporary_directory.h"

/// The files of a Linux computer that a registry is read from, as a text. A line is an entry, named
/// by its path from the root or, when it is indented, from the directory above that is indented
/// less:
///
///   # A comment.
///   proc/cmdline = quiet splash               a file: the text and a line feed
///   sys/devices/pci0000:00/0000:00:0d.2/      a directory
///     vendor = 0x2a01                         a file in it
///     domain0/0-0/                            directories in it
///       unique_id : \x00\xFF                  a file of exactly these bytes
///   sys/bus/thunderbolt/devices/
///     0-0 -> ../../../devices/pci0000:00      a symbolic link, and where it leads
///     0-1 |                                   a FIFO
///
/// Two blanks are one level. Directories on the way to an entry are created with it. In names and
/// contents "\xHH" is a byte, "\n" a line feed and "\\" a backslash.
namespace fernwick::testing {

/// Creates what the text describes below `directory`, and nothing elsewhere: no entry is created
/// through a symbolic link or "..". Returns the first line whose entry cannot be created, such as
/// one that exists; all others are created all the same. Empty when there is none.
std::string UnfoldTree(std::string_view description, const std::string& directory);

/// A temporary directory with what the text describes, and the directories "proc" and "sys".
/// A line that cannot be unfolded ends the process.
class HostTree {
 public:
  explicit HostTree(std::string_view description);

  const std::string& Root() const { return directory_.Path(); }

  /// Writes a file that no description should contain, such as a large one.
  void Write(std::string_view path, std::string_view contents) const {
    directory_.Write(path, contents);
  }

 private:
  TemporaryDirectory directory_;
};

}  // namespace fernwick::testing
