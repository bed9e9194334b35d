#include <algorithm>
#include <vector>

#include "lab/lint/checks.h"
#include "lab/lint/rules/shape_rules.h"
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

// `present` are the keys of the personality that anything reads.
void LintUnknownKey(const LocatedEntry& entry, TypeSet type,
                    const std::vector<std::string_view>& present, ConfigurationFindings& findings) {
  if (entry.key == ReservedKeyName) {
    findings.Add(LintRuleOf::ReservedKey, entry.keyOffset,
                 Quoted(entry.key) + " is replaced by the type of the personality");
    return;
  }
  const auto unread = Quoted(entry.key) + " is not read";
  if (const auto meant = NearestSpelling(entry.key, KnownNames()); !meant.empty()) {
    findings.Add(LintRuleOf::MisspeltKey, entry.keyOffset,
                 unread + "; \"" + std::string(meant) + "\" may be meant");
    return;
  }
  const auto similar = SimilarKey(entry.key, type);
  const bool isMeant = !similar.empty() && std::ranges::find(present, similar) == present.end();
  if (!isMeant && IsRegistryProperty(entry.key)) {
    findings.Add(LintRuleOf::SimilarKey, entry.keyOffset,
                 unread + ", so it constrains nothing; it is the name of a registry property");
  } else if (!isMeant) {
    findings.Add(LintRuleOf::UnreadKey, entry.keyOffset, unread + ", so it has no effect");
  } else {
    findings.Add(
        LintRuleOf::SimilarKey, entry.keyOffset,
        unread + ", so it constrains nothing; \"" + std::string(similar) + "\" may be meant");
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
  std::vector<std::string_view> present;
  for (const auto& entry : personality.entries) {
    if (FindPersonalityKey(entry.key) != nullptr) present.push_back(entry.key);
  }
  for (const auto& entry : personality.entries) {
    const auto* key = FindPersonalityKey(entry.key);
    if (key == nullptr) {
      LintUnknownKey(entry, personality.type, present, findings);
    } else if (((key->checkedBy | key->plannedBy) & personality.type) == 0) {
      findings.Add(LintRuleOf::KeyNotReadByType, entry.keyOffset,
                   "\"" + std::string(key->name) + "\" constrains nothing in a personality of \"" +
                       std::string(personality.typeName) + "\", whose check does not read it");
    }
  }
  LintMissingKeys(personality, findings);
}

}  // namespace fernwick::lab
