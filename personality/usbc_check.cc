#include "personality/usbc_check.h"

#include <cstdint>

#include "personality/legacy_usbc_check.h"
#include "personality/requirement_rules.h"

namespace fernwick {
namespace {

// A bound that is not a number rejects the pair.
bool IsBoardRevisionWithin(const Personality& personality, unsigned boardRevision) {
  const PropertyValue revision(static_cast<std::uint8_t>(boardRevision));
  const auto* minimum = personality.Find("MinBoardRevision");
  if (minimum != nullptr && (!minimum->IsNumber() || NumberGreater(*minimum, revision))) {
    return false;
  }
  const auto* maximum = personality.Find("MaxBoardRevision");
  return maximum == nullptr || (maximum->IsNumber() && !NumberLess(*maximum, revision));
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

bool CheckUsbcRequirements(const Personality& personality, const HardwareRecord& hardware,
                           unsigned boardRevision) {
  return CheckLegacyUsbcRequirements(personality, hardware) &&
         RequirementSetMatch(personality, hardware, {.key = "RID"}) &&
         IsBoardRevisionWithin(personality, boardRevision) &&
         MatchesAll(personality, hardware, PortSilicon);
}

}  // namespace fernwick
