#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "value/shared_bytes.h"

namespace fernwick {

/// The text of a file, decoded as far as its byte-order mark tells how.
struct SourceText {
  SourceBuffer buffer;              // holds the text
  std::string_view text;            // without the byte-order mark
  bool hasByteOrderMark = false;    // then the text is UTF-8, whatever it says of itself
  bool endsInInvalidUtf16 = false;  // then the text is what stands before the fault
};

/// Looks for a byte-order mark and transcodes UTF-16. Bytes without a mark are taken as they are;
/// that they are UTF-8 is not checked here.
SourceText DecodeSource(SourceBuffer bytes);

/// A source that holds `text` in a buffer of its own.
SourceText OwnedSource(std::string text);

/// `text` as a share in the source's buffer where it views that, or as a copy where it views
/// `decoded`. REQUIRES: it lies in the source's buffer or begins where `decoded` does.
SharedBytes SharedOrCopied(const SourceText& source, const std::string& decoded,
                           std::string_view text);

}  // namespace fernwick
