#include "lab/survey/diff/payload_diff.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "lab/support/plan_summary.h"
#include "lab/survey/diff/match_reasons.h"
#include "lab/survey/diff/matches_by_controller.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

Json Value(const MatchedPair& pair, std::string_view key) {
  return ToJson(pair.match->Find(key));
}

Json Summary(const MatchedPair& pair) {
  return CellText(Value(pair, "Version")) + ", " + CellText(Value(pair, "Firmware"));
}

class Comparison {
 public:
  Comparison(const ToolRun& before, const ToolRun& after)
      : before_(before),
        after_(after),
        matchesBefore_(before),
        matchesAfter_(after),
        planBefore_(SummaryOfPlan(before)),
        planAfter_(SummaryOfPlan(after)),
        reasons_(before, after) {}

  std::vector<DiffChange> Changes() && {
    ComparePlans();
    for (const auto& pair : matchesBefore_.InOrder()) {
      if (matchesAfter_.Find(KeyOf(pair)) != nullptr) continue;
      Add({ChangeKind::LosesMatch, NameOf(pair), Summary(pair), {}, reasons_.WithoutInNew(pair)});
    }
    for (const auto& pair : matchesAfter_.InOrder()) CompareMatch(pair);
    CompareOrder();
    if (planBefore_ && planAfter_) ComparePlanValues(*planBefore_, *planAfter_);
    return std::move(changes_);
  }

 private:
  void Add(DiffChange change) { changes_.push_back(std::move(change)); }

  void AddIfDifferent(ChangeKind kind, Json before, Json after, const std::string& match = {}) {
    // Compared as printed: an integer is not the real of the same value.
    if (PrintJsonRow(before) == PrintJsonRow(after)) return;
    Add({kind, match, std::move(before), std::move(after)});
  }

  void ComparePlans() {
    if (planBefore_.has_value() == planAfter_.has_value()) return;
    if (planAfter_) return Add({ChangeKind::GainsPlan, {}, {}, {}, LogLines(before_)});
    Add({ChangeKind::LosesPlan, {}, {}, {}, LogLines(after_)});
  }

  void CompareMatch(const MatchedPair& after) {
    const auto* before = matchesBefore_.Find(KeyOf(after));
    if (before == nullptr) {
      return Add({ChangeKind::GainsMatch,
                  NameOf(after),
                  {},
                  Summary(after),
                  reasons_.WithoutInOld(after)});
    }
    CompareValue(ChangeKind::Image, "Firmware", *before, after);
    CompareValue(ChangeKind::Version, "Version", *before, after);
  }

  void CompareValue(ChangeKind kind, std::string_view key, const MatchedPair& before,
                    const MatchedPair& after) {
    const auto* valueBefore = before.match->Find(key);
    const auto* value = after.match->Find(key);
    if (valueBefore != nullptr && value != nullptr && *valueBefore == *value) return;
    AddIfDifferent(kind, ToJson(valueBefore), ToJson(value), NameOf(after));
  }

  // Compares the order of the matches that both have.
  void CompareOrder() {
    AddIfDifferent(ChangeKind::Order, CommonNames(matchesBefore_, matchesAfter_),
                   CommonNames(matchesAfter_, matchesBefore_));
  }

  static Json CommonNames(const MatchesByController& matches, const MatchesByController& others) {
    auto names = Json::array();
    for (const auto& pair : matches.InOrder()) {
      if (others.Find(KeyOf(pair)) == nullptr) continue;
      names.push_back(std::string(pair.key->key) + " " + std::to_string(pair.controller + 1));
    }
    return names;
  }

  void ComparePlanValues(const PlanSummary& before, const PlanSummary& after) {
    AddIfDifferent(ChangeKind::Priority, before.priority, after.priority);
    AddIfDifferent(ChangeKind::NvramToSet, before.setNvram, after.setNvram);
    AddIfDifferent(ChangeKind::NvramToClear, before.clearNvram, after.clearNvram);
    const auto hasOther = [](const DiffChange& change) {
      return change.kind == ChangeKind::Order || change.kind == ChangeKind::GainsMatch ||
             change.kind == ChangeKind::LosesMatch;
    };
    if (std::ranges::any_of(changes_, hasOther)) return;  // which changes the options by itself
    AddIfDifferent(ChangeKind::Options, before.options, after.options);
  }

  const ToolRun& before_;
  const ToolRun& after_;
  const MatchesByController matchesBefore_;
  const MatchesByController matchesAfter_;
  const std::optional<PlanSummary> planBefore_;
  const std::optional<PlanSummary> planAfter_;
  MatchReasons reasons_;
  std::vector<DiffChange> changes_;
};

}  // namespace

std::vector<DiffChange> FindChanges(const ToolRun& before, const ToolRun& after) {
  return Comparison(before, after).Changes();
}

}  // namespace fernwick::lab
