#include "plan/plan_values.h"

#include <algorithm>
#include <set>
#include <span>

#include "plan/value_conversions.h"

namespace fernwick {
namespace {

using Entries = std::span<const DictionaryEntry>;

// The entries of each dictionary where it occurs first.
std::vector<Entries> Distinct(const std::vector<Dictionary>& dictionaries) {
  std::vector<Entries> all;
  std::set<const DictionaryEntry*> known;
  for (const auto& dictionary : dictionaries) {
    const auto entries = dictionary.Entries();
    if (known.insert(entries.data()).second) all.push_back(entries);
  }
  return all;
}

}  // namespace

void FoldPriority(const MatchRecord& match, PlanValues& plan) {
  plan.lowestPriority = std::min(plan.lowestPriority, Integer32Of(match.Find("Priority")));
}

void MergeNvram(const MatchRecord& match, PlanValues& plan) {
  const auto* toSet = match.Find("SetNVRAM");
  if (const auto variables = toSet == nullptr ? std::nullopt : toSet->AsDictionary()) {
    plan.settings.push_back(*variables);
  }
  const auto* toClear = match.Find("ClearNVRAM");
  if (const auto names = toClear == nullptr ? std::nullopt : toClear->AsArray()) {
    plan.clearings.push_back(*names);
  }
}

// A variable has the position of its first setting and the value of its last. So each dictionary is
// merged twice: all in the order in which they first occur, which decides the positions, then all
// in the order in which they last occur.
Record NvramToSet(const PlanValues& plan) {
  auto parts = Distinct(plan.settings);
  auto last = Distinct({plan.settings.rbegin(), plan.settings.rend()});
  parts.insert(parts.end(), last.rbegin(), last.rend());
  std::vector<DictionaryEntry> entries;
  for (const auto part : parts) entries.insert(entries.end(), part.begin(), part.end());
  return Record(Dictionary(WithoutRepeatedKeys(entries)));
}

std::vector<PropertyValue> NvramToClear(const PlanValues& plan) {
  std::vector<PropertyValue> names;
  for (const auto& clearing : plan.clearings) {
    names.insert(names.end(), clearing.begin(), clearing.end());
  }
  return names;
}

}  // namespace fernwick
