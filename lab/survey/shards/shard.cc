#include "lab/survey/shards/shard.h"

#include <charconv>
#include <cstdint>
#include <system_error>

#include "lab/support/stable_hash.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxDigits = 6;

// The finalizer of MurmurHash3: every bit of the result depends on every bit of the hash. The low
// bits of FNV-1a alone depend on the low bits of each byte alone: with two shards, all names with a
// number twice ("42/42.registry.plist") would be in the same one.
std::uint64_t Mixed(std::uint64_t hash) {
  hash = (hash ^ (hash >> 33)) * 0xff51afd7ed558ccd;
  hash = (hash ^ (hash >> 33)) * 0xc4ceb9fe1a85ec53;
  return hash ^ (hash >> 33);
}

std::optional<std::size_t> NumberIn(std::string_view digits) {
  std::size_t number = 0;
  const auto* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || rest != end || digits.size() > MaxDigits) return std::nullopt;
  return number;
}

}  // namespace

bool Shard::Has(std::string_view name) const {
  StableHash hash;
  hash.Add(name);
  return Mixed(hash.Value()) % count == number - 1;
}

std::optional<Shard> ParseShard(std::string_view text) {
  const auto slash = text.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const auto number = NumberIn(text.substr(0, slash));
  const auto count = NumberIn(text.substr(slash + 1));
  if (!number || !count || *number == 0 || *number > *count) return std::nullopt;
  return Shard{*number, *count};
}

}  // namespace fernwick::lab
