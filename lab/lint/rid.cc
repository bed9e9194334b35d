#include "lab/lint/rid.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "lab/lint/rules/value_rules.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// The value of an entry, or its elements when it is an array; empty when there is no entry.
std::span<const PropertyValue> ValuesOf(const LocatedEntry* entry) {
  if (entry == nullptr) return {};
  const auto list = entry->value->AsArray();
  return list ? std::span(list->begin(), list->size()) : std::span(entry->value, 1);
}

// A set of RIDs, which are 0 to 15: bit N for N.
using Rids = unsigned;

// The RID that the number is; empty when it is not one.
Rids OfRid(const PropertyValue& number) {
  for (int rid = 0; rid < 16; ++rid) {
    if (NumbersEqual(number, rid)) return 1u << rid;
  }
  return 0;
}

// The RID of a controller with the unique id, as the inventory computes it; empty when it is not
// one.
Rids OfUid(const PropertyValue& uid) {
  const auto number = uid.AsNumber();
  return number ? 1u << (ToUnsigned64(*number) & 0xF) : 0;
}

using RidOf = Rids (*)(const PropertyValue&);

Rids OfAll(std::span<const PropertyValue> values, RidOf ridOf) {
  Rids rids = 0;
  for (const auto& value : values) rids |= ridOf(value);
  return rids;
}

// Other values are reported by other rules.
bool AreNumbers(std::span<const PropertyValue> values) {
  return !values.empty() &&
         std::ranges::all_of(values, [](const auto& v) { return NumbersEqual(v, v); });
}

bool IsAnyRid(const PropertyValue& number) {
  return !NumberLess(number, 0) && !NumberGreater(number, 15);
}

// Whether both keys have values of the right kind that exclude each other altogether.
bool Contradict(const LocatedPersonality& personality) {
  const auto rids = ValuesOf(personality.Find("RID"));
  const auto uids = ValuesOf(personality.Find("Ridge UID"));
  return AreNumbers(rids) && AreNumbers(uids) && (OfAll(rids, OfRid) & OfAll(uids, OfUid)) == 0;
}

// Reports the elements of a list that the other key, which has these RIDs, excludes.
void LintElements(const LocatedEntry& entry, RidOf ridOf, const LocatedEntry& other, Rids rids,
                  ConfigurationFindings& findings) {
  if (!entry.value->AsArray()) return;
  const auto values = ValuesOf(&entry);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if ((ridOf(values[i]) & rids) != 0) continue;
    findings.Add(LintRuleOf::DeadListElement, OffsetOfElement(entry, i),
                 Shown(values[i]) + " in " + Quoted(entry.key) + " can never match: \"" +
                     std::string(other.key) +
                     "\" excludes it, as an RID is the low 4 bits of the unique id");
  }
}

}  // namespace

bool RidContradictsUid(const LocatedPersonality& personality) {
  return personality.type == Types::LegacyThunderbolt && Contradict(personality);
}

void LintRidAndUid(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* rid = personality.Find("RID");
  const auto* uid = personality.Find("Ridge UID");
  if (rid == nullptr || uid == nullptr) return;
  if (std::ranges::none_of(ValuesOf(rid), IsAnyRid)) return;  // as another rule reports
  if (Contradict(personality)) {
    const bool isCertain = personality.type == Types::LegacyThunderbolt;
    if (!isCertain && personality.type != Types::Thunderbolt) return;
    findings.Add(
        isCertain ? LintRuleOf::RidNotOfUid : LintRuleOf::DoubtfulRid, rid->valueOffset,
        "\"RID\" is not the low 4 bits of any \"Ridge UID\" of this personality" +
            std::string(isCertain ? "" : ", so only a port with an RID of its own matches"));
    return;
  }
  if (personality.type != Types::LegacyThunderbolt) return;
  if (!AreNumbers(ValuesOf(rid)) || !AreNumbers(ValuesOf(uid))) return;
  LintElements(*rid, OfRid, *uid, OfAll(ValuesOf(uid), OfUid), findings);
  LintElements(*uid, OfUid, *rid, OfAll(ValuesOf(rid), OfRid), findings);
}

}  // namespace fernwick::lab
