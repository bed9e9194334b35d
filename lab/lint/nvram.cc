#include <algorithm>
#include <map>
#include <span>
#include <string>

#include "lab/lint/candidates.h"
#include "lab/lint/comparisons.h"
#include "lab/lint/rules/plan_rules.h"
#include "lab/lint/rules/version_rules.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

// One use of a variable: it is set or, without a value (null), cleared.
struct VariableUse {
  std::string_view variable;
  const PropertyValue* value;
  std::size_t offset;
  const LivePersonality* live;
};

void CollectUses(const LivePersonality& live, std::vector<VariableUse>& uses) {
  const auto* toSet = live.personality->Find("SetNVRAM");
  const auto variables = toSet == nullptr ? std::nullopt : toSet->value->AsDictionary();
  if (variables) {
    for (const auto& entry : LocatedEntries(*variables, *toSet->location)) {
      uses.push_back({entry.key, entry.value, entry.keyOffset, &live});
    }
  }
  const auto* toClear = live.personality->Find("ClearNVRAM");
  const auto names = toClear == nullptr ? std::nullopt : toClear->value->AsArray();
  if (!names) return;
  for (std::size_t i = 0; i < names->size(); ++i) {
    const auto name = (*names)[i].AsString();
    if (name) uses.push_back({*name, nullptr, OffsetOfElement(*toClear, i), &live});
  }
}

// The values that the uses set, numbered so that equal values have one number.
std::vector<int> NumberValues(std::span<const VariableUse> uses) {
  std::map<std::string, int> numbers;
  std::vector<int> numbered;
  for (const auto& use : uses) {
    const auto text = use.value == nullptr ? "" : WriteXmlPropertyList(*use.value);
    const auto next = static_cast<int>(numbers.size());
    numbered.push_back(numbers.emplace(text, next).first->second);
  }
  return numbered;
}

// The uses of one variable that set it, by the value.
class Setters {
 public:
  explicit Setters(std::span<const VariableUse> uses) : uses_(uses), values_(NumberValues(uses)) {}

  // The first that sets another value and can match on the same computer; null when there is none.
  const VariableUse* FindOther(std::size_t use) { return Find(use, values_[use]); }

  // The first that can match on the same computer; null when there is none.
  const VariableUse* FindFirst(std::size_t use) { return Find(use, -1); }

  void Add(std::size_t use) { setters_[values_[use]].push_back(use); }

  // Whether a search ended before all setters were compared.
  bool IsCutShort() const { return isCutShort_; }

 private:
  // Among those that do not set `value`.
  const VariableUse* Find(std::size_t use, int value) {
    std::size_t compared = 0;
    for (const auto& [number, setters] : setters_) {
      if (number == value) continue;
      for (const auto setter : setters) {
        isCutShort_ = isCutShort_ || compared == MaxCompared;
        if (compared++ == MaxCompared) return nullptr;
        if (CanMatchTogether(*uses_[setter].live, *uses_[use].live)) return &uses_[setter];
      }
    }
    return nullptr;
  }

  std::span<const VariableUse> uses_;
  std::vector<int> values_;
  std::map<int, std::vector<std::size_t>> setters_;
  bool isCutShort_ = false;
};

void LintConflicts(const LintSubject& subject, std::span<const VariableUse> uses, Setters& setters,
                   ConfigurationFindings& findings) {
  for (std::size_t i = 0; i < uses.size(); ++i) {
    if (uses[i].value == nullptr) continue;
    if (const auto* other = setters.FindOther(i)) {
      findings.Enter(uses[i].live->personality);
      findings.Add(LintRuleOf::NvramConflict, uses[i].offset,
                   Quoted(uses[i].variable) + " is set to another value at " +
                       Describe(subject.file.LocationOf(other->offset)) +
                       ", by a personality that can match on the same computer");
    }
    setters.Add(i);
  }
}

void LintVariable(const LintSubject& subject, std::span<const VariableUse> uses,
                  ConfigurationFindings& findings) {
  if (uses.size() < 2) return;
  Setters setters(uses);
  LintConflicts(subject, uses, setters, findings);
  for (std::size_t i = 0; i < uses.size(); ++i) {
    const auto* setter = uses[i].value == nullptr ? setters.FindFirst(i) : nullptr;
    if (setter == nullptr) continue;
    findings.Enter(uses[i].live->personality);
    findings.Add(LintRuleOf::NvramSetAndCleared, uses[i].offset,
                 Quoted(uses[i].variable) + " is cleared here and set at " +
                     Describe(subject.file.LocationOf(setter->offset)));
  }
  findings.Enter(nullptr);
  if (!setters.IsCutShort()) return;
  findings.Add(LintRuleOf::OverlapNotExamined, uses.front().offset,
               Quoted(uses.front().variable) + " is used " + std::to_string(uses.size()) +
                   " times, and each use was compared with " + std::to_string(MaxCompared) +
                   " others only");
}

}  // namespace

void LintNvramVariables(const LintSubject& subject, const std::vector<LivePersonality>& live,
                        ConfigurationFindings& findings) {
  std::vector<VariableUse> uses;
  for (const auto& personality : live) CollectUses(personality, uses);
  std::ranges::stable_sort(uses, {}, &VariableUse::variable);
  for (auto rest = std::span<const VariableUse>(uses); !rest.empty();) {
    const auto after =
        std::ranges::upper_bound(rest, rest.front().variable, {}, &VariableUse::variable);
    const auto count = static_cast<std::size_t>(after - rest.begin());
    LintVariable(subject, rest.first(count), findings);
    rest = rest.subspan(count);
  }
}

}  // namespace fernwick::lab
