#pragma once

#include <cstddef>
#include <string_view>

#include "value/arena.h"

namespace fernwick {

/// The text of a file, decoded as far as its byte-order mark determines the encoding.
struct SourceText {
  std::string_view text;            // without the byte-order mark
  bool hasByteOrderMark = false;    // then the text is UTF-8, whatever it says of itself
  bool endsInInvalidUtf16 = false;  // then the text ends before the fault
};

/// Looks for a byte-order mark and transcodes UTF-16 into `arena`. Bytes without a mark are not
/// transcoded: the text then views `bytes`, and that it is UTF-8 is not checked here.
SourceText DecodeSource(std::string_view bytes, Arena& arena);

}  // namespace fernwick
