#include "testing/programs/report_lines.h"

#include <sstream>
#include <string_view>

namespace fernwick::testing {
namespace {

// Whether the line has the label; stores what follows the label and its blanks.
bool ReadValueOf(std::string_view line, std::string_view label, std::string& value) {
  if (!line.starts_with(label)) return false;
  line.remove_prefix(label.size());
  const auto start = line.find_first_not_of(' ');
  value = start == std::string_view::npos ? "" : line.substr(start);
  return true;
}

}  // namespace

std::vector<ReportedMatch> ReportedMatches(const std::string& verboseOutput) {
  std::vector<ReportedMatch> matches;
  std::istringstream lines(verboseOutput);
  for (std::string line; std::getline(lines, line);) {
    std::string value;
    if (ReadValueOf(line, "\tPERSONALITY_TYPE:", value)) matches.push_back({value, "", ""});
    if (ReadValueOf(line, "\tRID:", value)) matches.back().rid = value;
    if (ReadValueOf(line, "\tCONFIG_FIRMWARE_NAME:", value)) matches.back().firmware = value;
  }
  return matches;
}

}  // namespace fernwick::testing
