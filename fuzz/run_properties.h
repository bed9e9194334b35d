#pragma once

#include <optional>
#include <string>
#include <vector>

#include "driver/options.h"
#include "driver/run.h"
#include "platform/console.h"
#include "platform/fault.h"
#include "registry/registry.h"

namespace fernwick::fuzz {

/// How a run ended and what it printed.
struct RunOutcome {
  int status = 0;
  std::optional<Fault> fault = std::nullopt;
  std::string standardOutput = {};
  std::string standardError = {};

  friend bool operator==(const RunOutcome&, const RunOutcome&) = default;
};

RunOutcome OutcomeOf(const RunResult& result, const StringConsole& console);

/// The options of the tool's command line.
Options OptionsOf(const std::vector<std::string>& arguments);

/// Runs the tool over the registry. `trace` may be null.
RunOutcome RunTool(Registry& registry, const Options& options, RunTrace* trace = nullptr);

/// Checks what a run prints when: the plan and nothing else, or nothing at all. `outcome` is that
/// of a command line as it is, `verbose` that of the same with "-v" before it.
void CheckOutcomes(const RunOutcome& outcome, const RunOutcome& verbose, bool bypassesUpdates);

}  // namespace fernwick::fuzz
