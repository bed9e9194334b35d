#pragma once

namespace fernwick {

/// What every program does before anything else: a broken pipe becomes a failed write instead of a
/// silent death, and no file that is opened later can take the place of a standard stream that was
/// closed.
void PrepareProcess();

}  // namespace fernwick
