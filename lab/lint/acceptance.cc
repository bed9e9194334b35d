// Sets of values as sorted lists of numbers: each value has a number (interning), so that a
// comparison of two lists is a merge of integers, and equal lists are one object (hash-consing).

#include "lab/lint/acceptance.h"

#include <algorithm>
#include <array>
#include <utility>

#include "lab/lint/finding.h"
#include "lab/lint/rid.h"

namespace fernwick::lab {
namespace {

// Whether a controller that has the single value itself meets the requirement.
bool IsAcceptedAlone(const PropertyValue& wanted, const Requirement& requirement) {
  return !RequirementSetMatch(requirement, &wanted, &wanted).failure;
}

bool IsWithin(const PropertyValue& number, const IntegerRange& range) {
  return IsWhole(number) && !NumberLess(number, range.lowest) &&
         !NumberGreater(number, range.highest);
}

std::string Describe(const IntegerRange& range) {
  const auto lowest = Shown(range.lowest);
  if (range.lowest == range.highest) return lowest + " alone";
  return "whole numbers from " + lowest + " to " + Shown(range.highest);
}

// What the requirement accepts of a single value or of the elements of an array.
std::vector<const PropertyValue*> ValuesAcceptedBy(const PropertyValue& wanted,
                                                   const Requirement& requirement) {
  std::vector<const PropertyValue*> values;
  if (const auto list = wanted.AsArray()) {
    for (const auto& element : *list) {
      if (requirement.equal(element, element)) values.push_back(&element);
    }
  } else if (IsAcceptedAlone(wanted, requirement)) {
    values.push_back(&wanted);
  }
  return values;
}

// Null as well for NaN, which excludes nothing.
const PropertyValue* BoundOf(const LocatedPersonality& personality, std::string_view key) {
  const auto* bound = personality.Value(key);
  const bool isNan = bound != nullptr && bound->IsNumber() && !NumbersEqual(*bound, *bound);
  return isNan ? nullptr : bound;
}

bool AcceptsAnyVersion(const VersionWindow& window, VersionScales scales) {
  for (const auto* bound : {window.minimum, window.maximum}) {
    if (bound != nullptr && !bound->IsNumber()) return false;
  }
  return window.offered != nullptr && window.ContainsAny(scales);
}

bool AcceptsAnyValue(const std::vector<const PropertyValue*>& values, const Key& key,
                     TypeSet type) {
  return std::ranges::any_of(
      values, [&](auto* value) { return UnmatchableReason(*value, key, type).empty(); });
}

// The set that the personality accepts under the key; null when it does not constrain it. Makes
// `acceptsAny` false when no controller has a value of the set.
const ValueSet* SetUnder(const Key& key, const LocatedPersonality& personality, ValueSets& sets,
                         bool& acceptsAny) {
  const auto* requirement = FindSetRequirement(personality.type, key.name);
  if (requirement == nullptr) return nullptr;
  const auto* wanted = personality.Value(key.name);
  if (wanted == nullptr) {
    acceptsAny = acceptsAny && requirement->presence == KeyPresence::OptionalKey;
    return nullptr;
  }
  const auto values = ValuesAcceptedBy(*wanted, *requirement);
  acceptsAny = acceptsAny && AcceptsAnyValue(values, key, personality.type);
  return acceptsAny ? sets.SetOf(values) : nullptr;
}

bool CoversSet(const ValueSet* wide, const ValueSet* narrow) {
  if (wide == nullptr || wide == narrow) return true;
  return narrow != nullptr && narrow->size() <= wide->size() &&
         std::ranges::includes(*wide, *narrow);
}

}  // namespace

std::string UnmatchableReason(const PropertyValue& element, const Key& key, TypeSet type) {
  const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (isText) return StringsEqual(element, element) ? "" : "it is not a string";
  if (!element.IsNumber()) return "it is not a number";
  if (!NumbersEqual(element, element)) return "NaN equals nothing";
  const auto range = NumbersOfControllers(key, type);
  if (!range || IsWithin(element, *range)) return "";
  return "controllers have " + Describe(*range) + " there";
}

const Requirement* FindSetRequirement(TypeSet type, std::string_view key) {
  const auto table = RequirementsOf(type);
  const auto found = std::ranges::find_if(table, [&](const Requirement& requirement) {
    return requirement.test == RequirementTest::SetMatch && requirement.key == key;
  });
  return found == table.end() ? nullptr : &*found;
}

const std::vector<const Key*>& SetKeys() {
  static const std::vector<const Key*> keys = [] {
    constexpr std::array types = {Types::LegacyThunderbolt, Types::Thunderbolt, Types::LegacyUsbc,
                                  Types::Usbc};
    std::vector<const Key*> tested;
    for (const auto& key : KeySchema()) {
      const auto isTestedBy = [&](TypeSet type) { return FindSetRequirement(type, key.name); };
      if (std::ranges::any_of(types, isTestedBy)) tested.push_back(&key);
    }
    return tested;
  }();
  return keys;
}

std::size_t SetIndexOf(std::string_view key) {
  const auto found = std::ranges::find(SetKeys(), key, &Key::name);
  return static_cast<std::size_t>(found - SetKeys().begin());
}

bool IsBefore(const PropertyValue* a, const PropertyValue* b) {
  if (a->IsNumber() != b->IsNumber()) return a->IsNumber();
  return a->IsNumber() ? NumberLess(*a, *b) : *a->AsString() < *b->AsString();
}

const ValueSet* ValueSets::SetOf(const std::vector<const PropertyValue*>& values) {
  ValueSet set;
  for (const auto* value : values) {
    const auto next = static_cast<std::uint32_t>(values_.size());
    const auto [known, isNew] = numbers_.emplace(value, next);
    if (isNew) values_.push_back(value);
    set.push_back(known->second);
  }
  std::ranges::sort(set);
  set.erase(std::unique(set.begin(), set.end()), set.end());
  return &*sets_.insert(std::move(set)).first;
}

Acceptance AcceptanceOf(const LocatedPersonality& personality, ValueSets& sets) {
  Acceptance acceptance;
  acceptance.window = {personality.Value("Version"), BoundOf(personality, "Existing Min Version"),
                       BoundOf(personality, "Existing Max Version")};
  if ((FindPersonalityKey("MinBoardRevision")->checkedBy & personality.type) != 0) {
    acceptance.revisions = RevisionsWithin(personality.Value("MinBoardRevision"),
                                           personality.Value("MaxBoardRevision"));
  }
  acceptance.scales = VersionScalesOf(personality.type, personality.Value("Port Address"));
  acceptance.acceptsAny = !acceptance.revisions.IsEmpty() &&
                          AcceptsAnyVersion(acceptance.window, acceptance.scales) &&
                          !RidContradictsUid(personality);
  for (const auto* key : SetKeys()) {
    if (!acceptance.acceptsAny) break;
    acceptance.sets.push_back(SetUnder(*key, personality, sets, acceptance.acceptsAny));
  }
  if (!acceptance.acceptsAny) acceptance.sets = {};
  return acceptance;
}

bool CoversWindow(const Acceptance& wide, const Acceptance& narrow) {
  const auto& a = wide.window;
  const auto& b = narrow.window;
  if (NumberLess(*a.offered, *b.offered)) return false;
  if (a.minimum != nullptr && (b.minimum == nullptr || NumberGreater(*a.minimum, *b.minimum))) {
    return false;
  }
  if (a.maximum != nullptr && (b.maximum == nullptr || NumberLess(*a.maximum, *b.maximum))) {
    return false;
  }
  return wide.revisions.lowest <= narrow.revisions.lowest &&
         wide.revisions.highest >= narrow.revisions.highest;
}

bool Covers(const Acceptance& wide, const Acceptance& narrow) {
  return CoversWindow(wide, narrow) && std::ranges::equal(wide.sets, narrow.sets, CoversSet);
}

bool HaveCommonValue(const ValueSet& a, const ValueSet& b) {
  for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
    if (*i == *j) return true;
    ++(*i < *j ? i : j);
  }
  return false;
}

}  // namespace fernwick::lab
