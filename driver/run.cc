#include "driver/run.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "driver/bypass_switch.h"
#include "driver/hardware_listing.h"
#include "driver/options.h"
#include "personality/bypass_flags.h"
#include "personality/matcher.h"
#include "plan/invocation_builder.h"
#include "plan/launcher_plist.h"
#include "plan/match_report.h"
#include "plan/plan_values.h"
#include "platform/output.h"
#include "registry/board_identity.h"

namespace fernwick {
namespace {

// Both switches set: the second is not even read.
void ReadSwitches(Registry& registry) {
  BypassUsbcUpdates = ReadBypassSwitch(registry, "fernwick_bypass_usbc_updates");
  if (BypassUsbcUpdates == 0 && BypassVersionCheck == 0) {
    BypassVersionCheck = ReadBypassSwitch(registry, "fernwick_bypassversioncheck");
  }
}

// Turns the matches into the plan and prints it.
int PrintPlan(const std::vector<MatchRecord>& matches, const BoardIdentity& identity,
              const Options& options, Output& out, RunRecorder* recorder) {
  PlanValues plan;
  InvocationBuilder builder(*options.personalitiesDirectory, identity.boardIdString);
  if (options.verbose) PrintMatchReportHeader(out);
  for (const auto& match : matches) {
    FoldPriority(match, plan);
    if (options.verbose) PrintMatchReport(out, match);
    if (!builder.AddMatch(match, plan, options.verbose ? &out : nullptr)) {
      return ExitStatus::NoMatches;
    }
    if (recorder != nullptr) ++recorder->plannedMatches;
  }
  builder.FinishInvocation();
  if (options.verbose) builder.PrintInvocation(out);
  return WritePlan(out, options.verbose, builder.Arguments(), plan);
}

int RunWithOptions(const Options& options, Registry& registry, Output& out, RunRecorder* recorder) {
  if (!options.accepted) return ExitStatus::BadCommandLine;
  const auto identity = ReadBoardIdentity(registry);
  if (recorder != nullptr) recorder->identity = identity;
  if (options.verbose) {
    PrintHeader(out, identity, options.personalitiesDirectory);
    PrintHardware(out, registry);
  }
  const auto matches = MatchPersonalities(registry, identity.boardIdString, identity.boardRevision,
                                          options.personalitiesDirectory,
                                          recorder == nullptr ? nullptr : &recorder->matching);
  if (!matches) return ExitStatus::NoMatches;
  if (recorder != nullptr) recorder->matches = *matches;
  return PrintPlan(*matches, identity, options, out, recorder);
}

int RunToStatus(int argumentCount, char* const arguments[], Registry& registry, Output& out,
                RunRecorder* recorder) {
  BypassVersionCheck = 0;
  ReadSwitches(registry);
  if (recorder != nullptr) {
    recorder->bypassesUpdates = BypassUsbcUpdates != 0;
    recorder->switchBypassesVersion = BypassVersionCheck != 0;
  }
  if (BypassUsbcUpdates != 0) {
    // The options have not been read: not even the verbose one has an effect here.
    out.Write("USB-C Updates bypassed because fernwick_bypass_usbc_updates boot arg was set\n");
    return ExitStatus::PlanPrinted;
  }
  const auto options = ParseOptions(argumentCount, arguments);
  if (options.bypassVersionCheck) BypassVersionCheck = 1;
  if (recorder != nullptr) {
    recorder->options = options;
    recorder->bypassesVersionCheck = BypassVersionCheck != 0;
  }
  const int status = RunWithOptions(options, registry, out, recorder);
  if (options.verbose) out.Print("\n\nExit status: %u\n", static_cast<unsigned>(status));
  return status;
}

}  // namespace

int Run(int argumentCount, char* const arguments[], Registry& registry, std::FILE* stream,
        RunRecorder* recorder) {
  Output out(stream);
  const int status = RunToStatus(argumentCount, arguments, registry, out, recorder);
  out.Flush();
  if (out.Error() == 0) return status;
  std::fprintf(stderr, "fernwick: standard output could not be written: %s\n",
               std::strerror(out.Error()));
  return status == ExitStatus::PlanPrinted ? ExitStatus::OutputLost : status;
}

}  // namespace fernwick
