#pragma once

namespace fernwick {

/// What every program does before anything else: a broken pipe becomes a failed write instead of a
/// silent death, and no file that is opened later can take the place of a standard stream that was
/// closed.
void PrepareProcess();

/// From now on, when memory runs out, the process says so on standard error and ends with `status`,
/// with nothing more on standard output.
void EndWhenOutOfMemory(int status);

}  // namespace fernwick
