#include "lab/survey/payload_diff.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "driver/run.h"
#include "lab/explain/failure_text.h"
#include "lab/support/words.h"
#include "lab/survey/matched_pairs.h"
#include "lab/survey/row.h"
#include "lab/survey/text.h"
#include "personality/personality.h"
#include "plan/invocation_builder.h"
#include "plan/plan_values.h"

namespace fernwick::lab {
namespace {

bool HasPlan(const PayloadRun& run) {
  return run.run.status == ExitStatus::PlanPrinted && !run.recorder.bypassesUpdates;
}

// What the log says, which is why there is no configuration or no plan.
std::vector<std::string> LogLines(const PayloadRun& run) {
  std::vector<std::string> lines;
  for (auto& [text, count] : CountLines(run.run.standardError)) {
    if (!text.starts_with("** ")) lines.push_back(std::move(text));
  }
  return lines;
}

// One controller under one key: the same in both runs, whose hardware is the same.
using MatchKey = std::pair<std::string, std::size_t>;

MatchKey KeyOf(const MatchedPair& pair) {
  return {pair.key->key, pair.controller};
}

std::string NameOf(const MatchedPair& pair) {
  const auto of = [&](std::string_view key) {
    return CellText(ToJson(pair.Controller().Find(key)));
  };
  return pair.key->key + ", controller " + std::to_string(pair.controller + 1) + " (RID " +
         of("RID") + ", port " + of("Port Address") + ", version " + of("Version") + ")";
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

// Why a personality of one run matches nothing in the other.
class MissingMatch {
 public:
  MissingMatch(const MatchedPair& pair, const PayloadRun& without)
      : pair_(pair), without_(without) {}

  std::vector<std::string> Reasons() const {
    const auto& matching = without_.recorder.matching;
    const auto* types = matching.configuration ? matching.configuration->AsDictionary() : nullptr;
    if (types == nullptr) return LogLines(without_);
    const auto& type = pair_.key->key;
    const auto* value = types->Find(type);
    if (value == nullptr) return {"there is no key \"" + type + "\""};
    const auto personalities = PersonalitiesOf(type, *value);
    if (!personalities) {
      return {"\"" + type + "\" holds " + std::string(KindOf(*value)) + ", which matches nothing"};
    }
    const auto key = std::ranges::find(matching.keys, type, &KeyDecisions::key);
    const auto& decisions = key->controllers[pair_.controller].pairs;
    const auto place = CounterpartIn(*personalities);
    if (place >= decisions.size()) return {"there is no such personality"};
    const auto& decision = decisions[place];
    if (decision.outcome == PairOutcome::NotAPersonality) return {"it is no dictionary"};
    std::vector<std::string> reasons;
    for (const auto& failure : decision.failures) {
      reasons.push_back("\"" + std::string(failure.key) + "\" " + FailureText({failure, {}, {}}));
    }
    return reasons;
  }

 private:
  // The one personality with the same image, or else the one at the same place.
  std::size_t CounterpartIn(std::span<const PropertyValue> personalities) const {
    const auto* image = pair_.match->Find("Firmware");
    const auto hasImage = [&](const PropertyValue& value) {
      const auto* personality = value.AsDictionary();
      const auto* other = personality == nullptr ? nullptr : personality->Find("Firmware");
      return image != nullptr && other != nullptr && *image == *other;
    };
    if (std::ranges::count_if(personalities, hasImage) != 1) return pair_.personality;
    return static_cast<std::size_t>(std::ranges::find_if(personalities, hasImage) -
                                    personalities.begin());
  }

  const MatchedPair& pair_;
  const PayloadRun& without_;
};

PlanValues PlanOf(const PayloadRun& run) {
  PlanValues plan;
  for (const auto& match : run.recorder.matches) {
    FoldPriority(match, plan);
    MergeNvram(match, plan);
  }
  return plan;
}

// The options argument, which no payload directory is part of.
std::string OptionsOf(const PayloadRun& run) {
  InvocationBuilder builder("/", run.recorder.identity->boardIdString);
  PlanValues ignored;
  for (const auto& match : run.recorder.matches) builder.AddMatch(match, ignored, nullptr);
  builder.FinishInvocation();
  return builder.Arguments().back();
}

class Comparison {
 public:
  Comparison(const PayloadRun& before, const PayloadRun& after)
      : before_(before),
        after_(after),
        pairsBefore_(MatchedPairs(before.recorder)),
        pairsAfter_(MatchedPairs(after.recorder)) {}

  std::vector<DiffChange> Changes() && {
    ComparePlans();
    for (const auto& pair : pairsBefore_) {
      if (Find(pairsAfter_, KeyOf(pair)) != nullptr) continue;
      Add({"loses match", NameOf(pair), Summary(pair), {}, MissingMatch(pair, after_).Reasons()});
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
      return Add({"gains match",
                  NameOf(after),
                  {},
                  Summary(after),
                  MissingMatch(after, before_).Reasons()});
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
      names.push_back(pair.key->key + " " + std::to_string(pair.controller + 1));
    }
    return names;
  }

  void ComparePlanValues() {
    const auto before = PlanOf(before_);
    const auto after = PlanOf(after_);
    AddIfDifferent("priority", before.lowestPriority, after.lowestPriority);
    AddIfDifferent("NVRAM to set", ToJson(before.nvramToSet), ToJson(after.nvramToSet));
    AddIfDifferent("NVRAM to clear", ToJson(PropertyValue(before.nvramToClear)),
                   ToJson(PropertyValue(after.nvramToClear)));
    const auto hasOther = [](const DiffChange& change) {
      return change.kind == "order" || change.kind.ends_with(" match");
    };
    if (std::ranges::any_of(changes_, hasOther)) return;  // which changes the options by itself
    AddIfDifferent("options", OptionsOf(before_), OptionsOf(after_));
  }

  const PayloadRun& before_;
  const PayloadRun& after_;
  const std::vector<MatchedPair> pairsBefore_;
  const std::vector<MatchedPair> pairsAfter_;
  std::vector<DiffChange> changes_;
};

}  // namespace

std::vector<DiffChange> FindChanges(const PayloadRun& before, const PayloadRun& after) {
  return Comparison(before, after).Changes();
}

}  // namespace fernwick::lab
