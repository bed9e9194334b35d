#pragma once

#include <functional>
#include <string_view>

namespace fernwick {

/// Accepts a text in parts, so that a long one is never in memory as a whole.
using TextSink = std::function<void(std::string_view)>;

}  // namespace fernwick
