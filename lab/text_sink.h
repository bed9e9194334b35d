#pragma once

#include <functional>
#include <string_view>

namespace fernwick::lab {

/// Takes a text piece by piece, so that nobody need hold a long one as a whole.
using TextSink = std::function<void(std::string_view)>;

}  // namespace fernwick::lab
