#include "personality/personality.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace fernwick {
namespace {

bool HasManyKeys(const PropertyValue& candidate) {
  const auto personality = candidate.AsDictionary();
  return personality && personality->Size() > FewEntries;
}

PropertyValue KeysOfSchema(const PropertyValue& candidate, Arena& arena) {
  if (!HasManyKeys(candidate)) return candidate;
  std::vector<DictionaryEntry> entries;
  std::ranges::copy_if(candidate.AsDictionary()->Entries(), std::back_inserter(entries),
                       [](const auto& entry) { return FindPersonalityKey(entry.key) != nullptr; });
  return Dictionary(arena.Copy(std::span<const DictionaryEntry>(entries)));
}

}  // namespace

std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value) {
  if (type != PersonalityType::LegacyUsbc) return value.AsArray();
  if (!value.AsDictionary()) return std::nullopt;
  return Array(std::span(&value, 1));
}

Array WithoutUnreadKeys(Array candidates, Arena& arena) {
  if (std::ranges::none_of(candidates, HasManyKeys)) return candidates;
  std::vector<PropertyValue> copies;
  copies.reserve(candidates.size());
  for (const auto& candidate : candidates) copies.push_back(KeysOfSchema(candidate, arena));
  return arena.Copy(std::span<const PropertyValue>(copies));
}

}  // namespace fernwick
