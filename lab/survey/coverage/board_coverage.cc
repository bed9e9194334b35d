// Dense counters: two for each personality and each list element, and one more for every
// requirement that rejects some of them first. A run is counted from its trace, by testing the
// rejected pairs again up to the first failure, and comparing the values of lists up to the first
// equal one. So it makes the comparisons of the matcher once more, O(pairs x requirements) for each
// run without long lists; memory is linear in the configuration.

#include "lab/survey/coverage/board_coverage.h"

#include <algorithm>
#include <span>

#include "lab/lint/acceptance.h"

namespace fernwick::lab {
namespace {

void Resize(TestCounts& counts, std::size_t items, TypeSet type) {
  counts.tested.resize(items);
  counts.matched.resize(items);
  counts.rejected.resize(RequirementsOf(type).size());
}

TypeCoverage NothingOf(std::string_view typeName, const PropertyValue& value) {
  TypeCoverage coverage;
  coverage.type = TypeNamed(typeName);
  const auto candidates = PersonalitiesOf(typeName, value);
  if (coverage.type == Types::None || !candidates) return coverage;
  std::size_t elements = 0;
  for (const auto& candidate : *candidates) {
    coverage.firstElement.push_back(elements);
    const auto personality = candidate.AsDictionary();
    coverage.isPersonality.push_back(personality.has_value());
    if (!personality) continue;
    ForEachList(coverage.type, *personality,
                [&](const Requirement&, Array list) { elements += list.size(); });
  }
  Resize(coverage, candidates->size(), coverage.type);
  Resize(coverage.elements, elements, coverage.type);
  return coverage;
}

// Whether both are of the same personalities and lists.
bool HaveSameShape(const TypeCoverage& a, const TypeCoverage& b) {
  return a.type == b.type && a.isPersonality == b.isPersonality &&
         a.firstElement == b.firstElement && a.elements.tested.size() == b.elements.tested.size();
}

void AddCounts(std::vector<std::size_t>& counts, const std::vector<std::size_t>& others) {
  if (counts.size() < others.size()) counts.resize(others.size());
  for (std::size_t i = 0; i < others.size(); ++i) counts[i] += others[i];
}

// How many items have a count above zero.
std::size_t Exercised(const std::vector<std::size_t>& counts) {
  const auto zeros = std::ranges::count(counts, std::size_t{0});
  return counts.size() - static_cast<std::size_t>(zeros);
}

// Counts the pairs of one top-level key.
class PairCounter {
 public:
  PairCounter(const RunResult& result, const KeyTrace& trace, Array candidates,
              TypeCoverage& coverage)
      : result_(result),
        trace_(trace),
        candidates_(candidates),
        requirements_(RequirementsOf(coverage.type)),
        coverage_(coverage) {}

  void Count() {
    for (std::size_t i = 0; i < trace_.matched.size(); ++i) {
      const auto context = ContextOf(result_, trace_, i);
      for (std::size_t j = 0; j < candidates_.size(); ++j) {
        const auto outcome = trace_.OutcomeOf(i, j);
        if (outcome == PairOutcome::Matched) CountPair(context, j, requirements_.size());
        if (outcome == PairOutcome::Rejected) CountPair(context, j, FirstFailure(context, j));
      }
    }
  }

 private:
  std::size_t FirstFailure(const RequirementContext& context, std::size_t index) const {
    const auto personality = *candidates_[index].AsDictionary();
    const auto first = std::ranges::find_if(requirements_, [&](const Requirement& requirement) {
      return Test(requirement, personality, context).failure.has_value();
    });
    return static_cast<std::size_t>(first - requirements_.begin());
  }

  // `first` as in TestCounts.
  void CountPair(const RequirementContext& context, std::size_t index, std::size_t first) {
    coverage_.Count(index, first);
    auto element = coverage_.firstElement[index];
    ForEachList(coverage_.type, *candidates_[index].AsDictionary(),
                [&](const Requirement& requirement, Array list) {
                  const auto* found = context.hardware.Find(requirement.hardwareKey);
                  if (found != nullptr) CountList(list, element, *found, requirement, first);
                  element += list.size();
                });
  }

  // `element` is the index of the first one.
  void CountList(Array list, std::size_t element, const PropertyValue& found,
                 const Requirement& requirement, std::size_t first) {
    const auto own = static_cast<std::size_t>(&requirement - requirements_.data());
    if (first < own) return;
    for (const auto& value : list) {
      const bool isEqual = requirement.equal(value, found);
      coverage_.elements.Count(element++, isEqual ? first : own);
      if (isEqual) return;
    }
  }

  const RunResult& result_;
  const KeyTrace& trace_;
  Array candidates_;
  std::span<const Requirement> requirements_;
  TypeCoverage& coverage_;
};

}  // namespace

void TestCounts::Count(std::size_t item, std::size_t first) {
  ++tested[item];
  if (first == rejected.size()) {
    ++matched[item];
    return;
  }
  rejected[first].resize(tested.size());
  ++rejected[first][item];
}

void TestCounts::Add(const TestCounts& other) {
  AddCounts(tested, other.tested);
  AddCounts(matched, other.matched);
  for (std::size_t i = 0; i < rejected.size(); ++i) AddCounts(rejected[i], other.rejected[i]);
}

BoardCoverage::BoardCoverage(const PropertyValue& configuration) {
  const auto topLevel = configuration.AsDictionary();
  if (!topLevel) return;
  for (const auto& [key, value] : topLevel->Entries()) keys.push_back(NothingOf(key, value));
}

bool BoardCoverage::Add(const BoardCoverage& other) {
  if (!std::ranges::equal(keys, other.keys, HaveSameShape)) return false;
  runs += other.runs;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    keys[i].Add(other.keys[i]);
    keys[i].elements.Add(other.keys[i].elements);
  }
  return true;
}

BoardCoverage CoverageOf(const ToolRun& run) {
  BoardCoverage coverage(run.result.configuration->value);
  coverage.runs = 1;
  Arena copies;
  for (const auto& [key, candidates] : CandidatesOf(run, copies)) {
    const auto index = static_cast<std::size_t>(key - run.trace.keys.data());
    PairCounter(run.result, *key, candidates, coverage.keys[index]).Count();
  }
  return coverage;
}

CoverageCounts& CoverageCounts::operator+=(const CoverageCounts& other) {
  personalities += other.personalities;
  testedPersonalities += other.testedPersonalities;
  matchedPersonalities += other.matchedPersonalities;
  elements += other.elements;
  testedElements += other.testedElements;
  matchedElements += other.matchedElements;
  return *this;
}

CoverageCounts CountsOf(const BoardCoverage& coverage) {
  CoverageCounts counts;
  for (const auto& key : coverage.keys) {
    const auto personalities = std::ranges::count(key.isPersonality, true);
    counts += {.personalities = static_cast<std::size_t>(personalities),
               .testedPersonalities = Exercised(key.tested),
               .matchedPersonalities = Exercised(key.matched),
               .elements = key.elements.tested.size(),
               .testedElements = Exercised(key.elements.tested),
               .matchedElements = Exercised(key.elements.matched)};
  }
  return counts;
}

void ForEachList(TypeSet type, Dictionary personality, const ListVisitor& visit) {
  for (const auto& [key, value] : personality.Entries()) {
    const auto list = value.AsArray();
    if (!list) continue;
    if (const auto* requirement = FindSetRequirement(type, key)) visit(*requirement, *list);
  }
}

}  // namespace fernwick::lab
