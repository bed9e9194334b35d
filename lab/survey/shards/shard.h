#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace fernwick::lab {

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
