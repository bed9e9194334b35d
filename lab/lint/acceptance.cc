#include "lab/lint/acceptance.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lab/lint/finding.h"
#include "personality/requirement_rules.h"

namespace fernwick::lab {
namespace {

// How the checks hold such a key. REQUIRES: one of them reads it.
RequirementSet RequirementOf(const PersonalityKey& key) {
  const auto checked = *CheckedKey::Named(key.name);
  switch (key.kind) {
    case KeyKind::StringOrList:
      return {.key = checked, .kind = SingleValueKind::StringKind, .equal = StringsEqual};
    case KeyKind::ListOfStrings: return {.key = checked, .equal = StringsEqual};
    default: return {.key = checked};
  }
}

bool IsAcceptedAlone(const PropertyValue& wanted, const RequirementSet& requirement) {
  const Dictionary record = {{requirement.key.Name(), wanted}};
  return RequirementSetMatch(record, record, requirement);
}

bool IsWhole(const PropertyValue& number) {
  const auto* real = number.AsReal();
  return real == nullptr || std::trunc(*real) == *real;
}

bool IsWithin(const PropertyValue& number, const WholeRange& range) {
  return IsWhole(number) && !NumberLess(number, range.lowest) &&
         !NumberGreater(number, range.highest);
}

std::string Describe(const WholeRange& range) {
  const auto lowest = Shown(range.lowest);
  if (range.lowest == range.highest) return lowest + " alone";
  return "whole numbers from " + lowest + " to " + Shown(range.highest);
}

bool IsSortedUnique(const AcceptedValues& values) {
  return std::ranges::adjacent_find(values, [](auto* a, auto* b) { return !IsBefore(a, b); }) ==
         values.end();
}

// What the check accepts of a single value or of the elements of an array.
AcceptedValues ValuesAcceptedBy(const PropertyValue& wanted, const PersonalityKey& key) {
  const auto requirement = RequirementOf(key);
  AcceptedValues values;
  if (const auto* list = wanted.AsArray()) {
    for (const auto& element : *list) {
      if (requirement.equal(element, element)) values.push_back(&element);
    }
  } else if (IsAcceptedAlone(wanted, requirement)) {
    values.push_back(&wanted);
  }
  if (IsSortedUnique(values)) return values;
  std::ranges::sort(values, IsBefore);
  const auto isSame = [](auto* a, auto* b) { return !IsBefore(a, b); };
  values.erase(std::unique(values.begin(), values.end(), isSame), values.end());
  return values;
}

const PropertyValue* ValueOf(const PlacedPersonality& personality, std::string_view key) {
  const auto* entry = personality.Find(key);
  return entry == nullptr ? nullptr : entry->value;
}

// Null as well where NaN holds nothing back.
const PropertyValue* BoundOf(const PlacedPersonality& personality, std::string_view key) {
  const auto* bound = ValueOf(personality, key);
  const bool isNan = bound != nullptr && bound->IsNumber() && !NumbersEqual(*bound, *bound);
  return isNan ? nullptr : bound;
}

bool IsVersionAccepted(const Acceptance& acceptance, const PropertyValue& installed) {
  return acceptance.version != nullptr && NumberGreater(*acceptance.version, installed) &&
         (acceptance.maximum == nullptr || !NumberLess(*acceptance.maximum, installed));
}

bool AcceptsAnyVersion(const Acceptance& acceptance, TypeSet type) {
  for (const auto* bound : {acceptance.minimum, acceptance.maximum}) {
    if (bound != nullptr && !bound->IsNumber()) return false;
  }
  const auto versions = LowestInstalledVersions(type, acceptance.minimum);
  return std::ranges::any_of(versions,
                             [&](const auto& v) { return IsVersionAccepted(acceptance, v); });
}

bool AcceptsAnyValue(const std::optional<AcceptedValues>& values, const PersonalityKey& key,
                     TypeSet type) {
  if (!values) return (key.requiredBy & type) == 0;
  return std::ranges::any_of(
      *values, [&](auto* value) { return WhyNothingEquals(*value, key, type).empty(); });
}

bool HoldsAll(const AcceptedValues& wide, const AcceptedValues& narrow) {
  return narrow.size() <= wide.size() && std::ranges::all_of(narrow, [&](auto* value) {
           return std::ranges::binary_search(wide, value, IsBefore);
         });
}

bool CoversSet(const std::optional<AcceptedValues>& wide,
               const std::optional<AcceptedValues>& narrow) {
  return !wide || (narrow && HoldsAll(*wide, *narrow));
}

}  // namespace

std::string WhyNothingEquals(const PropertyValue& element, const PersonalityKey& key,
                             TypeSet type) {
  const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (isText) return StringsEqual(element, element) ? "" : "it is no string";
  if (!element.IsNumber()) return "it is no number";
  if (!NumbersEqual(element, element)) return "NaN equals nothing";
  const auto range = NumbersOfControllers(type, key.name);
  if (!range || IsWithin(element, *range)) return "";
  return "controllers have " + Describe(*range) + " there";
}

bool TakesSet(const PersonalityKey& key) {
  return key.kind == KeyKind::NumberOrList || key.kind == KeyKind::StringOrList ||
         key.kind == KeyKind::ListOfStrings;
}

std::vector<const PersonalityKey*> SetKeys(TypeSet type) {
  std::vector<const PersonalityKey*> keys;
  for (const auto& key : PersonalityKeys()) {
    if (TakesSet(key) && (key.checkedBy & type) != 0) keys.push_back(&key);
  }
  return keys;
}

bool IsBefore(const PropertyValue* a, const PropertyValue* b) {
  if (const auto text = a->AsString()) return *text < *b->AsString();
  return NumberLess(*a, *b);
}

Acceptance AcceptanceOf(const PlacedPersonality& personality) {
  Acceptance acceptance;
  acceptance.version = ValueOf(personality, "Version");
  acceptance.minimum = BoundOf(personality, "Existing Min Version");
  acceptance.maximum = BoundOf(personality, "Existing Max Version");
  if ((FindPersonalityKey("MinBoardRevision")->checkedBy & personality.type) != 0) {
    acceptance.revisions = RevisionsWithin(ValueOf(personality, "MinBoardRevision"),
                                           ValueOf(personality, "MaxBoardRevision"));
  }
  acceptance.acceptsAny =
      !acceptance.revisions.IsEmpty() && AcceptsAnyVersion(acceptance, personality.type);
  for (const auto* key : SetKeys(personality.type)) {
    const auto* wanted = ValueOf(personality, key->name);
    auto& values = acceptance.sets.emplace_back();
    if (wanted != nullptr) values = ValuesAcceptedBy(*wanted, *key);
    acceptance.acceptsAny =
        acceptance.acceptsAny && AcceptsAnyValue(values, *key, personality.type);
  }
  return acceptance;
}

bool Covers(const Acceptance& wide, const Acceptance& narrow) {
  if (NumberLess(*wide.version, *narrow.version)) return false;
  if (wide.minimum != nullptr &&
      (narrow.minimum == nullptr || NumberGreater(*wide.minimum, *narrow.minimum))) {
    return false;
  }
  if (wide.maximum != nullptr &&
      (narrow.maximum == nullptr || NumberLess(*wide.maximum, *narrow.maximum))) {
    return false;
  }
  return wide.revisions.lowest <= narrow.revisions.lowest &&
         wide.revisions.highest >= narrow.revisions.highest &&
         std::ranges::equal(wide.sets, narrow.sets, CoversSet);
}

}  // namespace fernwick::lab
