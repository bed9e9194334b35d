// A search for the minimum: of all pairs that the run rejected, the nearest to a match by the
// distance of its failed requirements, those that only an older version would make a match before
// all others. It ends at a pair that none can be nearer than. O(pairs x requirements); one pair is
// stored.

#include "lab/survey/computer_class.h"

#include <algorithm>
#include <utility>

#include "lab/explain/failed_requirement.h"
#include "lab/recordings/entry_path.h"
#include "lab/support/words.h"
#include "lab/survey/short_text.h"
#include "personality/personality.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

// A pair that a run rejected.
struct Miss {
  const KeyTrace* key;
  std::size_t controller;
  std::size_t personality;
  bool isUpToDate;  // all that fails is that the installed version is not older
  Distance distance;
  FailedRequirement first;

  bool IsNearerThan(const Miss& other) const {
    return std::pair(!isUpToDate, distance) < std::pair(!other.isUpToDate, other.distance);
  }
};

// Whether the offered version can be compared with the installed one, and is not newer.
bool IsNotNewer(const FailedRequirement& failure) {
  return failure.reason == FailureReason::NotNewer && failure.found &&
         NumbersEqual(*failure.wanted, *failure.wanted);
}

// An installed version that is not older than the offered one is often above the maximum, too.
bool IsUpToDate(const std::vector<FailedRequirement>& failures) {
  return IsNotNewer(failures.front()) &&
         std::ranges::all_of(failures, [](const FailedRequirement& failure) {
           return IsNotNewer(failure) || failure.reason == FailureReason::BelowInstalled;
         });
}

// Compares every pair that the run rejected with the nearest one before it.
class NearestSearch {
 public:
  explicit NearestSearch(const RunResult& result) : result_(result) {}

  void Visit(const KeyTrace& key, Array candidates) {
    for (std::size_t i = 0; i < key.matched.size(); ++i) {
      for (std::size_t j = 0; j < candidates.size(); ++j) {
        if (HasNearestPossible()) return;
        if (key.OutcomeOf(i, j) == PairOutcome::Rejected) VisitPair(key, i, candidates, j);
      }
    }
  }

  const std::optional<Miss>& Nearest() const { return nearest_; }

 private:
  bool HasNearestPossible() const {
    return nearest_ && nearest_->isUpToDate && nearest_->distance.whole == 1;
  }

  void VisitPair(const KeyTrace& key, std::size_t controller, Array candidates, std::size_t index) {
    const auto failures = FailedRequirements(TypeNamed(key.key), *candidates[index].AsDictionary(),
                                             ContextOf(result_, key, controller));
    const Miss miss = {
        &key, controller, index, IsUpToDate(failures), DistanceOf(failures), failures.front()};
    if (!nearest_ || miss.IsNearerThan(*nearest_)) nearest_ = miss;
  }

  const RunResult& result_;
  std::optional<Miss> nearest_;
};

// REQUIRES: the configuration is a dictionary.
std::optional<Miss> FindNearest(const ToolRun& run) {
  NearestSearch search(run.result);
  Arena copies;
  for (const auto& [key, candidates] : CandidatesOf(run, copies)) search.Visit(*key, candidates);
  return search.Nearest();
}

NearestMiss MakeMiss(const KeyTrace& key, std::size_t controller, std::size_t personality,
                     const Recording& recording) {
  const auto entry = key.inventory.sources[controller].Controller();
  return {.controller = EntryPath(recording, entry),
          .type = key.key,
          .personality = personality + 1,
          .key = {},
          .text = {}};
}

// A match that names no image ends the run.
NearestMiss MissingFirmware(const ToolRun& run, const Recording& recording) {
  const auto match = MatchedPairs(run)[run.result.plannedMatches];
  auto miss = MakeMiss(*match.key, match.controller, match.personality, recording);
  miss.key = "Firmware";
  const auto* firmware = match.match->Find(miss.key);
  miss.text =
      firmware == nullptr ? "is missing" : ShortText(InlineText(*firmware)) + " names no image";
  return miss;
}

// The run collects the inventories that its configuration asks for.
bool HasControllers(const ToolRun& run, const Recording& recording) {
  const auto isListed = [](const KeyTrace& key) { return !key.inventory.records.empty(); };
  if (std::ranges::any_of(run.trace.keys, isListed)) return true;
  RecordedRegistry registry(recording);
  // A controller without a unique id is one all the same.
  const auto ports = CollectPortControllers(registry);
  const auto switches = CollectThunderboltControllers(registry);
  return !ports || !ports->records.empty() || !switches || !switches->records.empty();
}

ComputerClass ClassOf(const std::optional<Miss>& miss) {
  if (miss && miss->isUpToDate) return ComputerClass::Current;
  const bool isForController = miss && miss->distance.ofController == 0;
  return isForController ? ComputerClass::Blocked : ComputerClass::Unmatched;
}

// REQUIRES: the run has a configuration that is a dictionary.
Classification ClassifyUnplanned(const ToolRun& run, const Recording& recording) {
  if (!run.result.matches.empty()) {
    return {ComputerClass::Blocked, MissingFirmware(run, recording)};
  }
  if (!HasControllers(run, recording)) return {ComputerClass::NoControllers};
  const auto nearest = FindNearest(run);
  Classification classification = {ClassOf(nearest)};
  if (!nearest) return classification;
  classification.miss =
      MakeMiss(*nearest->key, nearest->controller, nearest->personality, recording);
  classification.miss->key = nearest->first.requirement->key;
  classification.miss->text = ShortText(FailureText(nearest->first));
  return classification;
}

std::string WordOf(ComputerClass computerClass) {
  std::string word(NameOf(computerClass));
  std::ranges::replace(word, ' ', '-');
  return word;
}

}  // namespace

const std::array<std::string_view, ClassCount> ClassNames = {
    "planned",       "current",          "blocked",  "unmatched", "no controllers",
    "unknown board", "no configuration", "bypassed", "fault",     "refused"};

std::string_view NameOf(ComputerClass computerClass) {
  return ClassNames[static_cast<std::size_t>(computerClass)];
}

std::vector<ComputerClass> ClassesOfWord(std::string_view word) {
  using enum ComputerClass;
  if (word == "abnormal") return {Fault};
  if (word == "no-plan") {
    return {Current, Blocked, Unmatched, NoControllers, UnknownBoard, NoConfiguration};
  }
  for (std::size_t i = 0; i < ClassCount; ++i) {
    const auto computerClass = static_cast<ComputerClass>(i);
    if (word == WordOf(computerClass)) return {computerClass};
  }
  return {};
}

std::string ClassWords() {
  std::string words;
  for (std::size_t i = 0; i < ClassCount; ++i) {
    words += WordOf(static_cast<ComputerClass>(i)) + ", ";
  }
  return words + "abnormal, no-plan";
}

Classification Classify(const ToolRun& run, const Recording& recording, const Options& options) {
  const auto& result = run.result;
  if (result.fault) return {ComputerClass::Fault};
  if (result.bypassesUpdates) return {ComputerClass::Bypassed};
  if (result.status == ExitStatus::PlanPrinted) return {ComputerClass::Planned};
  if (!result.configuration || !result.configuration->value.AsDictionary()) {
    return {HasBoardDirectory(run, options) ? ComputerClass::NoConfiguration
                                            : ComputerClass::UnknownBoard};
  }
  return ClassifyUnplanned(run, recording);
}

}  // namespace fernwick::lab
