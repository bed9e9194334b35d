#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "lab/lint/acceptance.h"
#include "lab/lint/checks.h"
#include "lab/lint/rules/doubtful_rules.h"

namespace fernwick::lab {
namespace {

bool IsUpperHexadecimal(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// Five groups of 8, 4, 4, 4 and 12 upper-case hexadecimal digits with hyphens between.
bool IsCanonicalUuid(std::string_view text) {
  constexpr std::string_view Form = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
  return std::ranges::equal(
      text, Form, [](char c, char form) { return form == '-' ? c == '-' : IsUpperHexadecimal(c); });
}

bool IsTrimmed(std::string_view text) {
  constexpr std::string_view Blanks = " \t\n\r";
  return !text.empty() && Blanks.find(text.front()) == std::string_view::npos &&
         Blanks.find(text.back()) == std::string_view::npos;
}

// A single value or an element of a list.
void LintValue(const PropertyValue& value, std::string_view key, std::size_t offset,
               ConfigurationFindings& findings) {
  const auto text = value.AsString();
  if (key == "Port UUID" && text && !IsCanonicalUuid(*text)) {
    findings.Add(LintRuleOf::DoubtfulUuid, offset,
                 Shown(value) + " is not a UUID in upper case, as the registry has them");
  } else if (key == "Device Model Name" && text && !IsTrimmed(*text)) {
    findings.Add(LintRuleOf::DoubtfulModelName, offset,
                 "the model name " + Shown(value) +
                     (text->empty() ? " is empty" : " begins or ends with a blank"));
  } else if (key == "Ridge UID" && value.AsReal() && NumbersEqual(value, value)) {
    findings.Add(LintRuleOf::RealUid, offset,
                 "\"Ridge UID\" is the real " + Shown(value) + "; unique ids are integers");
  } else if (key != "Firmware Mode" && value.AsBoolean()) {
    findings.Add(
        LintRuleOf::BooleanForNumber, offset,
        Quoted(key) + " is a boolean, which counts as " + (*value.AsBoolean() ? "1" : "0"));
  }
}

bool IsComparable(const PropertyValue& value) {
  return value.AsString() || NumbersEqual(value, value);
}

void LintRepetitions(const LocatedEntry& entry, Array list, ConfigurationFindings& findings) {
  std::vector<const PropertyValue*> values;
  for (const auto& value : list) {
    if (IsComparable(value)) values.push_back(&value);
  }
  std::ranges::stable_sort(values, IsBefore);
  for (std::size_t i = 1; i < values.size(); ++i) {
    if (IsBefore(values[i - 1], values[i])) continue;
    const auto index = static_cast<std::size_t>(values[i] - list.begin());
    findings.Add(LintRuleOf::RepeatedElement, OffsetOfElement(entry, index),
                 Shown(*values[i]) + " is in " + Quoted(entry.key) + " twice");
  }
}

}  // namespace

void LintDoubtfulValues(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  for (const auto& entry : personality.entries) {
    const auto* key = FindPersonalityKey(entry.key);
    if (key == nullptr || ((key->checkedBy | key->plannedBy) & personality.type) == 0) continue;
    const auto list = entry.value->AsArray();
    if (!list) {
      if (key->kind == KeyKind::ListOfStrings) continue;
      LintValue(*entry.value, entry.key, entry.valueOffset, findings);
      continue;
    }
    for (std::size_t i = 0; i < list->size(); ++i) {
      LintValue((*list)[i], entry.key, OffsetOfElement(entry, i), findings);
    }
    LintRepetitions(entry, *list, findings);
  }
}

}  // namespace fernwick::lab
