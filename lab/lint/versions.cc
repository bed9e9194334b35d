#include <algorithm>
#include <cmath>
#include <optional>

#include "lab/lint/checks.h"
#include "lab/lint/rules/version_rules.h"
#include "lab/support/controller_values.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// Versions are a hundredth apart: a maximum that misses one by less does not mean to.
constexpr double JustMissed = 0.00001;

// The version and the bounds of a personality; null where there is none that can be compared.
struct Window {
  const LocatedEntry* version;
  const LocatedEntry* minimum;
  const LocatedEntry* maximum;
};

const PropertyValue* ValueOf(const LocatedEntry* entry) {
  return entry == nullptr ? nullptr : entry->value;
}

// Whether the installed version is within the window.
bool IsInside(const PropertyValue& installed, const Window& window) {
  const auto* version = ValueOf(window.version);
  const auto* minimum = ValueOf(window.minimum);
  const auto* maximum = ValueOf(window.maximum);
  return (version == nullptr || NumberGreater(*version, installed)) &&
         (minimum == nullptr || !NumberGreater(*minimum, installed)) &&
         (maximum == nullptr || !NumberLess(*maximum, installed));
}

bool IsEmpty(const Window& window, VersionScales scales) {
  const auto lowest = LowestInstalledVersions(scales, ValueOf(window.minimum));
  return std::ranges::none_of(lowest, [&](const auto& v) { return IsInside(v, window); });
}

bool IsWhole(const PropertyValue& number) {
  const auto real = number.AsReal();
  return !real || std::trunc(*real) == *real;
}

// The version of a Thunderbolt controller that a maximum leaves out by next to nothing.
std::optional<PropertyValue> VersionJustAbove(const PropertyValue& maximum) {
  auto next = NextThunderboltVersion(maximum);
  if (next && NumberGreater(*next->AsReal() - JustMissed, maximum)) return std::nullopt;
  return next;
}

void LintMaximum(const Window& window, TypeSet type, VersionScales scales,
                 ConfigurationFindings& findings) {
  // A whole number may be the version of a port itself, which is a whole number and is not
  // excluded.
  const bool hasThunderboltVersion = type == Types::LegacyThunderbolt || type == Types::Thunderbolt;
  if (!scales.thunderbolt) return;
  if (!hasThunderboltVersion && IsWhole(*window.maximum->value)) return;
  const auto missed = VersionJustAbove(*window.maximum->value);
  if (!missed || !IsInside(*missed, {window.version, window.minimum, nullptr})) return;
  findings.Add(
      LintRuleOf::MaximumJustMissed, window.maximum->valueOffset,
      "\"Existing Max Version\" " + Shown(*window.maximum->value) +
          " excludes the version that it names, which a Thunderbolt controller reports as " +
          Shown(*missed));
}

void LintWindow(const Window& window, TypeSet type, VersionScales scales,
                ConfigurationFindings& findings) {
  const auto& [version, minimum, maximum] = window;
  if (minimum != nullptr && maximum != nullptr && NumberGreater(*minimum->value, *maximum->value)) {
    findings.Add(LintRuleOf::VersionBoundsCrossed, maximum->valueOffset,
                 "\"Existing Max Version\" " + Shown(*maximum->value) +
                     " is below \"Existing Min Version\" " + Shown(*minimum->value));
  } else if (version != nullptr && minimum != nullptr &&
             !NumberGreater(*version->value, *minimum->value)) {
    findings.Add(LintRuleOf::VersionNotAboveMinimum, version->valueOffset,
                 "\"Version\" " + Shown(*version->value) +
                     " is not above \"Existing Min Version\" " + Shown(*minimum->value));
  } else if (IsEmpty(window, scales)) {
    const auto* location = maximum != nullptr ? maximum : version;
    findings.Add(LintRuleOf::EmptyVersionWindow, location->valueOffset,
                 scales.thunderbolt
                     ? "no version that can be installed is in the window of this personality"
                     : "no version that can be installed is in the window of this personality: at "
                       "its addresses are only ports with whole numbers");
  } else if (maximum != nullptr) {
    LintMaximum(window, type, scales, findings);
  }
}

bool IsBadBound(const LocatedEntry* bound) {
  return bound != nullptr && !bound->value->IsNumber();
}

// A bound that is NaN is as good as none.
const LocatedEntry* WithoutNan(const LocatedEntry* bound) {
  return bound != nullptr && NumbersEqual(*bound->value, *bound->value) ? bound : nullptr;
}

VersionScales ScalesOf(const LocatedPersonality& personality) {
  return VersionScalesOf(personality.type, ValueOf(personality.Find("Port Address")));
}

void LintRevisionBound(const LocatedEntry* bound, ConfigurationFindings& findings) {
  if (bound == nullptr) return;
  if (!NumberLess(*bound->value, 0) && !NumberGreater(*bound->value, 255)) return;
  findings.Add(LintRuleOf::BoardRevisionOutOfRange, bound->valueOffset,
               Quoted(bound->key) + " is " + Shown(*bound->value) +
                   ", but board revisions are 0 to 255, so it excludes nothing");
}

}  // namespace

void LintVersions(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* version = personality.Find("Version");
  const auto* minimum = personality.Find("Existing Min Version");
  const auto* maximum = personality.Find("Existing Max Version");
  // Another rule reports values of a wrong kind.
  if (IsBadBound(minimum) || IsBadBound(maximum)) return;
  if (IsBadBound(version)) version = nullptr;
  const Window window = {version, WithoutNan(minimum), WithoutNan(maximum)};
  if (version == nullptr && window.minimum == nullptr && window.maximum == nullptr) return;
  LintWindow(window, personality.type, ScalesOf(personality), findings);
}

void LintSettling(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* version = personality.Find("Version");
  if (version == nullptr || !version->value->IsNumber()) return;
  if (!NumberGreater(*version->value, 0)) return;  // is above no installed version
  const auto scales = ScalesOf(personality);
  if (IsReportable(*version->value, scales)) return;
  findings.Add(LintRuleOf::UnreportableVersion, version->valueOffset,
               "\"Version\" is " + Shown(*version->value) + ", but a controller reports " +
                   std::string(scales.thunderbolt ? "hundredths up to .63" : "whole numbers") +
                   ": the update never settles");
}

void LintBoardRevisions(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  if ((FindPersonalityKey("MinBoardRevision")->checkedBy & personality.type) == 0) return;
  const auto* minimum = personality.Find("MinBoardRevision");
  const auto* maximum = personality.Find("MaxBoardRevision");
  if (IsBadBound(minimum) || IsBadBound(maximum)) return;
  if (RevisionsWithin(ValueOf(minimum), ValueOf(maximum)).IsEmpty()) {
    findings.Add(LintRuleOf::EmptyBoardRevisionRange,
                 (maximum != nullptr ? maximum : minimum)->valueOffset,
                 "no board revision, 0 to 255, is within the bounds of this personality");
    return;
  }
  LintRevisionBound(minimum, findings);
  LintRevisionBound(maximum, findings);
}

}  // namespace fernwick::lab
