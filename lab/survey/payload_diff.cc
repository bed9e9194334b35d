#include "lab/survey/payload_diff.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "lab/explain/failed_requirement.h"
#include "lab/support/words.h"
#include "lab/survey/row.h"
#include "lab/survey/text.h"
#include "personality/personality.h"
#include "plan/invocation_builder.h"
#include "plan/plan_values.h"

namespace fernwick::lab {
namespace {

bool HasPlan(const ToolRun& run) {
  return run.result.status == ExitStatus::PlanPrinted && !run.result.bypassesUpdates;
}

// What the log says, which is why there is no configuration or no plan.
std::vector<std::string> LogLines(const ToolRun& run) {
  std::vector<std::string> lines;
  for (auto& [text, count] : CountLines(run.standardError)) {
    if (!text.starts_with("** ")) lines.push_back(std::move(text));
  }
  return lines;
}

// One controller under one key: the same in both runs, whose hardware is the same.
using MatchKey = std::pair<std::string_view, std::size_t>;

MatchKey KeyOf(const MatchedPair& pair) {
  return {pair.key->key, pair.controller};
}

std::string NameOf(const MatchedPair& pair) {
  const auto of = [&](std::string_view key) {
    return CellText(ToJson(pair.Controller().Find(key)));
  };
  return std::string(pair.key->key) + ", controller " + std::to_string(pair.controller + 1) +
         " (RID " + of("RID") + ", port " + of("Port Address") + ", version " + of("Version") + ")";
}

Json Value(const MatchedPair& pair, std::string_view key) {
  return ToJson(pair.match->Find(key));
}

Json Summary(const MatchedPair& pair) {
  return CellText(Value(pair, "Version")) + ", " + CellText(Value(pair, "Firmware"));
}

const MatchedPair* Find(const std::vector<MatchedPair>& pairs, const MatchKey& key) {
  const auto found = std::ranges::find(pairs, key, KeyOf);
  return found == pairs.end() ? nullptr : &*found;
}

// The index of the one personality with the same image as the pair's, or else the pair's own.
std::size_t CounterpartIn(Array personalities, const MatchedPair& pair) {
  const auto* image = pair.match->Find("Firmware");
  const auto hasImage = [&](const PropertyValue& value) {
    const auto personality = value.AsDictionary();
    const auto* other = personality ? personality->Find("Firmware") : nullptr;
    return image != nullptr && other != nullptr && *image == *other;
  };
  if (std::ranges::count_if(personalities, hasImage) != 1) return pair.personality;
  const auto* found = std::ranges::find_if(personalities, hasImage);
  return static_cast<std::size_t>(found - personalities.begin());
}

std::vector<std::string> FailureTexts(TypeSet type, Dictionary personality,
                                      const RequirementContext& context) {
  std::vector<std::string> texts;
  for (const auto& failed : FailedRequirements(type, personality, context)) {
    texts.push_back("\"" + std::string(failed.requirement->key) + "\" " + FailureText(failed));
  }
  return texts;
}

// Why a personality of one run matches nothing in the other.
std::vector<std::string> ReasonsWithout(const MatchedPair& pair, const ToolRun& run) {
  const auto& result = run.result;
  const auto types =
      result.configuration ? result.configuration->value.AsDictionary() : std::nullopt;
  if (!types) return LogLines(run);
  const auto type = pair.key->key;
  const auto* value = types->Find(type);
  if (value == nullptr) return {"there is no key \"" + std::string(type) + "\""};
  const auto personalities = PersonalitiesOf(type, *value);
  if (!personalities) {
    return {"\"" + std::string(type) + "\" holds " + std::string(KindOf(*value)) +
            ", which matches nothing"};
  }
  const auto index = CounterpartIn(*personalities, pair);
  if (index >= personalities->size()) return {"there is no such personality"};
  const auto personality = (*personalities)[index].AsDictionary();
  if (!personality) return {"it is no dictionary"};
  const auto key = std::ranges::find(run.trace.keys, type, &KeyTrace::key);
  const auto& controller = key->inventory.records[pair.controller];
  return FailureTexts(TypeNamed(type), *personality,
                      {controller, result.identity->boardRevision, result.bypassesVersionCheck});
}

PlanValues PlanOf(const ToolRun& run) {
  PlanValues plan;
  for (const auto& match : run.result.matches) {
    FoldPriority(match, plan);
    MergeNvram(match, plan);
  }
  return plan;
}

Json Variables(const PlanValues& plan) {
  return ToJson(PropertyValue(Dictionary(plan.nvramToSet)));
}

Json Names(const PlanValues& plan) {
  return ToJson(PropertyValue(Array(std::span(plan.nvramToClear))));
}

// The options argument, which no payload directory is part of.
std::string OptionsOf(const ToolRun& run) {
  InvocationBuilder builder("/", run.result.identity->boardIdString);
  PlanValues ignored;
  StringConsole console;
  for (const auto& match : run.result.matches) builder.AddMatch(match, ignored, false, console);
  builder.FinishInvocation();
  return builder.Arguments().back();
}

class Comparison {
 public:
  Comparison(const ToolRun& before, const ToolRun& after)
      : before_(before),
        after_(after),
        pairsBefore_(MatchedPairs(before)),
        pairsAfter_(MatchedPairs(after)) {}

