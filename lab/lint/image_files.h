#pragma once

#include <map>
#include <optional>
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
  /// store. REQUIRES: the path is that of a regular file.
  void LintUtility(std::string_view name, const std::string& path, std::size_t offset) {
    Read(name, path, offset);
  }

  /// The same, and reports an image with the same bytes as an earlier one of another name, and one
  /// that is outside the board directory because of a link.
  void LintImage(std::string_view name, const std::string& path, const std::string& boardDirectory,
                 std::size_t offset);

 private:
  // The contents of the file; nullopt when something was reported.
  std::optional<std::string> Read(std::string_view name, const std::string& path,
                                  std::size_t offset);

  ConfigurationFindings& findings_;
  std::map<std::pair<std::size_t, std::size_t>, std::string> images_;  // by size and hash
};

}  // namespace fernwick::lab
