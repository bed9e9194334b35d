#include "personality/usbc_check.h"

#include <cstdint>

#include "personality/legacy_usbc_check.h"
#include "personality/personality.h"
#include "personality/requirement_rules.h"

namespace fernwick {
namespace {

// One end of the range of board revisions that the personality is for. The hardware has no say.
struct RevisionBound {
  CheckedKey key;
  bool (*excludes)(const PropertyValue& bound, const PropertyValue& revision);
  Shortfall shortfall;
};

constexpr RevisionBound MinimumRevision = {"MinBoardRevision", NumberGreater,
                                           Shortfall::AboveBoardRevision};
constexpr RevisionBound MaximumRevision = {"MaxBoardRevision", NumberLess,
                                           Shortfall::BelowBoardRevision};

// A bound that is not a number rejects the pair.
bool IsWithin(const RevisionBound& bound, const CheckedValues& personality,
              const PropertyValue& revision, RequirementRecorder* recorder) {
  const auto* limit = personality.Find(bound.key);
  if (limit == nullptr) return true;
  const bool isNumber = limit->IsNumber();
  if (isNumber && !bound.excludes(*limit, revision)) return true;
  if (recorder != nullptr) {
    recorder->Add({.key = bound.key.Name(),
                   .shortfall = isNumber ? bound.shortfall : Shortfall::WrongKind,
                   .wanted = *limit,
                   .hardwareKey = {},
                   .found = revision});
  }
  return false;
}

bool IsBoardRevisionWithin(const CheckedValues& personality, unsigned boardRevision,
                           RequirementRecorder* recorder) {
  const PropertyValue revision(static_cast<std::uint8_t>(boardRevision));
  return AllMet(
      recorder, [&] { return IsWithin(MinimumRevision, personality, revision, recorder); },
      [&] { return IsWithin(MaximumRevision, personality, revision, recorder); });
}

// A needed revision is the only port silicon key whose absence is told.
constexpr RequirementSet PortSilicon[] = {
    {.key = "Port Silicon Vendor ID", .presence = KeyPresence::RequiredKey},
    {.key = "Port Silicon Device ID", .presence = KeyPresence::RequiredKey},
    {.key = "Port Silicon Revision",
     .presence = KeyPresence::RequiredKey,
     .missingKeyMessage = "** Missing port silicon revision key(s)\n"},
    {.key = "Port OTP Revision", .missingKeyMessage = "** Missing port OTP revision key(s) **\n"},
    // The kind and the comparison disagree, and must: a single string fails the kind, a single
    // number never equals a string, so only an array of strings can match.
    {.key = "Port UUID",
     .kind = SingleValueKind::NumberKind,
     .equal = StringsEqual,
     .missingKeyMessage = "** Missing port UUID(s)\n"},
};

}  // namespace

bool CheckUsbcRequirements(const CheckedValues& personality, const CheckedValues& hardware,
                           unsigned boardRevision, RequirementRecorder* recorder) {
  const CheckScope scope(PersonalityType::Usbc, recorder);
  return AllMet(
      recorder, [&] { return CheckLegacyUsbcRequirements(personality, hardware, recorder); },
      [&] { return RequirementSetMatch(personality, hardware, {.key = "RID"}, recorder); },
      [&] { return IsBoardRevisionWithin(personality, boardRevision, recorder); },
      [&] { return MatchesAll(personality, hardware, PortSilicon, recorder); });
}

}  // namespace fernwick
