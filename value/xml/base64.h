#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fernwick {

/// Decodes the standard alphabet with its padding; XML white space may be anywhere. Empty when
/// the text is anything else.
std::optional<std::string> DecodeBase64(std::string_view text);

/// Encodes with padding, on one line.
std::string EncodeBase64(std::string_view bytes);

}  // namespace fernwick
