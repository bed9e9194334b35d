#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "driver/options.h"
#include "personality/configuration.h"
#include "personality/match_record.h"
#include "personality/run_trace.h"
#include "platform/console.h"
#include "platform/fault.h"
#include "registry/board_identity.h"
#include "registry/registry.h"
#include "value/property_list_reader.h"

namespace fernwick {

/// The exit statuses of a run.
namespace ExitStatus {
inline constexpr int PlanPrinted = 0;  // or USB-C updates are bypassed by a switch
inline constexpr int EmptyPlan = 1;    // unreachable: the builder always adds the options argument
inline constexpr int BadCommandLine = 2;
inline constexpr int NoMatches = 13;
inline constexpr int OutOfMemory = 71;  // of the process, not of a run
inline constexpr int OutputLost = 74;   // instead of 0: the plan could not be written
}  // namespace ExitStatus

/// What a run found and decided, as far as it went. The matches view the configuration and the
/// registry: it is valid as long as the registry, also when it is moved.
struct RunResult {
  int status = ExitStatus::PlanPrinted;  // of no meaning when there is a fault
  std::optional<Fault> fault = {};       // the run ended abnormally
  bool bypassesUpdates = false;          // by a switch, which ends the run
  bool switchBypassesVersion = false;    // a switch does what the option --bypassVersion does
  bool bypassesVersionCheck = false;     // by an option or a switch
  std::optional<BoardIdentity> identity = {};
  std::optional<PropertyList> configuration = {};  // as it was loaded, its value of whatever kind
  std::optional<Error> configurationError = {};    // why there is none, where one was looked for
  std::vector<MatchRecord> matches = {};  // in the order of the plan; empty without a match
  std::size_t plannedMatches = 0;         // fewer than matches when the next one ended the run
};

/// One whole run of the tool over `registry`, which prints to `console` alone. Nothing is kept from
/// an earlier run, and runs with a registry and a console of their own may happen in several
/// threads. After a fault nothing more may be printed: what was not flushed by then is lost.
/// `trace` may be null. `load` returns the configuration; the tool's reads the board's file.
RunResult Run(const Options& options, Registry& registry, Console& console,
              RunTrace* trace = nullptr,
              const ConfigurationLoader& load = LoadPersonalityConfiguration);

}  // namespace fernwick
