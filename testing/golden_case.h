#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace fernwick::testing {

/// A run that a file in golden/ describes. A line is "key: value" or begins with "#".
///   recording: the recorded computer, relative to golden/
///   options:   options of the tool, separated by blanks
///   argument:  one argument of the tool, blanks and all
///   payload:   the payload directory, relative to golden/; becomes a last option -p
struct GoldenCase {
  std::string name;  // of the file, without its ".case"
  std::string recording;
  std::vector<std::string> options;  // arguments, too
  std::string payload;               // empty: none

  /// The tool's command line without its name.
  std::vector<std::string> ToolArguments() const;
};

/// A line of another key fails the test.
GoldenCase ReadGoldenCase(const std::filesystem::path& file);

/// Those of every "*.case" in a directory, by name.
std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& directory);

}  // namespace fernwick::testing
