// Intersection of what two personalities accept, key by key: of sets by merging them, of version
// windows by looking for one version that is inside both. Linear in the number of values.

#include <algorithm>
#include <map>
#include <string>

#include "lab/lint/candidates.h"
#include "lab/lint/comparisons.h"
#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {
namespace {

bool AreDisjoint(const ValueSet* a, const ValueSet* b) {
  return a != nullptr && b != nullptr && a != b && !HaveCommonValue(*a, *b);
}

bool RevisionsMeet(const Acceptance& a, const Acceptance& b) {
  return std::max(a.revisions.lowest, b.revisions.lowest) <=
         std::min(a.revisions.highest, b.revisions.highest);
}

TypeSet PartnerOf(TypeSet type) {
  switch (type) {
    case Types::LegacyThunderbolt: return Types::Thunderbolt;
    case Types::Thunderbolt: return Types::LegacyThunderbolt;
    case Types::LegacyUsbc: return Types::Usbc;
    default: return Types::LegacyUsbc;
  }
}

}  // namespace

bool Overlap(const Acceptance& a, const Acceptance& b) {
  if (!RevisionsMeet(a, b)) return false;
  for (std::size_t i = 0; i < a.sets.size(); ++i) {
    if (AreDisjoint(a.sets[i], b.sets[i])) return false;
  }
  return Intersection(a.window, b.window).ContainsAny(a.scales & b.scales);
}

bool CanMatchTogether(const LivePersonality& a, const LivePersonality& b) {
  static const std::size_t modelKeys[] = {SetIndexOf("Device Model Name"),
                                          SetIndexOf("Device Model ID"),
                                          SetIndexOf("Device Model Revision")};
  if (a.personality == b.personality) return true;
  if (!RevisionsMeet(a.acceptance, b.acceptance)) return false;
  for (const auto key : modelKeys) {
    if (AreDisjoint(a.acceptance.sets[key], b.acceptance.sets[key])) return false;
  }
  return a.personality->type != b.personality->type || a.acceptance.sets != b.acceptance.sets;
}

void LintOverlaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
                  ConfigurationFindings& findings) {
  std::map<TypeSet, AcceptanceIndex> earlier;
  CutShort cutShort;
  for (std::size_t i = 0; i < live.size(); ++i) {
    const auto& [personality, acceptance] = live[i];
    const auto overlaps = [&, &own = acceptance](std::size_t j) {
      return Overlap(live[j].acceptance, own);
    };
    const auto found = earlier[PartnerOf(personality->type)].FindOverlapping(acceptance, overlaps);
    earlier[personality->type].Add(acceptance, i);
    if (found.isCutShort) ++cutShort[personality->type];
    if (found.personality == npos) continue;
    const auto& other = *live[found.personality].personality;
    findings.Enter(personality);
    findings.Add(LintRuleOf::TwoImagesForOneController, personality->offset,
                 "one controller can match this personality and that of \"" +
                     std::string(other.typeName) + "\" at " +
                     Describe(subject.file.LocationOf(other.offset)) +
                     ": both images are planned for it");
  }
  findings.Enter(nullptr);
  LintLimits(subject, cutShort, "they plan two images for one controller", findings);
}

}  // namespace fernwick::lab
