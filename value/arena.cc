#include "value/arena.h"

#include <algorithm>
#include <utility>

namespace fernwick {
namespace {

// Each block is as large as all before it together, within these limits: a small document uses
// little memory, and a large one needs few calls of the allocator.
constexpr std::size_t MinBlockSize = 4096;
constexpr std::size_t MaxBlockSize = std::size_t{1} << 20;

}  // namespace

Arena::Arena(Arena&& other) noexcept
    : next_(std::exchange(other.next_, nullptr)),
      left_(std::exchange(other.left_, 0)),
      size_(std::exchange(other.size_, 0)),
      blocks_(std::move(other.blocks_)),
      adopted_(std::move(other.adopted_)) {}

Arena& Arena::operator=(Arena&& other) noexcept {
  next_ = std::exchange(other.next_, nullptr);
  left_ = std::exchange(other.left_, 0);
  size_ = std::exchange(other.size_, 0);
  blocks_ = std::exchange(other.blocks_, {});
  adopted_ = std::exchange(other.adopted_, {});
  return *this;
}

// An allocation of more than a quarter of a block gets a block of its own, and the current block
// stays in use. At most a quarter of a block is therefore left unused when the next one begins.
void* Arena::AllocateInNewBlock(std::size_t size) {
  const std::size_t blockSize = std::clamp(size_, MinBlockSize, MaxBlockSize);
  const bool isLarge = size > blockSize / 4;
  const std::size_t allocated = isLarge ? size : blockSize;
  char* block = blocks_.emplace_back(std::make_unique_for_overwrite<char[]>(allocated)).get();
  size_ += allocated;
  if (isLarge) return block;
  next_ = block + size;
  left_ = blockSize - size;
  return block;
}

std::string_view Arena::Copy(std::string_view text) {
  char* copy = Allocate<char>(text.size());
  std::ranges::copy(text, copy);
  return {copy, text.size()};
}

std::string_view Arena::Adopt(std::string text) {
  size_ += text.size();
  return adopted_.emplace_front(std::move(text));
}

}  // namespace fernwick
