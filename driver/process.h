#pragma once

#include "platform/fault.h"

namespace fernwick {

/// What every program does before anything else: a broken pipe and a file that reaches the limit of
/// its size become a failed write instead of a silent death, and no file that is opened later can
/// get the descriptor of a standard stream that was closed.
void PrepareProcess();

/// From now on, when memory runs out, the process says so on standard error and ends with `status`,
/// with nothing more on standard output.
void EndWhenOutOfMemory(int status);

/// Ends the process abnormally (SIGABRT) after a line in the system log alone that says which fault
/// it was. For main, when a run returned one.
[[noreturn]] void LogAndAbort(Fault fault);

}  // namespace fernwick
