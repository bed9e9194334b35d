#include <algorithm>

#include "lab/lint/acceptance.h"
#include "lab/lint/checks.h"
#include "lab/lint/rules/value_rules.h"
#include "personality/requirements.h"

namespace fernwick::lab {
namespace {

// What can match under a key, with its article.
std::string_view WhatMatches(KeyKind kind) {
  switch (kind) {
    case KeyKind::NumberOrList: return "a number or an array of numbers";
    case KeyKind::StringOrList: return "a string or an array of strings";
    case KeyKind::ListOfStrings: return "an array of strings";
    default: return "a number";
  }
}

void AddWrongKind(const LintRule& rule, const LocatedEntry& entry, KeyKind kind,
                  ConfigurationFindings& findings) {
  findings.Add(rule, entry.valueOffset,
               Quoted(entry.key) + " is " + Shown(*entry.value) + "; only " +
                   std::string(WhatMatches(kind)) + " can match");
}

bool IsBound(const LocatedEntry& entry) {
  return entry.key != "Version";
}

void LintNumber(const LocatedEntry& entry, const Key& key, ConfigurationFindings& findings) {
  if (entry.value->AsArray()) {
    AddWrongKind(LintRuleOf::ListNotAllowed, entry, key.kind, findings);
  } else if (!entry.value->IsNumber()) {
    AddWrongKind(LintRuleOf::WrongKind, entry, key.kind, findings);
  } else if (IsBound(entry) && !NumbersEqual(*entry.value, *entry.value)) {
    findings.Add(LintRuleOf::NanBound, entry.valueOffset,
                 Quoted(entry.key) + " is NaN, which excludes nothing");
  }
}

void LintList(const LocatedEntry& entry, const Array& list, const Key& key, TypeSet type,
              ConfigurationFindings& findings) {
  if (list.empty()) {
    findings.Add(LintRuleOf::EmptyList, entry.valueOffset,
                 Quoted(entry.key) + " is an empty array, which matches nothing");
    return;
  }
  const bool isDead = std::ranges::none_of(
      list, [&](const auto& element) { return UnmatchableReason(element, key, type).empty(); });
  if (isDead) {
    findings.Add(LintRuleOf::DeadList, entry.valueOffset,
                 "no element of " + Quoted(entry.key) + " can match; of the first, " +
                     Shown(list[0]) + ": " + UnmatchableReason(list[0], key, type));
    return;
  }
  for (std::size_t i = 0; i < list.size(); ++i) {
    const auto why = UnmatchableReason(list[i], key, type);
    if (why.empty()) continue;
    findings.Add(LintRuleOf::DeadListElement, OffsetOfElement(entry, i),
                 Shown(list[i]) + " in " + Quoted(entry.key) + " can never match: " + why);
  }
}

void LintSingle(const LocatedEntry& entry, const Key& key, TypeSet type,
                ConfigurationFindings& findings) {
  if (key.kind == KeyKind::ListOfStrings) {
    const bool isString = entry.value->AsString().has_value();
    AddWrongKind(isString ? LintRuleOf::SinglePortUuid : LintRuleOf::WrongKind, entry, key.kind,
                 findings);
    return;
  }
  const auto why = UnmatchableReason(*entry.value, key, type);
  if (why.empty()) return;
  if (!entry.value->IsNumber() || key.kind == KeyKind::StringOrList) {
    AddWrongKind(LintRuleOf::WrongKind, entry, key.kind, findings);
    return;
  }
  findings.Add(
      key.name == "RID" && type == Types::LegacyThunderbolt ? LintRuleOf::RidOutOfRange
                                                            : LintRuleOf::UnreachableNumber,
      entry.valueOffset,
      Quoted(entry.key) + " is " + Shown(*entry.value) + ", which can never match: " + why);
}

// RIDs that a port below a Thunderbolt controller can have only when it has an RID of its own.
void LintPortRid(const LocatedEntry& entry, const Key& key, ConfigurationFindings& findings) {
  const auto lint = [&](const PropertyValue& rid, std::size_t offset) {
    if (!UnmatchableReason(rid, key, Types::Thunderbolt).empty()) return;
    if (UnmatchableReason(rid, key, Types::LegacyThunderbolt).empty()) return;
    findings.Add(LintRuleOf::DoubtfulRid, offset,
                 Shown(rid) +
                     " in \"RID\" matches only a port with an RID of its own; that of a "
                     "Thunderbolt controller is 0 to 15");
  };
  const auto list = entry.value->AsArray();
  if (!list) return lint(*entry.value, entry.valueOffset);
  for (std::size_t i = 0; i < list->size(); ++i) lint((*list)[i], OffsetOfElement(entry, i));
}

}  // namespace

void LintValues(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  for (const auto& entry : personality.entries) {
    const auto* key = FindPersonalityKey(entry.key);
    if (key == nullptr || (key->checkedBy & personality.type) == 0) continue;
    if (FindSetRequirement(personality.type, key->name) == nullptr) {
      LintNumber(entry, *key, findings);
    } else if (const auto list = entry.value->AsArray()) {
      LintList(entry, *list, *key, personality.type, findings);
    } else {
      LintSingle(entry, *key, personality.type, findings);
    }
    if (key->name == "RID" && personality.type == Types::Thunderbolt) {
      LintPortRid(entry, *key, findings);
    }
  }
}

}  // namespace fernwick::lab
