#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick::lab {

/// A Fowler-Noll-Vo hash (FNV-1a, 64 bits) of the bytes that are added: the same on every machine.
/// It is no protection against names that were chosen to collide.
class StableHash {
 public:
  void Add(std::string_view bytes);

  std::uint64_t Value() const { return value_; }

  /// In 16 hexadecimal digits.
  std::string Text() const;

 private:
  std::uint64_t value_ = 0xcbf29ce484222325;
};

/// One of several parts of what a command line selects: those whose name hashes to it.
struct Shard {
  std::size_t number = 1;  // from 1 to `count`
  std::size_t count = 1;

  /// Whether the shard has what is selected under this name.
  bool Has(std::string_view name) const;
};

/// "2/3", each number of at most six digits. Empty for any other text, and unless 1 <= 2 <= 3.
std::optional<Shard> ParseShard(std::string_view text);

}  // namespace fernwick::lab
