#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "lab/lint/finding.h"

namespace fernwick::lab {

/// The contents of the images and utilities of one board. Each file is read once.
class ImageFiles {
 public:
  explicit ImageFiles(ConfigurationFindings& findings) : findings_(findings) {}

  /// Reports a file that has no contents, cannot be read, or is the pointer file of a large-file
  /// store. False when it was reported. REQUIRES: the path is that of a regular file.
  bool Lint(std::string_view name, const std::string& path, std::size_t offset);

  /// Reports an image with the same bytes as an earlier one of another name, and one that is
  /// outside the board directory because of a link. REQUIRES: Lint returned true.
  void LintImage(std::string_view name, const std::string& path, const std::string& boardDirectory,
                 std::size_t offset);

 private:
  ConfigurationFindings& findings_;
  std::map<std::pair<std::size_t, std::size_t>, std::string> images_;  // by size and hash
};

}  // namespace fernwick::lab
