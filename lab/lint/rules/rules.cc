#include "lab/lint/rules/rules.h"

#include <algorithm>
#include <array>

#include "lab/lint/rules/doubtful_rules.h"
#include "lab/lint/rules/nvram_rules.h"
#include "lab/lint/rules/payload_rules.h"
#include "lab/lint/rules/plan_rules.h"
#include "lab/lint/rules/shape_rules.h"
#include "lab/lint/rules/value_rules.h"
#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {
namespace {

constexpr auto SortedRules = [] {
  using namespace LintRuleOf;
  std::array rules = {
      // The payload and its files.
      &NoFernwickDirectory, &NoBoards, &ImpossibleBoardId, &DoubtfulBoardId, &SameBoardTwice,
      &NestedBoard, &NoConfiguration, &UnreadableFile, &MalformedPropertyList,
      // The shape of a configuration, and its keys.
      &NotADictionary, &DuplicateKey, &UnknownType, &MisspeltType, &WrongTypeShape, &EmptyType,
      &PersonalityNotADictionary, &MisspeltKey, &SimilarKey, &UnreadKey, &KeyNotReadByType,
      &ReservedKey, &MissingKey,
      // Their values.
      &WrongKind, &ListNotAllowed, &SinglePortUuid, &EmptyList, &DeadList, &DeadListElement,
      &UnreachableNumber, &RidOutOfRange, &RidNotOfUid, &DoubtfulRid, &NanBound, &DoubtfulUuid,
      &DoubtfulModelName, &RealUid, &BooleanForNumber, &RepeatedElement,
      // What can match, and what is reached.
      &VersionBoundsCrossed, &VersionNotAboveMinimum, &EmptyVersionWindow, &MaximumJustMissed,
      &UnreportableVersion, &EmptyBoardRevisionRange, &BoardRevisionOutOfRange,
      &ShadowedPersonality, &TwoImagesForOneController, &VersionGap, &BoardRevisionGap,
      &ShadowingNotExamined, &OverlapNotExamined, &OrderDecidesImage,
      // What the plan contains.
      &NoFirmware, &MissingImage, &ImageNotAFile, &ImageOutsideBoardDirectory, &ImageNotAPlainName,
      &EmptyImage, &PointerFile, &ImageLinkedOutside, &ConfigurationAsImage, &SameImageTwice,
      &ImageVersionsDiffer, &UnusedFile, &MissingUtility, &NoPriority, &AlteredPriority,
      &PriorityWithoutEffect, &AlteredFirmwareMode, &NvramWrongShape, &ClearedNameNotText,
      &NvramSetAndCleared, &NvramConflict, &NvramEmptyName, &NvramPayloadVariable,
      &NvramBypassSwitch, &NvramIdleBypassSwitch, &NvramBareSwitch, &NvramBootArgs};
  std::ranges::sort(rules, {}, [](const LintRule* rule) { return rule->id; });
  return rules;
}();

}  // namespace

std::string_view NameOf(Severity severity) {
  switch (severity) {
    case Severity::Note: return "note";
    case Severity::Warning: return "warning";
    case Severity::Error: break;
  }
  return "error";
}

std::span<const LintRule* const> LintRules() {
  return SortedRules;
}

const LintRule* FindLintRule(std::string_view id) {
  const auto* const rule =
      std::ranges::find(SortedRules, id, [](const LintRule* r) { return r->id; });
  return rule == SortedRules.end() ? nullptr : *rule;
}

}  // namespace fernwick::lab
