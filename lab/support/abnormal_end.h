#pragma once

#include <functional>
#include <optional>
#include <string>

namespace fernwick::lab {

/// Tries `work` in a process of its own, which prints nothing. Returns the fault that ended it
/// abnormally, as the tool names it, or the signal when it was none of the tool's; nothing when it
/// came to its end. Ends the lab as SignalThatEnds does.
std::optional<std::string> FaultThatEnds(const std::function<void()>& work);

}  // namespace fernwick::lab
