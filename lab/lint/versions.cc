#include <optional>

#include "lab/lint/checks.h"
#include "lab/lint/rules/version_rules.h"
#include "lab/support/controller_values.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// The version and the bounds of a personality; null where there is none that can be compared.
struct LocatedWindow {
  const LocatedEntry* version;
  const LocatedEntry* minimum;
  const LocatedEntry* maximum;

  VersionWindow Values() const {
    const auto valueOf = [](const LocatedEntry* entry) {
      return entry == nullptr ? nullptr : entry->value;
    };
    return {valueOf(version), valueOf(minimum), valueOf(maximum)};
  }
};

// `maximum` is that of the window.
void LintMaximum(const LocatedEntry& maximum, const LocatedWindow& window, TypeSet type,
                 VersionScales scales, ConfigurationFindings& findings) {
  // A whole number may be the version of a port itself, which is a whole number and is not
  // excluded.
  if (!scales.thunderbolt) return;
  if (!IsOfThunderbolt(type) && IsWhole(*maximum.value)) return;
  const auto missed = VersionJustAbove(*maximum.value);
  if (!missed ||
      !LocatedWindow{window.version, window.minimum, nullptr}.Values().Contains(*missed)) {
    return;
  }
  findings.Add(
      LintRuleOf::MaximumJustMissed, maximum.valueOffset,
      "\"Existing Max Version\" " + Shown(*maximum.value) +
          " excludes the version that it names, which a Thunderbolt controller reports as " +
          Shown(*missed));
}

void LintWindow(const LocatedWindow& window, TypeSet type, VersionScales scales,
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
  } else if (!window.Values().ContainsAny(scales)) {
    const auto* location = maximum != nullptr ? maximum : version;
    findings.Add(LintRuleOf::EmptyVersionWindow, location->valueOffset,
                 scales.thunderbolt
                     ? "no version that can be installed is in the window of this personality"
                     : "no version that can be installed is in the window of this personality: at "
                       "its addresses are only ports with whole numbers");
  } else if (maximum != nullptr) {
    LintMaximum(*maximum, window, type, scales, findings);
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
  return VersionScalesOf(personality.type, personality.Value("Port Address"));
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
  const LocatedWindow window = {version, WithoutNan(minimum), WithoutNan(maximum)};
  if (version == nullptr && window.minimum == nullptr && window.maximum == nullptr) return;
  LintWindow(window, personality.type, ScalesOf(personality), findings);
}

void LintSettling(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* version = personality.Find("Version");
  if (version == nullptr || !version->value->IsNumber()) return;
  if (!NumberGreater(*version->value, 0)) return;  // is above no installed version
  const auto scales = ScalesOf(personality);
  if (IsReportable(*version->value, scales)) return;
  const bool isTooGreat = !NumberLess(*version->value, MaxStoredMajor + 1);
  findings.Add(LintRuleOf::UnreportableVersion, version->valueOffset,
               "\"Version\" is " + Shown(*version->value) + ", but a controller reports " +
                   std::string(isTooGreat           ? "no more than eight digits"
                               : scales.thunderbolt ? "hundredths up to .63"
                                                    : "whole numbers") +
                   ": the update never settles");
}

void LintBoardRevisions(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  if ((FindPersonalityKey("MinBoardRevision")->checkedBy & personality.type) == 0) return;
  const auto* minimum = personality.Find("MinBoardRevision");
  const auto* maximum = personality.Find("MaxBoardRevision");
  if (IsBadBound(minimum) || IsBadBound(maximum)) return;
  if (RevisionsWithin(personality.Value("MinBoardRevision"), personality.Value("MaxBoardRevision"))
          .IsEmpty()) {
    findings.Add(LintRuleOf::EmptyBoardRevisionRange,
                 (maximum != nullptr ? maximum : minimum)->valueOffset,
                 "no board revision, 0 to 255, is within the bounds of this personality");
    return;
  }
  LintRevisionBound(minimum, findings);
  LintRevisionBound(maximum, findings);
}

}  // namespace fernwick::lab
