#pragma once

#include <optional>
#include <string>

#include "platform/fault.h"

namespace fernwick::fuzz {

/// How a run ended and what it printed.
struct RunOutcome {
  int status = 0;
  std::optional<Fault> fault = std::nullopt;
  std::string standardOutput = {};
  std::string standardError = {};

  friend bool operator==(const RunOutcome&, const RunOutcome&) = default;
};

/// Checks what a run prints when: the plan and nothing else, or nothing at all. `outcome` is that
/// of a command line as it is, `verbose` that of the same with "-v" before it.
void CheckOutcomes(const RunOutcome& outcome, const RunOutcome& verbose, bool bypassesUpdates);

}  // namespace fernwick::fuzz
