#include "lab/lint/nvram.h"

#include <algorithm>
#include <map>
#include <span>
#include <string>

#include "lab/lint/rules/plan_rules.h"
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

// A use is compared with no more than so many that set the variable.
constexpr std::size_t MaxSetters = 256;

void CollectUses(const LivePersonality& live, std::vector<VariableUse>& uses) {
  const auto* toSet = live.personality->Find("SetNVRAM");
  const auto variables = toSet == nullptr ? std::nullopt : toSet->value->AsDictionary();
  if (variables) {
    for (const auto& entry : LocatedEntries(*variables, toSet->location, toSet->valueOffset)) {
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

// The uses of one variable that set it, up to MaxSetters of them.
class Setters {
 public:
  explicit Setters(std::span<const VariableUse> uses) : uses_(uses), values_(NumberValues(uses)) {}

  // The first that sets another value and can match on the same computer; null when there is none.
  const VariableUse* FindOther(std::size_t use) const {
    return FindIf(use, [&](std::size_t setter) { return values_[setter] != values_[use]; });
  }

  // The first that can match on the same computer; null when there is none.
  const VariableUse* FindFirst(std::size_t use) const {
    return FindIf(use, [](std::size_t) { return true; });
  }

  void Add(std::size_t use) {
    if (setters_.size() < MaxSetters) setters_.push_back(use);
  }

 private:
  template <typename Predicate>
  const VariableUse* FindIf(std::size_t use, Predicate isWanted) const {
    const auto found = std::ranges::find_if(setters_, [&](std::size_t setter) {
      return isWanted(setter) && CanMatchTogether(*uses_[setter].live, *uses_[use].live);
    });
    return found == setters_.end() ? nullptr : &uses_[*found];
  }

  std::span<const VariableUse> uses_;
  std::vector<int> values_;
  std::vector<std::size_t> setters_;
};

void LintVariable(const LintSubject& subject, std::span<const VariableUse> uses,
                  ConfigurationFindings& findings) {
  if (uses.size() < 2) return;
  Setters setters(uses);
  for (std::size_t i = 0; i < uses.size(); ++i) {
    if (uses[i].value == nullptr) continue;
    if (const auto* other = setters.FindOther(i)) {
      findings.Add(LintRuleOf::NvramConflict, uses[i].offset,
                   Quoted(uses[i].variable) + " is set to another value at " +
                       Describe(subject.file.LocationOf(other->offset)) +
                       ", by a personality that can match on the same computer");
    }
    setters.Add(i);
  }
  for (std::size_t i = 0; i < uses.size(); ++i) {
    const auto* setter = uses[i].value == nullptr ? setters.FindFirst(i) : nullptr;
    if (setter == nullptr) continue;
    findings.Add(LintRuleOf::NvramSetAndCleared, uses[i].offset,
                 Quoted(uses[i].variable) + " is cleared here and set at " +
                     Describe(subject.file.LocationOf(setter->offset)));
  }
}

}  // namespace

void LintNvramVariables(const LintSubject& subject, const std::vector<LivePersonality>& live,
                        ConfigurationFindings& findings) {
  std::vector<VariableUse> uses;
  for (const auto& personality : live) CollectUses(personality, uses);
  std::ranges::stable_sort(uses, {}, &VariableUse::variable);
  for (auto rest = std::span<const VariableUse>(uses); !rest.empty();) {
    const auto behind =
        std::ranges::upper_bound(rest, rest.front().variable, {}, &VariableUse::variable);
    const auto count = static_cast<std::size_t>(behind - rest.begin());
    LintVariable(subject, rest.first(count), findings);
    rest = rest.subspan(count);
  }
}

}  // namespace fernwick::lab
