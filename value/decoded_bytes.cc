#include "value/decoded_bytes.h"

#include <algorithm>
#include <string>

namespace fernwick {
namespace {

constexpr std::size_t BlockSize = 4000;

// Longer runs have a block of their own: they would leave too much of one unused.
constexpr std::size_t LongestRun = BlockSize / 4;

}  // namespace

struct DecodedBytes::Block final : Shared {
  char bytes[BlockSize];
};

SharedBytes DecodedBytes::Keep(std::string_view bytes) {
  if (bytes.empty()) return {};
  if (bytes.size() > LongestRun) return SharedBytes(std::string(bytes));
  if (bytes.size() > left_) {
    block_ = new Block;
    share_ = Share(block_);
    left_ = BlockSize;
  }
  char* kept = block_->bytes + (BlockSize - left_);
  std::ranges::copy(bytes, kept);
  left_ -= bytes.size();
  return {share_, {kept, bytes.size()}};
}

}  // namespace fernwick
