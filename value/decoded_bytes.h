#pragma once

#include <cstddef>
#include <string_view>

#include "value/shared_bytes.h"

namespace fernwick {

/// Keeps what a reader had to decode, as it does not stand in the file the way it is meant: many
/// short runs in one block, which lives as long as any of them.
class DecodedBytes {
 public:
  DecodedBytes() = default;
  DecodedBytes(const DecodedBytes&) = delete;  // two would fill the one block
  DecodedBytes& operator=(const DecodedBytes&) = delete;

  /// A copy of `bytes`.
  SharedBytes Keep(std::string_view bytes);

 private:
  struct Block;

  Share share_;  // in the block
  Block* block_ = nullptr;
  std::size_t left_ = 0;  // bytes at the end of the block
};

}  // namespace fernwick
