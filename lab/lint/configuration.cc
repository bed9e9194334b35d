#include "lab/lint/configuration.h"

#include "lab/lint/acceptance.h"
#include "lab/lint/checks.h"
#include "lab/lint/comparisons.h"
#include "lab/lint/rid.h"
#include "lab/lint/shadowing.h"

namespace fernwick::lab {
namespace {

void LintPersonality(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  findings.Enter(&personality);
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
  findings.Enter(nullptr);
}

}  // namespace

void LintConfiguration(const LintSubject& subject, const BoardFiles& files,
                       ConfigurationFindings& findings) {
  LintDuplicateKeys(subject.file.Root(), findings);
  LintShape(subject, findings);
  ValueSets sets;
  std::vector<LivePersonality> live;
  for (const auto& type : subject.types) {
    for (const auto& personality : type.personalities) LintPersonality(personality, findings);
    LintShadowing(subject, type, sets, live, findings);
  }
  LintOverlaps(subject, live, findings);
  LintImageOrder(subject, live, sets, findings);
  LintGaps(subject, live, findings);
  LintImages(subject, files, findings);
  LintNvramVariables(subject, live, findings);
}

}  // namespace fernwick::lab
