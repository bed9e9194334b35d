#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::fuzz {

/// A whole run in one input that can be read and written by hand: a line with the command line,
/// then the recorded computer, a zero byte, the configuration.
struct PackedRun {
  std::string_view options;  // words, blanks between them; "@" in one is replaced by the payload
  std::string_view recording;
  std::string_view configuration;
};

/// Views `input`. What is missing is empty.
PackedRun Unpack(std::string_view input);

/// The bytes from which Unpack returns the run again.
std::string Pack(const PackedRun& run);

/// The words of the command line, "@" replaced by `payload`.
std::vector<std::string> WordsOf(std::string_view options, std::string_view payload);

}  // namespace fernwick::fuzz
