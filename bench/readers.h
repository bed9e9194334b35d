#pragma once

#include <span>
#include <string>
#include <string_view>

namespace fernwick::bench {

/// One way to read a property list, or only to look through it.
struct Reader {
  std::string_view name;
  bool readsXml;
  bool readsBinary;

  /// Reads `file`, and returns the processor time of that in seconds; copying the file and
  /// releasing what was read are not counted. Ends the program when the file cannot be read.
  double (*secondsToRead)(std::string file);
};

/// All that were compiled in, ours first.
std::span<const Reader> Readers();

/// Those that were not, as their packages are missing: "libplist (libplist-dev)".
std::span<const std::string_view> MissingReaders();

}  // namespace fernwick::bench
