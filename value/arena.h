#pragma once

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace fernwick {

/// An arena with bump allocation: it allocates from large blocks by advancing a pointer, and frees
/// everything at once when it is destroyed. An allocation costs an addition and a comparison, plus
/// an amortised share of a new block; there is no way to free a single allocation. Addresses stay
/// valid when the arena is moved. Not for use by two threads at once.
class Arena {
 public:
  Arena() = default;
  Arena(Arena&& other) noexcept;
  Arena& operator=(Arena&& other) noexcept;
  ~Arena() = default;

  /// Room for `count` elements, uninitialised. The elements are never destroyed.
  template <typename T>
  T* Allocate(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= alignof(std::max_align_t));
    return static_cast<T*>(AllocateBytes(count * sizeof(T), alignof(T)));
  }

  /// A copy of the elements. They are trivially copyable, and their copy views what they view.
  template <typename T>
  std::span<const T> Copy(std::span<const T> elements) {
    static_assert(std::is_trivially_copyable_v<T>);
    T* copy = Allocate<T>(elements.size());
    std::uninitialized_copy(elements.begin(), elements.end(), copy);
    return {copy, elements.size()};
  }

  /// A copy of the text.
  std::string_view Copy(std::string_view text);

  /// The same text, owned by the arena from now on without a copy: for whole files.
  std::string_view Adopt(std::string text);

  /// Bytes of all blocks and of all that was adopted.
  std::size_t Size() const { return size_; }

 private:
  void* AllocateBytes(std::size_t size, std::size_t alignment) {
    const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(next_) & (alignment - 1);
    if (size + skipped > left_) return AllocateInNewBlock(size);
    char* start = next_ + skipped;
    next_ = start + size;
    left_ -= size + skipped;
    return start;
  }

  void* AllocateInNewBlock(std::size_t size);

  char* next_ = nullptr;
  std::size_t left_ = 0;  // bytes from next_ to the end of the current block
  std::size_t size_ = 0;
  std::vector<std::unique_ptr<char[]>> blocks_;
  std::forward_list<std::string> adopted_;  // a list: strings must not move
};

}  // namespace fernwick
