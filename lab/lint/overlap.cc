// Intersection of what two personalities accept, key by key: of sets by merging their sorted
// values, of version windows by looking for one version that is inside both. Linear in the number
// of values.

#include "lab/lint/overlap.h"

#include <algorithm>
#include <span>
#include <string>

#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {
namespace {

// A personality is compared with no more than so many of the other type.
constexpr std::size_t MaxPartners = 256;

bool HaveCommonValue(const AcceptedValues& a, const AcceptedValues& b) {
  for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end();) {
    if (IsBefore(*i, *j)) {
      ++i;
    } else if (IsBefore(*j, *i)) {
      ++j;
    } else {
      return true;
    }
  }
  return false;
}

// What the personality accepts under the key; null when it does not constrain it.
const AcceptedValues* SetOf(const LivePersonality& live, std::string_view key) {
  const auto requirements = SetRequirements(live.personality->type);
  for (std::size_t i = 0; i < requirements.size(); ++i) {
    const auto& values = live.acceptance.sets[i];
    if (requirements[i]->key == key) return values ? &*values : nullptr;
  }
  return nullptr;
}

bool AreDisjoint(const LivePersonality& a, const LivePersonality& b, std::string_view key) {
  const auto* valuesOfA = SetOf(a, key);
  const auto* valuesOfB = SetOf(b, key);
  return valuesOfA != nullptr && valuesOfB != nullptr && !HaveCommonValue(*valuesOfA, *valuesOfB);
}

bool RevisionsMeet(const Acceptance& a, const Acceptance& b) {
  return std::max(a.revisions.lowest, b.revisions.lowest) <=
         std::min(a.revisions.highest, b.revisions.highest);
}

bool IsInside(const PropertyValue& installed, const Acceptance& window) {
  return NumberGreater(*window.version, installed) &&
         (window.maximum == nullptr || !NumberLess(*window.maximum, installed));
}

// The greater one; null when both are.
const PropertyValue* GreaterOf(const PropertyValue* a, const PropertyValue* b) {
  if (a == nullptr || b == nullptr) return a == nullptr ? b : a;
  return NumberGreater(*a, *b) ? a : b;
}

bool WindowsMeet(const Acceptance& a, const Acceptance& b) {
  const auto versions =
      LowestInstalledVersions(a.scales & b.scales, GreaterOf(a.minimum, b.minimum));
  return std::ranges::any_of(versions,
                             [&](const auto& v) { return IsInside(v, a) && IsInside(v, b); });
}

bool AreSameValues(const std::optional<AcceptedValues>& a, const std::optional<AcceptedValues>& b) {
  if (!a || !b) return !a && !b;
  return std::ranges::equal(*a, *b,
                            [](auto* x, auto* y) { return !IsBefore(x, y) && !IsBefore(y, x); });
}

TypeSet PartnerOf(TypeSet type) {
  switch (type) {
    case Types::LegacyThunderbolt: return Types::Thunderbolt;
    case Types::Thunderbolt: return Types::LegacyThunderbolt;
    case Types::LegacyUsbc: return Types::Usbc;
    default: return Types::LegacyUsbc;
  }
}

const LivePersonality* FindOverlap(const LivePersonality& personality,
                                   std::span<const LivePersonality> earlier) {
  const auto partner = PartnerOf(personality.personality->type);
  std::size_t compared = 0;
  for (const auto& other : earlier) {
    if (other.personality->type != partner) continue;
    if (++compared > MaxPartners) break;
    if (Overlap(personality, other)) return &other;
  }
  return nullptr;
}

}  // namespace

bool Overlap(const LivePersonality& a, const LivePersonality& b) {
  const auto requirements = SetRequirements(a.personality->type);
  const auto isDisjoint = [&](const Requirement* r) { return AreDisjoint(a, b, r->key); };
  return RevisionsMeet(a.acceptance, b.acceptance) && WindowsMeet(a.acceptance, b.acceptance) &&
         std::ranges::none_of(requirements, isDisjoint);
}

bool CanMatchTogether(const LivePersonality& a, const LivePersonality& b) {
  if (a.personality == b.personality) return true;
  if (!RevisionsMeet(a.acceptance, b.acceptance)) return false;
  for (const auto* key : {"Device Model Name", "Device Model ID", "Device Model Revision"}) {
    if (AreDisjoint(a, b, key)) return false;
  }
  return a.personality->type != b.personality->type ||
         !std::ranges::equal(a.acceptance.sets, b.acceptance.sets, AreSameValues);
}

void LintOverlaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
                  ConfigurationFindings& findings) {
  for (std::size_t i = 0; i < live.size(); ++i) {
    const auto& [personality, acceptance] = live[i];
    const auto* other = FindOverlap(live[i], std::span(live).first(i));
    if (other == nullptr) continue;
    findings.Add(LintRuleOf::TwoImagesForOneController, personality->offset,
                 "one controller can match this personality and that of \"" +
                     std::string(other->personality->typeName) + "\" at " +
                     Describe(subject.file.LocationOf(other->personality->offset)) +
                     ": both images are planned for it");
  }
}

}  // namespace fernwick::lab
