#pragma once

namespace fernwick {

/// What every program does before anything else: a broken pipe becomes a failed write instead of a
/// silent death; no file that is opened later can take the place of a standard stream that was
/// closed; and when memory runs out, the process says so on standard error and ends with
/// `outOfMemoryStatus`, with nothing more on standard output.
void PrepareProcess(int outOfMemoryStatus);

}  // namespace fernwick
