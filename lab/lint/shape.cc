#include <algorithm>
#include <vector>

#include "lab/lint/checks.h"
#include "lab/lint/rules/shape_rules.h"
#include "lab/support/spelling.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

void LintUnknownType(const LocatedEntry& entry, ConfigurationFindings& findings) {
  const auto meant = NearestSpelling(entry.key, NamesOf(Types::All));
  if (meant.empty()) {
    findings.Add(LintRuleOf::UnknownType, entry.keyOffset,
                 Quoted(entry.key) + " is not a type, so its contents match nothing");
  } else {
    findings.Add(LintRuleOf::MisspeltType, entry.keyOffset,
                 Quoted(entry.key) + " is not a type, so its contents match nothing; \"" +
                     std::string(meant) + "\" may be meant");
  }
}

void LintElements(const LocatedType& type, const Array& elements, ConfigurationFindings& findings) {
  if (elements.empty()) {
    findings.Add(LintRuleOf::EmptyType, type.entry.keyOffset,
                 Quoted(type.entry.key) + " has no personality");
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (elements[i].AsDictionary()) continue;
    findings.Add(LintRuleOf::PersonalityNotADictionary, OffsetOfElement(type.entry, i),
                 Shown(elements[i]) + " is written where a personality was expected");
  }
}

void LintType(const LocatedType& type, ConfigurationFindings& findings) {
  const auto wrong = WrongShapeText(type);
  if (!wrong.empty()) {
    findings.Add(LintRuleOf::WrongTypeShape, type.entry.valueOffset, wrong);
  } else if (!HasSinglePersonality(type.type)) {
    LintElements(type, *type.entry.value->AsArray(), findings);
  }
}

// The keys in the order of the alphabet, those of one spelling in the order of the file.
std::vector<const KeyLocation*> SortedKeys(const ValueLocation& dictionary) {
  std::vector<const KeyLocation*> keys;
  for (const auto& entry : dictionary.Entries()) keys.push_back(&entry);
  std::ranges::stable_sort(keys, {}, [](const KeyLocation* key) { return key->key; });
  return keys;
}

}  // namespace

std::string WrongShapeText(const LocatedType& type) {
  const auto& value = *type.entry.value;
  const bool isSingle = HasSinglePersonality(type.type);
  if (isSingle ? value.AsDictionary().has_value() : value.AsArray().has_value()) return "";
  return Quoted(type.entry.key) + " is " + Shown(value) + ", not " +
         (isSingle ? "a single personality" : "an array of personalities") +
         ", so it matches nothing";
}

void LintShape(const LintSubject& subject, ConfigurationFindings& findings) {
  if (!subject.file.Value().AsDictionary()) {
    findings.Add(LintRuleOf::NotADictionary, subject.file.Root().offset,
                 "the configuration is " + Shown(subject.file.Value()) + ", not a dictionary");
  }
  for (const auto& entry : subject.entries) {
    if (TypeNamed(entry.key) == Types::None) LintUnknownType(entry, findings);
  }
  for (const auto& type : subject.types) LintType(type, findings);
}

void LintDuplicateKeys(const ValueLocation& location, ConfigurationFindings& findings) {
  const auto keys = SortedKeys(location);
  for (std::size_t i = 1; i < keys.size(); ++i) {
    if (!(keys[i]->key == keys[i - 1]->key)) continue;
    findings.Add(LintRuleOf::DuplicateKey, keys[i]->offset,
                 Quoted(keys[i]->key) +
                     " occurs a second time in this dictionary; its earlier value is lost");
  }
  for (const auto& entry : location.Entries()) LintDuplicateKeys(entry.value, findings);
  for (const auto& element : location.Elements()) LintDuplicateKeys(element, findings);
}

}  // namespace fernwick::lab
