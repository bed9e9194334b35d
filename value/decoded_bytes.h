#pragma once

#include <cstddef>
#include <string_view>

#include "value/shared_bytes.h"

namespace fernwick {

/// Keeps what a reader had to decode, as it does not stand in the file the way it is meant: many
/// short runs in one block, which lives as long as any of them. REQUIRES: it is not copied, as both
/// would fill the one block.
class DecodedBytes {
 public:
  /// A copy of `bytes`.
  SharedBytes Keep(std::string_view bytes);

 private:
  struct Block;

  Share share_;  // in the block
  Block* block_ = nullptr;
  std::size_t left_ = 0;  // bytes at the end of the block
};

}  // namespace fernwick
