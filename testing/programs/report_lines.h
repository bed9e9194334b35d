#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace fernwick::testing {

/// What the verbose report shows of one match that distinguishes it from the others.
struct ReportedMatch {
  std::string type;
  std::string rid;
  std::string firmware;

  friend bool operator==(const ReportedMatch&, const ReportedMatch&) = default;
};

/// How a failed comparison shows it.
inline void PrintTo(const ReportedMatch& match, std::ostream* out) {
  *out << match.type << ", RID " << match.rid << ", " << match.firmware;
}

/// The matches of a verbose run's report, in its order.
std::vector<ReportedMatch> ReportedMatches(const std::string& verboseOutput);

}  // namespace fernwick::testing
