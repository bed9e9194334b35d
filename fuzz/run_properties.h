#pragma once

#include <string>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// What a run gave.
struct RunOutcome {
  int status;
  std::string standardOutput;
  std::string standardError;

  friend bool operator==(const RunOutcome&, const RunOutcome&) = default;
};

/// One run of the tool over the computer, `arguments` behind its own name.
RunOutcome RunTool(const Recording& recording, const std::vector<std::string>& arguments);

/// Holds a run to what is printed when: the plan and nothing else, or nothing at all.
/// `outcome` is that of the arguments as they are, `verbose` that of the same with "-v" before
/// them.
void HoldOutcomes(const RunOutcome& outcome, const RunOutcome& verbose, bool isBypassed);

}  // namespace fernwick::fuzz