  std::vector<DiffChange> Changes() && {
    ComparePlans();
    for (const auto& pair : pairsBefore_) {
      if (Find(pairsAfter_, KeyOf(pair)) != nullptr) continue;
      Add({"loses match", NameOf(pair), Summary(pair), {}, ReasonsWithout(pair, after_)});
    }
    for (const auto& pair : pairsAfter_) CompareMatch(pair);
    CompareOrder();
    if (HasPlan(before_) && HasPlan(after_)) ComparePlanValues();
    return std::move(changes_);
  }

 private:
  void Add(DiffChange change) { changes_.push_back(std::move(change)); }

  void AddIfDifferent(const char* kind, Json before, Json after, const std::string& match = {}) {
    // Compared as printed: an integer is not the real of the same value.
    if (PrintJsonRow(before) == PrintJsonRow(after)) return;
    Add({kind, match, std::move(before), std::move(after)});
  }

  void ComparePlans() {
    if (HasPlan(before_) == HasPlan(after_)) return;
    if (HasPlan(after_)) return Add({"gains plan", {}, {}, {}, LogLines(before_)});
    Add({"loses plan", {}, {}, {}, LogLines(after_)});
  }

  void CompareMatch(const MatchedPair& after) {
    const auto* before = Find(pairsBefore_, KeyOf(after));
    if (before == nullptr) {
      return Add(
          {"gains match", NameOf(after), {}, Summary(after), ReasonsWithout(after, before_)});
    }
    AddIfDifferent("image", Value(*before, "Firmware"), Value(after, "Firmware"), NameOf(after));
    AddIfDifferent("version", Value(*before, "Version"), Value(after, "Version"), NameOf(after));
  }

  // Of the matches that both have.
  void CompareOrder() {
    AddIfDifferent("order", CommonNames(pairsBefore_, pairsAfter_),
                   CommonNames(pairsAfter_, pairsBefore_));
  }

  static Json CommonNames(const std::vector<MatchedPair>& pairs,
                          const std::vector<MatchedPair>& others) {
    auto names = Json::array();
    for (const auto& pair : pairs) {
      if (Find(others, KeyOf(pair)) == nullptr) continue;
      names.push_back(std::string(pair.key->key) + " " + std::to_string(pair.controller + 1));
    }
    return names;
  }

  void ComparePlanValues() {
    const auto before = PlanOf(before_);
    const auto after = PlanOf(after_);
    AddIfDifferent("priority", before.lowestPriority, after.lowestPriority);
    AddIfDifferent("NVRAM to set", Variables(before), Variables(after));
    AddIfDifferent("NVRAM to clear", Names(before), Names(after));
    const auto hasOther = [](const DiffChange& change) {
      return change.kind == "order" || change.kind.ends_with(" match");
    };
    if (std::ranges::any_of(changes_, hasOther)) return;  // which changes the options by itself
    AddIfDifferent("options", OptionsOf(before_), OptionsOf(after_));
  }

  const ToolRun& before_;
  const ToolRun& after_;
  const std::vector<MatchedPair> pairsBefore_;
  const std::vector<MatchedPair> pairsAfter_;
  std::vector<DiffChange> changes_;
};

}  // namespace

std::vector<DiffChange> FindChanges(const ToolRun& before, const ToolRun& after) {
  return Comparison(before, after).Changes();
}

}  // namespace fernwick::lab
