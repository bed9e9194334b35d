#include <vector>

#include "lab/lint/checks.h"
#include "lab/lint/shape_rules.h"
#include "lab/support/spelling.h"

namespace fernwick::lab {
namespace {

// The tool writes it into every match record.
constexpr std::string_view ReservedKeyName = "Personality Type";

const std::vector<std::string_view>& KnownNames() {
  static const std::vector<std::string_view> names = [] {
    std::vector<std::string_view> all;
    for (const auto& key : KeySchema()) {
      if (key.kind != KeyKind::NotRead) all.push_back(key.name);
    }
    return all;
  }();
  return names;
}

void LintUnknownKey(const LocatedEntry& entry, ConfigurationFindings& findings) {
  if (entry.key == ReservedKeyName) {
    findings.Add(LintRuleOf::ReservedKey, entry.keyOffset,
                 Quoted(entry.key) + " is replaced by the type under which the personality stands");
    return;
  }
  const auto meant = NearestSpelling(entry.key, KnownNames());
  if (meant.empty()) {
    findings.Add(LintRuleOf::UnreadKey, entry.keyOffset,
                 "nothing reads " + Quoted(entry.key) + ", so it has no effect");
  } else {
    findings.Add(
        LintRuleOf::MisspeltKey, entry.keyOffset,
        "nothing reads " + Quoted(entry.key) + "; \"" + std::string(meant) + "\" may be meant");
  }
}

void LintMissingKeys(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  for (const auto& key : KeySchema()) {
    if ((key.checkedBy & key.requiredBy & personality.type) == 0) continue;
    if (personality.Find(key.name) != nullptr) continue;
    const char* unless = key.name == "Version" ? " unless the version check is bypassed" : "";
    findings.Add(LintRuleOf::MissingKey, personality.offset,
                 "without \"" + std::string(key.name) + "\" a personality of \"" +
                     std::string(personality.typeName) + "\" never matches" + unless);
  }
}

}  // namespace

void LintKeys(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  for (const auto& entry : personality.entries) {
    const auto* key = FindPersonalityKey(entry.key);
    if (key == nullptr) {
      LintUnknownKey(entry, findings);
    } else if (((key->checkedBy | key->plannedBy) & personality.type) == 0) {
      findings.Add(LintRuleOf::KeyNotReadByType, entry.keyOffset,
                   "\"" + std::string(key->name) + "\" constrains nothing in a personality of \"" +
                       std::string(personality.typeName) + "\", whose check does not read it");
    }
  }
  LintMissingKeys(personality, findings);
}

}  // namespace fernwick::lab
