#pragma once

#include <map>
#include <string>
#include <vector>

#include "lab/support/tool_run.h"
#include "lab/survey/diff/personality_pairs.h"

namespace fernwick::lab {

/// The lines of the system log of a run, each once: they say why there is no configuration or no
/// plan.
std::vector<std::string> LogLines(const ToolRun& run);

/// Why a controller has a match in one run alone. Views both runs.
class MatchReasons {
 public:
  MatchReasons(const ToolRun& before, const ToolRun& after) : before_(before), after_(after) {}

  /// Why the old payload's counterpart of the personality of a match of the new run does not
  /// match.
  std::vector<std::string> WithoutInOld(const MatchedPair& pair);

  /// The same of a match of the old run and the new payload.
  std::vector<std::string> WithoutInNew(const MatchedPair& pair);

 private:
  // One of both runs, as the reasons name its payload.
  struct Other {
    const ToolRun& run;
    const char* payload;
  };

  // For each personality of the one payload the index of its counterpart in the other.
  struct Counterparts {
    PersonalityPairs ofOld;
    PersonalityPairs ofNew;
  };

  std::vector<std::string> Reasons(const MatchedPair& pair, const Other& other);
  std::optional<std::size_t> CounterpartOf(const MatchedPair& pair, const Other& other);
  const Counterparts& CounterpartsOf(std::string_view type);

  const ToolRun& before_;
  const ToolRun& after_;
  std::map<std::string, Counterparts, std::less<>> counterparts_;  // by type, once asked for
};

}  // namespace fernwick::lab
