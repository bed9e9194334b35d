#pragma once

#include <functional>

namespace fernwick::lab {

/// Tries `work` in a process of its own, which prints nothing. Returns the signal that ended it, or
/// 0 when none did. REQUIRES: a process can be started.
int SignalThatEnds(const std::function<void()>& work);

}  // namespace fernwick::lab
