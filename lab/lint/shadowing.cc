// Subsumption: whether an earlier personality accepts everything that a later one accepts. An index
// of the accepted values finds candidates.

#include "lab/lint/shadowing.h"

#include <numeric>
#include <string>
#include <utility>

#include "lab/lint/candidates.h"
#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {

Shadowing FindShadowed(const std::vector<Acceptance>& personalities) {
  Shadowing shadowing;
  shadowing.shadowedBy.resize(personalities.size());
  std::iota(shadowing.shadowedBy.begin(), shadowing.shadowedBy.end(), std::size_t{0});
  AcceptanceIndex index;
  for (std::size_t i = 0; i < personalities.size(); ++i) {
    if (!personalities[i].acceptsAny) continue;
    const auto covers = [&](std::size_t j) { return Covers(personalities[j], personalities[i]); };
    const auto wide = index.FindCovering(personalities[i], covers);
    if (wide.personality != npos) {
      shadowing.shadowedBy[i] = wide.personality;
      continue;  // what it would shadow is shadowed by the other one, too
    }
    if (wide.isCutShort) ++shadowing.cutShort;
    index.Add(personalities[i], i);
  }
  return shadowing;
}

void LintShadowing(const LintSubject& subject, const LocatedType& type, ValueSets& sets,
                   std::vector<LivePersonality>& live, ConfigurationFindings& findings) {
  std::vector<const LocatedPersonality*> matching;
  std::vector<Acceptance> acceptances;
  for (const auto& personality : type.personalities) {
    auto acceptance = AcceptanceOf(personality, sets);
    if (!acceptance.acceptsAny) continue;
    matching.push_back(&personality);
    acceptances.push_back(std::move(acceptance));
  }
  const auto [shadowedBy, cutShort] = FindShadowed(acceptances);
  for (std::size_t i = 0; i < matching.size(); ++i) {
    if (shadowedBy[i] == i) {
      live.push_back({matching[i], std::move(acceptances[i])});
      continue;
    }
    const auto location = subject.file.LocationOf(matching[shadowedBy[i]]->offset);
    findings.Enter(matching[i]);
    findings.Add(LintRuleOf::ShadowedPersonality, matching[i]->offset,
                 "the personality at " + Describe(location) +
                     " accepts everything that this one accepts, which is never reached");
  }
  findings.Enter(nullptr);
  if (cutShort == 0) return;
  findings.Add(LintRuleOf::ShadowingNotExamined, type.entry.keyOffset,
               std::to_string(cutShort) + " personalities of \"" + std::string(type.entry.key) +
                   "\" were" + " compared with " + std::to_string(MaxCompared) +
                   " earlier ones only to find out whether they are shadowed");
}

}  // namespace fernwick::lab
