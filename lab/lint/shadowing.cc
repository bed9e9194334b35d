// Subsumption: whether an earlier personality accepts everything that a later one accepts. An index
// by the accepted values of each key finds candidates; the key with the fewest is used, and at most
// MaxCompared candidates are compared, so the cost grows linearly with the personalities.

#include "lab/lint/shadowing.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <span>
#include <utility>

#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {
namespace {

using Indices = std::vector<std::size_t>;

// The earlier personalities, found by what they accept under one key.
class KeyIndex {
 public:
  void Add(const std::optional<AcceptedValues>& values, std::size_t personality) {
    if (!values) return unconstrained_.push_back(personality);
    for (const auto* value : *values) byValue_[value].push_back(personality);
  }

  // Two sorted lists of the personalities that accept all of `values` under the key, or at least
  // the first of them.
  std::pair<const Indices*, const Indices*> Candidates(
      const std::optional<AcceptedValues>& values) const {
    static const Indices none;
    if (!values) return {&unconstrained_, &none};
    const auto found = byValue_.find(values->front());
    return {&unconstrained_, found == byValue_.end() ? &none : &found->second};
  }

 private:
  struct Before {
    bool operator()(const PropertyValue* a, const PropertyValue* b) const { return IsBefore(a, b); }
  };

  Indices unconstrained_;
  std::map<const PropertyValue*, Indices, Before> byValue_;
};

// Those that may cover a personality, earlier ones all, by the key that leaves the fewest.
Indices CandidatesFor(const Acceptance& personality, const std::vector<KeyIndex>& keys) {
  std::pair<const Indices*, const Indices*> fewest = {nullptr, nullptr};
  const auto count = [](const auto& lists) { return lists.first->size() + lists.second->size(); };
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto lists = keys[i].Candidates(personality.sets[i]);
    if (fewest.first == nullptr || count(lists) < count(fewest)) fewest = lists;
  }
  // One more than are compared, so that the caller sees that there are more.
  Indices candidates(std::min(count(fewest), MaxCompared + 1));
  auto first = fewest.first->begin();
  auto second = fewest.second->begin();
  for (auto& candidate : candidates) {
    const bool isFirst =
        second == fewest.second->end() || (first != fewest.first->end() && *first < *second);
    candidate = isFirst ? *first++ : *second++;
  }
  return candidates;
}

}  // namespace

Shadowing FindShadowed(const std::vector<Acceptance>& personalities) {
  Shadowing shadowing;
  shadowing.shadowedBy.resize(personalities.size());
  std::iota(shadowing.shadowedBy.begin(), shadowing.shadowedBy.end(), std::size_t{0});
  std::vector<KeyIndex> keys(personalities.empty() ? 0 : personalities.front().sets.size());
  for (std::size_t i = 0; i < personalities.size(); ++i) {
    if (!personalities[i].acceptsAny) continue;
    const auto candidates = CandidatesFor(personalities[i], keys);
    const auto compared = std::span(candidates).first(std::min(candidates.size(), MaxCompared));
    const auto wide = std::ranges::find_if(
        compared, [&](std::size_t j) { return Covers(personalities[j], personalities[i]); });
    if (wide != compared.end()) {
      shadowing.shadowedBy[i] = *wide;
      continue;  // what it would shadow is shadowed by the other one, too
    }
    if (candidates.size() > compared.size()) ++shadowing.cutShort;
    for (std::size_t k = 0; k < keys.size(); ++k) keys[k].Add(personalities[i].sets[k], i);
  }
  return shadowing;
}

void LintShadowing(const LintSubject& subject, const LocatedType& type, const Shadowing& shadowing,
                   ConfigurationFindings& findings) {
  for (std::size_t i = 0; i < shadowing.shadowedBy.size(); ++i) {
    const auto by = shadowing.shadowedBy[i];
    if (by == i) continue;
    const auto place = subject.file.LocationOf(type.personalities[by].offset);
    findings.Add(LintRuleOf::ShadowedPersonality, type.personalities[i].offset,
                 "the personality at " + Describe(place) +
                     " accepts everything that this one accepts, which is never reached");
  }
  if (shadowing.cutShort == 0) return;
  findings.Add(LintRuleOf::ShadowingNotExamined, type.entry.keyOffset,
               std::to_string(shadowing.cutShort) + " personalities of \"" +
                   std::string(type.entry.key) + "\" were compared with " +
                   std::to_string(MaxCompared) +
                   " earlier ones only to find out whether they are shadowed");
}

}  // namespace fernwick::lab
