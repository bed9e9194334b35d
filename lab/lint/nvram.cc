#include "lab/lint/nvram.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string>

#include "lab/lint/plan_rules.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

// One place where a variable is set or, without a value (null), cleared.
struct VariableUse {
  std::string_view variable;
  const PropertyValue* value;
  std::size_t offset;
  RevisionRange revisions;
};

using Uses = std::vector<const VariableUse*>;

void CollectUses(const LivePersonality& live, std::vector<VariableUse>& uses) {
  const auto* toSet = live.personality->Find("SetNVRAM");
  const auto variables = toSet == nullptr ? std::nullopt : toSet->value->AsDictionary();
  if (variables) {
    for (const auto& entry : LocatedEntries(*variables, toSet->place, toSet->valueOffset)) {
      uses.push_back({entry.key, entry.value, entry.keyOffset, live.revisions});
    }
  }
  const auto* toClear = live.personality->Find("ClearNVRAM");
  const auto names = toClear == nullptr ? std::nullopt : toClear->value->AsArray();
  if (!names) return;
  for (std::size_t i = 0; i < names->size(); ++i) {
    const auto name = (*names)[i].AsString();
    if (name) uses.push_back({*name, nullptr, OffsetOfElement(*toClear, i), live.revisions});
  }
}

// All uses of one variable that set it, by the board revisions for which they do.
class Setters {
 public:
  explicit Setters(std::span<const VariableUse> uses) {
    std::map<std::string, int> numbers;
    for (const auto& use : uses) {
      const auto text = use.value == nullptr ? "" : WriteXmlPropertyList(*use.value);
      valueNumbers_.push_back(
          numbers.emplace(text, static_cast<int>(numbers.size())).first->second);
    }
    uses_ = uses;
  }

  // The first setter known for one of the revisions whose value is another than that of the use;
  // null when there is none.
  const VariableUse* FindOther(std::size_t use) const {
    return Find(use, [&](const Slot& slot) {
      const bool differs = slot.first != None && valueNumbers_[slot.first] != valueNumbers_[use];
      return differs ? slot.first : slot.other;
    });
  }

  // The first setter known for one of the revisions.
  const VariableUse* FindFirst(std::size_t use) const {
    return Find(use, [](const Slot& slot) { return slot.first; });
  }

  void Add(std::size_t use) {
    ForRevisionsOf(use, [&](Slot& slot) {
      if (slot.first == None) {
        slot.first = use;
      } else if (slot.other == None && valueNumbers_[slot.first] != valueNumbers_[use]) {
        slot.other = use;
      }
    });
  }

 private:
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  // Of one board revision: the first setter, and the first that sets another value.
  struct Slot {
    std::size_t first = None;
    std::size_t other = None;
  };

  template <typename Visit>
  void ForRevisionsOf(std::size_t use, Visit visit) {
    const auto [lowest, highest] = uses_[use].revisions;
    for (int i = lowest; i <= highest; ++i) visit(slots_[static_cast<std::size_t>(i)]);
  }

  template <typename Pick>
  const VariableUse* Find(std::size_t use, Pick pick) const {
    std::size_t found = None;
    const auto [lowest, highest] = uses_[use].revisions;
    for (int i = lowest; i <= highest; ++i) {
      found = std::min(found, pick(slots_[static_cast<std::size_t>(i)]));
    }
    return found == None ? nullptr : &uses_[found];
  }

  std::span<const VariableUse> uses_;
  std::vector<int> valueNumbers_;
  std::array<Slot, 256> slots_;
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
