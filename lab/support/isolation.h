#pragma once

#include <functional>

namespace fernwick::lab {

/// Tries `work` in a process of its own, which prints nothing. Returns the signal that ended it, or
/// 0 when none did. When no process can be started it ends the lab, with a line on standard error
/// and LabStatus::NoProcess: what may end abnormally is not to be tried without one.
int SignalThatEnds(const std::function<void()>& work);

}  // namespace fernwick::lab
