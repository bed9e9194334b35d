#pragma once

#include <functional>
#include <string_view>

namespace fernwick::fuzz {

/// Holds `work`, which is foreseen to end its process abnormally, to that, and to telling `fault`
/// in the system log. It runs in a process of its own, whose coverage the fuzzing engine does not
/// see. That is slow, so that of a great many such inputs only some are tried.
void HoldAbnormalEnd(const std::function<void()>& work, std::string_view fault);

}  // namespace fernwick::fuzz
