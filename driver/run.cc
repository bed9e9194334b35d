#include "driver/run.h"

#include <cstring>
#include <string>
#include <utility>

#include "driver/bypass_switch.h"
#include "driver/hardware_listing.h"
#include "personality/matcher.h"
#include "plan/invocation_builder.h"
#include "plan/launcher_plist.h"
#include "plan/match_report.h"
#include "plan/plan_values.h"

namespace fernwick {
namespace {

// Both switches set: the second is not even read.
std::optional<Fault> ReadSwitches(Registry& registry, RunResult& result) {
  const auto bypassesUpdates = ReadBypassSwitch(registry, UpdatesSwitch);
  if (!bypassesUpdates) return bypassesUpdates.Error();
  result.bypassesUpdates = *bypassesUpdates;
  if (result.bypassesUpdates) return std::nullopt;
  const auto bypassesVersion = ReadBypassSwitch(registry, VersionSwitch);
  if (!bypassesVersion) return bypassesVersion.Error();
  result.switchBypassesVersion = *bypassesVersion;
  return std::nullopt;
}

// Turns the matches into the plan and prints it. Returns the status.
int PrintPlan(const Options& options, Console& console, RunResult& result) {
  PlanValues plan;
  InvocationBuilder builder(*options.personalitiesDirectory, result.identity->boardIdString);
  if (options.verbose) PrintMatchReportHeader(console);
  for (const auto& match : result.matches) {
    FoldPriority(match, plan);
    if (options.verbose) PrintMatchReport(console, match);
    if (!builder.AddMatch(match, plan, options.verbose, console)) return ExitStatus::NoMatches;
    ++result.plannedMatches;
  }
  builder.FinishInvocation();
  if (options.verbose) builder.PrintInvocation(console);
  return WritePlan(console, options.verbose, builder.Arguments(), plan);
}

// What a run works with.
struct RunContext {
  const Options& options;
  Registry& registry;
  Console& console;
  RunTrace* trace;
  const ConfigurationLoader& load;
};

// From the header to the plan. Stores the status.
std::optional<Fault> RunWithOptions(const RunContext& context, RunResult& result) {
  const auto& [options, registry, console, trace, load] = context;
  if (!options.accepted) {
    console.WriteError(options.diagnostic);
    result.status = ExitStatus::BadCommandLine;
    return std::nullopt;
  }
  result.identity = ReadBoardIdentity(registry);
  if (options.verbose) {
    PrintHeader(console, *result.identity, options.personalitiesDirectory);
    if (const auto fault = PrintHardware(console, registry)) return fault;
  }
  auto matching = MatchPersonalities({registry, console, result.bypassesVersionCheck, trace, load},
                                     result.identity->boardIdString, result.identity->boardRevision,
                                     options.personalitiesDirectory);
  if (!matching) return matching.Error();
  result.configuration = std::move(matching->configuration);
  result.configurationError = std::move(matching->configurationError);
  result.matches = std::move(matching->matches);
  result.status =
      result.matches.empty() ? ExitStatus::NoMatches : PrintPlan(options, console, result);
  return std::nullopt;
}

std::optional<Fault> RunToStatus(const RunContext& context, RunResult& result) {
  const auto& [options, registry, console, trace, load] = context;
  if (const auto fault = ReadSwitches(registry, result)) return fault;
  if (result.bypassesUpdates) {
    // The options count from here on: not even the verbose one has an effect before.
    console.Write("USB-C Updates bypassed because fernwick_bypass_usbc_updates boot arg was set\n");
    return std::nullopt;
  }
  result.bypassesVersionCheck = result.switchBypassesVersion || options.bypassVersionCheck;
  const auto fault = RunWithOptions(context, result);
  if (!fault && options.verbose) {
    console.Print("\n\nExit status: %u\n", static_cast<unsigned>(result.status));
  }
  return fault;
}

}  // namespace

RunResult Run(const Options& options, Registry& registry, Console& console, RunTrace* trace,
              const ConfigurationLoader& load) {
  RunResult result;
  result.fault = RunToStatus({options, registry, console, trace, load}, result);
  if (result.fault) return result;
  console.Flush();
  if (console.OutputError() == 0) return result;
  console.WriteError("fernwick: standard output could not be written: " +
                     std::string(std::strerror(console.OutputError())) + "\n");
  if (result.status == ExitStatus::PlanPrinted) result.status = ExitStatus::OutputLost;
  return result;
}

}  // namespace fernwick
