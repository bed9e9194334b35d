#include "lab/lint/configuration.h"

#include <utility>

#include "lab/lint/acceptance.h"
#include "lab/lint/checks.h"
#include "lab/lint/gaps.h"
#include "lab/lint/nvram.h"
#include "lab/lint/overlap.h"
#include "lab/lint/rid.h"
#include "lab/lint/shadowing.h"

namespace fernwick::lab {
namespace {

void LintPersonality(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  LintKeys(personality, findings);
  LintValues(personality, findings);
  LintDoubtfulValues(personality, findings);
  LintRidAndUid(personality, findings);
  LintVersions(personality, findings);
  LintSettling(personality, findings);
  LintBoardRevisions(personality, findings);
  LintPriority(personality, findings);
  LintFirmwareMode(personality, findings);
  LintNvramShapes(personality, findings);
  LintNvramNames(personality, findings);
}

// Those that can match and are not shadowed go to the end of `live`.
void LintReach(const LintSubject& subject, const LocatedType& type,
               std::vector<LivePersonality>& live, ConfigurationFindings& findings) {
  std::vector<Acceptance> acceptances;
  for (const auto& personality : type.personalities) {
    acceptances.push_back(AcceptanceOf(personality));
  }
  const auto shadowing = FindShadowed(acceptances);
  LintShadowing(subject, type, shadowing, findings);
  for (std::size_t i = 0; i < acceptances.size(); ++i) {
    if (!acceptances[i].acceptsAny || shadowing.shadowedBy[i] != i) continue;
    live.push_back({&type.personalities[i], std::move(acceptances[i])});
  }
}

}  // namespace

std::vector<ConfigurationFindings::Row> LintConfiguration(const LintSubject& subject,
                                                          const BoardFiles& files) {
  ConfigurationFindings findings;
  LintDuplicateKeys(subject.file.Root(), findings);
  LintShape(subject, findings);
  std::vector<LivePersonality> live;
  for (const auto& type : subject.types) {
    for (const auto& personality : type.personalities) LintPersonality(personality, findings);
    LintReach(subject, type, live, findings);
  }
  LintOverlaps(subject, live, findings);
  LintGaps(subject, live, findings);
  LintImages(subject, files, findings);
  LintNvramVariables(subject, live, findings);
  return findings.TakeSorted();
}

}  // namespace fernwick::lab
