// An inverted index: for each key and value the personalities that accept it. A search uses the key
// that leaves the fewest candidates and compares at most MaxCompared of them, so its cost does not
// grow with the number of personalities.

#include "lab/lint/candidates.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "lab/lint/rules/version_rules.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

using Lists = std::vector<const std::vector<std::size_t>*>;

std::size_t Count(const Lists& lists) {
  std::size_t count = 0;
  for (const auto* list : lists) count += list->size();
  return count;
}

// The numbers in the lists, each once, up to MaxCompared and one more, by which the caller sees
// that there are more.
std::set<std::size_t> FirstOf(const Lists& lists) {
  std::set<std::size_t> first;
  for (const auto* list : lists) {
    for (const auto number : *list) {
      if (first.size() > MaxCompared) return first;
      first.insert(number);
    }
  }
  return first;
}

AcceptanceIndex::Found FindAmong(const Lists& lists, const AcceptanceIndex::Predicate& isWanted) {
  auto candidates = FirstOf(lists);
  const bool isCut = candidates.size() > MaxCompared;
  if (isCut) candidates.erase(std::prev(candidates.end()));
  const auto found = std::ranges::find_if(candidates, isWanted);
  if (found == candidates.end()) return {npos, isCut};
  return {*found, false};
}

}  // namespace

void AcceptanceIndex::Add(const Acceptance& acceptance, std::size_t personality) {
  all_.push_back(personality);
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    const auto* set = acceptance.sets[i];
    if (set == nullptr) {
      keys_[i].unconstrained.push_back(personality);
      continue;
    }
    for (const auto value : *set) keys_[i].byValue[value].push_back(personality);
  }
}

AcceptanceIndex::Found AcceptanceIndex::FindCovering(const Acceptance& acceptance,
                                                     const Predicate& isWanted) const {
  Lists fewest = {&all_};
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    // One that covers the set accepts its first value, like any other of it.
    Lists lists = {&keys_[i].unconstrained};
    const auto* set = acceptance.sets[i];
    const auto found =
        set == nullptr ? keys_[i].byValue.end() : keys_[i].byValue.find(set->front());
    if (found != keys_[i].byValue.end()) lists.push_back(&found->second);
    if (Count(lists) < Count(fewest)) fewest = lists;
  }
  return FindAmong(fewest, isWanted);
}

AcceptanceIndex::Found AcceptanceIndex::FindOverlapping(const Acceptance& acceptance,
                                                        const Predicate& isWanted) const {
  Lists fewest = {&all_};
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    if (acceptance.sets[i] == nullptr) continue;
    Lists lists = {&keys_[i].unconstrained};
    for (const auto value : *acceptance.sets[i]) {
      const auto found = keys_[i].byValue.find(value);
      if (found != keys_[i].byValue.end()) lists.push_back(&found->second);
    }
    if (Count(lists) < Count(fewest)) fewest = lists;
  }
  return FindAmong(fewest, isWanted);
}

void LintLimits(const LintSubject& subject, const CutShort& cutShort, std::string_view question,
                ConfigurationFindings& findings) {
  findings.Enter(nullptr);
  for (const auto& type : subject.types) {
    const auto found = cutShort.find(type.type);
    if (found == cutShort.end()) continue;
    findings.Add(LintRuleOf::OverlapNotExamined, type.entry.keyOffset,
                 Counted(found->second, "personality", "personalities") + " of " +
                     Quoted(type.entry.key) + (found->second == 1 ? " was" : " were") +
                     " compared with " + std::to_string(MaxCompared) +
                     " others only to find out whether " + std::string(question));
  }
}

}  // namespace fernwick::lab
