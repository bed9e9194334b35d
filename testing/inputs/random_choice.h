#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>

namespace fernwick::testing {

/// Choices that look random and are the same in every run and on every platform.
class RandomChoice {
 public:
  explicit RandomChoice(std::uint64_t seed) : engine_(seed) {}

  /// A number from 0 to `count` − 1. REQUIRES: `count` > 0.
  std::size_t Below(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }

  /// True once in `count` times.
  bool OnceIn(std::size_t count) { return Below(count) == 0; }

  /// One of the elements. REQUIRES: there is one.
  template <typename Container>
  const auto& OneOf(const Container& container) {
    return container[Below(std::size(container))];
  }

  /// Brings the elements into another order.
  template <typename Container>
  void Shuffle(Container& container) {
    for (std::size_t i = container.size(); i > 1; --i) {
      std::swap(container[i - 1], container[Below(i)]);
    }
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace fernwick::testing
