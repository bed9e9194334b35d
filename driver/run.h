#pragma once

#include <cstdio>

#include "driver/run_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// The exit statuses of a run.
namespace ExitStatus {
inline constexpr int PlanPrinted = 0;  // or USB-C updates are bypassed by a switch
inline constexpr int EmptyPlan = 1;    // a guard that is never reached
inline constexpr int BadCommandLine = 2;
inline constexpr int NoMatches = 13;
inline constexpr int OutputLost = 74;  // in place of 0: the plan did not arrive
}  // namespace ExitStatus

/// One whole run of the tool over `registry`: what a process does between its start and its exit.
/// Returns the exit status. The plan goes to `stream`; option parser, system log and requirement
/// checks write to standard error by themselves. Nothing is kept from an earlier run. REQUIRES:
/// arguments[argumentCount] is null. A recorder learns what the run finds and decides and changes
/// nothing; the tool gives none (null).
int Run(int argumentCount, char* const arguments[], Registry& registry, std::FILE* stream,
        RunRecorder* recorder = nullptr);

}  // namespace fernwick
