// Dense counters: one for each personality and each list element, and for each personality one more
// for every requirement that some pair fails first. A run is counted from its trace, by testing the
// rejected pairs again up to the first failure. O(pairs x requirements) for each run, as the
// matcher itself; memory is linear in the configuration.

#include "lab/survey/coverage/board_coverage.h"

#include <algorithm>
#include <numeric>

namespace fernwick::lab {
namespace {

const Requirement* FindSetMatch(TypeSet type, std::string_view key) {
  const auto requirements = RequirementsOf(type);
  const auto found = std::ranges::find_if(requirements, [&](const Requirement& requirement) {
    return requirement.key == key && requirement.test == RequirementTest::SetMatch;
  });
  return found == requirements.end() ? nullptr : &*found;
}

TypeCoverage NothingOf(std::string_view typeName, const PropertyValue& value) {
  const auto type = TypeNamed(typeName);
  TypeCoverage coverage{.type = type};
  const auto candidates = PersonalitiesOf(typeName, value);
  if (type == Types::None || !candidates) return coverage;
  std::size_t elements = 0;
  for (const auto& candidate : *candidates) {
    coverage.firstElement.push_back(elements);
    const auto personality = candidate.AsDictionary();
    coverage.isPersonality.push_back(personality.has_value());
    if (!personality) continue;
    ForEachList(type, *personality,
                [&](const Requirement&, Array list) { elements += list.size(); });
  }
  coverage.tested.resize(candidates->size());
  coverage.matched.resize(candidates->size());
  coverage.elements.resize(elements);
  coverage.rejected.resize(RequirementsOf(type).size());
  return coverage;
}

// Whether both are of the same personalities and lists.
bool HaveSameShape(const TypeCoverage& a, const TypeCoverage& b) {
  return a.type == b.type && a.isPersonality == b.isPersonality &&
         a.firstElement == b.firstElement && a.elements.size() == b.elements.size();
}

void AddCounts(std::vector<std::size_t>& counts, const std::vector<std::size_t>& others) {
  if (counts.size() < others.size()) counts.resize(others.size());
  for (std::size_t i = 0; i < others.size(); ++i) counts[i] += others[i];
}

// Counts the pairs of one top-level key.
class PairCounter {
 public:
  PairCounter(const RunResult& result, const KeyTrace& trace, Array candidates,
              TypeCoverage& coverage)
      : result_(result), trace_(trace), candidates_(candidates), coverage_(coverage) {}

  void Count() {
    for (std::size_t i = 0; i < trace_.matched.size(); ++i) {
      for (std::size_t j = 0; j < candidates_.size(); ++j) CountPair(i, j);
    }
  }

 private:
  void CountPair(std::size_t controller, std::size_t index) {
    const auto outcome = trace_.OutcomeOf(controller, index);
    if (outcome == PairOutcome::Rejected) CountRejection(controller, index);
    if (outcome == PairOutcome::Matched) CountMatch(controller, index);
  }

  void CountRejection(std::size_t controller, std::size_t index) {
    ++coverage_.tested[index];
    const RequirementContext context = {trace_.inventory.records[controller],
                                        result_.identity->boardRevision,
                                        result_.bypassesVersionCheck};
    const auto personality = *candidates_[index].AsDictionary();
    const auto requirements = RequirementsOf(coverage_.type);
    const auto first = std::ranges::find_if(requirements, [&](const Requirement& requirement) {
      return Test(requirement, personality, context).failure.has_value();
    });
    auto& counts = coverage_.rejected[static_cast<std::size_t>(first - requirements.begin())];
    counts.resize(candidates_.size());
    ++counts[index];
  }

  void CountMatch(std::size_t controller, std::size_t index) {
    ++coverage_.tested[index];
    ++coverage_.matched[index];
    const auto& hardware = trace_.inventory.records[controller];
    auto* count = coverage_.elements.data() + coverage_.firstElement[index];
    ForEachList(coverage_.type, *candidates_[index].AsDictionary(),
                [&](const Requirement& requirement, Array list) {
                  const auto& found = *hardware.Find(requirement.hardwareKey);
                  for (const auto& element : list) *count++ += requirement.equal(element, found);
                });
  }

  const RunResult& result_;
  const KeyTrace& trace_;
  Array candidates_;
  TypeCoverage& coverage_;
};

}  // namespace

BoardCoverage::BoardCoverage(const PropertyValue& configuration) {
  const auto topLevel = configuration.AsDictionary();
  if (!topLevel) return;
  for (const auto& [key, value] : topLevel->Entries()) keys.push_back(NothingOf(key, value));
}

bool BoardCoverage::Add(const BoardCoverage& other) {
  if (!std::ranges::equal(keys, other.keys, HaveSameShape)) return false;
  runs += other.runs;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    AddCounts(keys[i].tested, other.keys[i].tested);
    AddCounts(keys[i].matched, other.keys[i].matched);
    AddCounts(keys[i].elements, other.keys[i].elements);
    for (std::size_t j = 0; j < keys[i].rejected.size(); ++j) {
      AddCounts(keys[i].rejected[j], other.keys[i].rejected[j]);
    }
  }
  return true;
}

BoardCoverage CoverageOf(const ToolRun& run) {
  const auto& configuration = run.result.configuration->value;
  BoardCoverage coverage(configuration);
  coverage.runs = 1;
  const auto entries = configuration.AsDictionary()->Entries();
  Arena copies;
  for (std::size_t i = 0; i < run.trace.keys.size(); ++i) {
    const auto& trace = run.trace.keys[i];
    if (!trace.HasPairs()) continue;
    const auto candidates =
        WithoutUnreadKeys(*PersonalitiesOf(trace.key, entries[i].value), copies);
    PairCounter(run.result, trace, candidates, coverage.keys[i]).Count();
  }
  return coverage;
}

CoverageCounts& CoverageCounts::operator+=(const CoverageCounts& other) {
  personalities += other.personalities;
  testedPersonalities += other.testedPersonalities;
  matchedPersonalities += other.matchedPersonalities;
  elements += other.elements;
  matchedElements += other.matchedElements;
  return *this;
}

CoverageCounts CountsOf(const BoardCoverage& coverage) {
  const auto size = [](auto count) { return static_cast<std::size_t>(count); };
  const auto exercised = [&](const std::vector<std::size_t>& counts) {
    return counts.size() - size(std::ranges::count(counts, std::size_t{0}));
  };
  CoverageCounts counts;
  for (const auto& key : coverage.keys) {
    counts += {.personalities = size(std::ranges::count(key.isPersonality, true)),
               .testedPersonalities = exercised(key.tested),
               .matchedPersonalities = exercised(key.matched),
               .elements = key.elements.size(),
               .matchedElements = exercised(key.elements)};
  }
  return counts;
}

void ForEachList(TypeSet type, Dictionary personality, const ListVisitor& visit) {
  for (const auto& [key, value] : personality.Entries()) {
    const auto list = value.AsArray();
    if (!list) continue;
    if (const auto* requirement = FindSetMatch(type, key)) visit(*requirement, *list);
  }
}

}  // namespace fernwick::lab
