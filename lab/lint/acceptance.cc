#include "lab/lint/acceptance.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lab/lint/finding.h"
#include "lab/lint/rid.h"

namespace fernwick::lab {
namespace {

// Whether a controller that has the single value itself meets the requirement.
bool IsAcceptedAlone(const PropertyValue& wanted, const Requirement& requirement) {
  return !RequirementSetMatch(requirement, &wanted, &wanted).failure;
}

bool IsWhole(const PropertyValue& number) {
  const auto real = number.AsReal();
  return !real || std::trunc(*real) == *real;
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

bool IsSortedUnique(const AcceptedValues& values) {
  return std::ranges::adjacent_find(values, [](auto* a, auto* b) { return !IsBefore(a, b); }) ==
         values.end();
}

// What the requirement accepts of a single value or of the elements of an array.
AcceptedValues ValuesAcceptedBy(const PropertyValue& wanted, const Requirement& requirement) {
  AcceptedValues values;
  if (const auto list = wanted.AsArray()) {
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

const PropertyValue* ValueOf(const LocatedPersonality& personality, std::string_view key) {
  const auto* entry = personality.Find(key);
  return entry == nullptr ? nullptr : entry->value;
}

// Null as well for NaN, which excludes nothing.
const PropertyValue* BoundOf(const LocatedPersonality& personality, std::string_view key) {
  const auto* bound = ValueOf(personality, key);
  const bool isNan = bound != nullptr && bound->IsNumber() && !NumbersEqual(*bound, *bound);
  return isNan ? nullptr : bound;
}

bool IsVersionAccepted(const Acceptance& acceptance, const PropertyValue& installed) {
  return acceptance.version != nullptr && NumberGreater(*acceptance.version, installed) &&
         (acceptance.maximum == nullptr || !NumberLess(*acceptance.maximum, installed));
}

bool AcceptsAnyVersion(const Acceptance& acceptance) {
  for (const auto* bound : {acceptance.minimum, acceptance.maximum}) {
    if (bound != nullptr && !bound->IsNumber()) return false;
  }
  const auto versions = LowestInstalledVersions(acceptance.scales, acceptance.minimum);
  return std::ranges::any_of(versions,
                             [&](const auto& v) { return IsVersionAccepted(acceptance, v); });
}

bool AcceptsAnyValue(const std::optional<AcceptedValues>& values, const Requirement& requirement,
                     TypeSet type) {
  if (!values) return requirement.presence == KeyPresence::OptionalKey;
  const auto& key = *fernwick::FindKey(requirement.key);
  return std::ranges::any_of(
      *values, [&](auto* value) { return UnmatchableReason(*value, key, type).empty(); });
}

bool ContainsAll(const AcceptedValues& wide, const AcceptedValues& narrow) {
  return narrow.size() <= wide.size() && std::ranges::all_of(narrow, [&](auto* value) {
           return std::ranges::binary_search(wide, value, IsBefore);
         });
}

bool CoversSet(const std::optional<AcceptedValues>& wide,
               const std::optional<AcceptedValues>& narrow) {
  return !wide || (narrow && ContainsAll(*wide, *narrow));
}

}  // namespace

std::string UnmatchableReason(const PropertyValue& element, const Key& key, TypeSet type) {
  const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (isText) return StringsEqual(element, element) ? "" : "it is no string";
  if (!element.IsNumber()) return "it is no number";
  if (!NumbersEqual(element, element)) return "NaN equals nothing";
  const auto range = NumbersOfControllers(key, type);
  if (!range || IsWithin(element, *range)) return "";
  return "controllers have " + Describe(*range) + " there";
}

std::vector<const Requirement*> SetRequirements(TypeSet type) {
  std::vector<const Requirement*> requirements;
  for (const auto& requirement : RequirementsOf(type)) {
    const bool isFirst =
        std::ranges::find(requirements, requirement.key, &Requirement::key) == requirements.end();
    const bool isSet = requirement.test == RequirementTest::SetMatch;
    if (isSet && isFirst) requirements.push_back(&requirement);
  }
  return requirements;
}

const Requirement* FindSetRequirement(TypeSet type, std::string_view key) {
  const auto table = RequirementsOf(type);
  const auto found = std::ranges::find_if(table, [&](const Requirement& requirement) {
    return requirement.test == RequirementTest::SetMatch && requirement.key == key;
  });
  return found == table.end() ? nullptr : &*found;
}

bool IsBefore(const PropertyValue* a, const PropertyValue* b) {
  if (const auto text = a->AsString()) return *text < *b->AsString();
  return NumberLess(*a, *b);
}

Acceptance AcceptanceOf(const LocatedPersonality& personality) {
  Acceptance acceptance;
  acceptance.version = ValueOf(personality, "Version");
  acceptance.minimum = BoundOf(personality, "Existing Min Version");
  acceptance.maximum = BoundOf(personality, "Existing Max Version");
  if ((FindPersonalityKey("MinBoardRevision")->checkedBy & personality.type) != 0) {
    acceptance.revisions = RevisionsWithin(ValueOf(personality, "MinBoardRevision"),
                                           ValueOf(personality, "MaxBoardRevision"));
  }
  acceptance.scales = VersionScalesOf(personality.type, ValueOf(personality, "Port Address"));
  acceptance.acceptsAny = !acceptance.revisions.IsEmpty() && AcceptsAnyVersion(acceptance) &&
                          !RidContradictsUid(personality);
  for (const auto* requirement : SetRequirements(personality.type)) {
    const auto* wanted = ValueOf(personality, requirement->key);
    auto& values = acceptance.sets.emplace_back();
    if (wanted != nullptr) values = ValuesAcceptedBy(*wanted, *requirement);
    acceptance.acceptsAny =
        acceptance.acceptsAny && AcceptsAnyValue(values, *requirement, personality.type);
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
