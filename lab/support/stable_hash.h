#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// A Fowler-Noll-Vo hash (FNV-1a, 64 bits) of the bytes that are added: the same on every machine.
/// It is no protection against names that were chosen to collide.
class StableHash {
 public:
  void Add(std::string_view bytes);

  std::uint64_t Value() const { return value_; }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325;
};

/// In 16 hexadecimal digits.
std::string HashText(std::uint64_t hash);

}  // namespace fernwick::lab
