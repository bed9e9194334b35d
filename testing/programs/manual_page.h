#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::testing {

/// An entry of a list of a manual page: `.It`.
struct ManualItem {
  std::string section;    // the heading above it, of `.Sh` or `.Ss`
  std::string heading;    // what follows `.It`, as it is written
  std::string paragraph;  // its first paragraph, the lines joined by blanks
};

/// Every list entry of a page written in mdoc, in the order of the page.
std::vector<ManualItem> ItemsOf(const std::filesystem::path& page);

/// The options that a heading "Fl p , -payload Ar payload" names: "-p" and "--payload".
std::vector<std::string> OptionsIn(std::string_view heading);

/// The text that a line of a literal block prints: without the escapes of mdoc.
std::string WithoutEscapes(std::string_view line);

/// The manual pages of the source tree below `root`, by name.
std::vector<std::filesystem::path> ManualPages(const std::filesystem::path& root);

}  // namespace fernwick::testing
