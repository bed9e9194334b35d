// Personalities are grouped by all that they accept except for one key, for each key in turn. In a
// group an inverted index finds, for each value, the earlier lists that contain it. Linear in the
// number of values, apart from at most MaxCompared comparisons for each personality and key.

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>

#include "lab/lint/candidates.h"
#include "lab/lint/comparisons.h"
#include "lab/lint/rules/version_rules.h"
#include "plan/value_conversions.h"

namespace fernwick::lab {
namespace {

using Personalities = std::vector<const LivePersonality*>;

// Personalities that differ in one key only, by their lists of it.
struct Group {
  std::unordered_map<std::uint32_t, std::vector<const ValueSet*>> listsByValue;
  std::unordered_map<const ValueSet*, Personalities> personalities;
  std::set<std::string_view> images;
};

// The type, the index of the key, and the sets of all other keys.
using GroupId = std::tuple<TypeSet, std::size_t, std::vector<const ValueSet*>>;

std::string_view ImageOf(const LivePersonality& live) {
  return TextOf(live.personality->Value("Firmware")).value_or("");
}

bool AreNested(const ValueSet& a, const ValueSet& b) {
  return std::ranges::includes(a, b) || std::ranges::includes(b, a);
}

class ImageOrderLinter {
 public:
  ImageOrderLinter(const LintSubject& subject, const ValueSets& sets,
                   ConfigurationFindings& findings)
      : subject_(subject), sets_(sets), findings_(findings) {}

  // To be called in the order of the file.
  void Lint(const LivePersonality& live) {
    for (std::size_t key = 0; key < live.acceptance.sets.size(); ++key) {
      const auto* list = live.acceptance.sets[key];
      if (list != nullptr && list->size() > 1) LintList(live, key, *list);
    }
  }

  const CutShort& Limits() const { return cutShort_; }

 private:
  void LintList(const LivePersonality& live, std::size_t key, const ValueSet& list) {
    auto others = live.acceptance.sets;
    others[key] = nullptr;
    auto& group = groups_[{live.personality->type, key, std::move(others)}];
    auto& same = group.personalities[&list];
    if (same.empty()) {
      for (const auto value : list) group.listsByValue[value].push_back(&list);
    }
    group.images.insert(ImageOf(live));
    if (group.images.size() > 1) FindTaken(live, key, list, group);
    same.push_back(&live);
  }

  // Reports the first value of the list that an earlier personality accepts in each case.
  void FindTaken(const LivePersonality& live, std::size_t key, const ValueSet& list,
                 const Group& group) {
    std::set<const ValueSet*> tried = {&list};
    std::size_t compared = 0;
    for (const auto value : list) {
      for (const auto* other : group.listsByValue.at(value)) {
        if (!tried.insert(other).second) continue;
        ++compared;
        const auto& earlier = group.personalities.at(other);
        const auto* taker = AreNested(*other, list) ? nullptr : FindTaker(live, earlier, compared);
        if (taker != nullptr) return Report(live, *SetKeys()[key], sets_.ValueOf(value), *taker);
        if (compared <= MaxCompared) continue;
        ++cutShort_[live.personality->type];
        return;
      }
    }
  }

  static const LivePersonality* FindTaker(const LivePersonality& live, const Personalities& earlier,
                                          std::size_t& compared) {
    for (const auto* each : earlier) {
      if (++compared > MaxCompared) break;
      const bool covers = CoversWindow(each->acceptance, live.acceptance);
      if (covers && ImageOf(*each) != ImageOf(live)) return each;
    }
    return nullptr;
  }

  void Report(const LivePersonality& live, const Key& key, const PropertyValue& value,
              const LivePersonality& earlier) {
    const auto& entry = *live.personality->Find(key.name);
    const auto list = *entry.value->AsArray();
    const auto* element = std::ranges::find_if(list, [&](const PropertyValue& each) {
      return NumbersEqual(each, value) || StringsEqual(each, value);
    });
    const auto index = static_cast<std::size_t>(element - list.begin());
    findings_.Enter(live.personality);
    findings_.Add(LintRuleOf::OrderDecidesImage, OffsetOfElement(entry, index),
                  Shown(value) + " in " + Quoted(key.name) +
                      " is never reached: the personality at " +
                      Describe(subject_.file.LocationOf(earlier.personality->offset)) +
                      " accepts it, too, and plans " + Quoted(ImageOf(earlier)));
  }

  const LintSubject& subject_;
  const ValueSets& sets_;
  ConfigurationFindings& findings_;
  std::map<GroupId, Group> groups_;
  CutShort cutShort_;
};

}  // namespace

void LintImageOrder(const LintSubject& subject, const std::vector<LivePersonality>& live,
                    const ValueSets& sets, ConfigurationFindings& findings) {
  ImageOrderLinter linter(subject, sets, findings);
  for (const auto& each : live) linter.Lint(each);
  findings.Enter(nullptr);
  LintLimits(subject, linter.Limits(), "the order decides which image a controller gets", findings);
}

}  // namespace fernwick::lab
