// Counterexample-guided search. The first controller is one that the personality accepts, whatever
// the earlier ones do. The tool runs over it: where an earlier personality matches instead, that
// one is an obstacle of the next search. When there is no controller, the obstacles are the reason.
// Each round costs a run and a search with one more obstacle.

#include "lab/draft/sample_search.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "lab/draft/sample_candidates.h"
#include "lab/lint/checks.h"
#include "lab/lint/finding.h"
#include "lab/lint/rid.h"
#include "lab/lint/rules/shape_rules.h"
#include "lab/support/tool_run.h"
#include "lab/support/words.h"
#include "registry/recording_reader.h"

namespace fernwick::lab {
namespace {

// The steps of all searches for one sample, which take less than a second.
constexpr std::size_t MaxSteps = std::size_t{1} << 26;

constexpr char NotFound[] =
    "no sample was found within the limits of the search: too many earlier personalities accept "
    "much of what it accepts";

// The personality with that index in the type's array; null when it is not a dictionary.
const LocatedPersonality* PersonalityAt(const LocatedType& type, std::size_t index) {
  if (HasSinglePersonality(type.type)) return &type.personalities.front();
  const auto array = *type.entry.value->AsArray();
  if (!array[index].AsDictionary()) return nullptr;
  const auto earlier = std::count_if(
      array.begin(), array.begin() + index,
      [](const PropertyValue& element) { return element.AsDictionary().has_value(); });
  return &type.personalities[static_cast<std::size_t>(earlier)];
}

// Why no controller at all matches the personality: what lint reports of it.
std::string UnmatchableText(const LocatedPersonality& personality) {
  ConfigurationFindings findings("", [](const FindingIdentity& identity) {
    return identity.rule->severity == Severity::Error && identity.rule != &LintRuleOf::MisspeltKey;
  });
  LintKeys(personality, findings);
  LintValues(personality, findings);
  LintRidAndUid(personality, findings);
  LintVersions(personality, findings);
  LintBoardRevisions(personality, findings);
  std::string text;
  for (const auto& finding : findings.TakeSorted()) {
    text.append(text.empty() ? "it can never match: " : "; ").append(finding.message);
  }
  return text;
}

// The search for a sample of one personality.
class SampleSearch {
 public:
  SampleSearch(const SampledBoard& board, const LocatedType& type, std::size_t index)
      : board_(board), type_(type), index_(index) {}

  Result<Recording, std::string> Find(const LocatedPersonality& personality) {
    const auto wanted = AcceptanceOf(personality, sets_);
    if (!wanted.acceptsAny) return UnmatchableText(personality);
    for (;;) {
      const auto attempt = Attempt(wanted, obstacles_);
      if (!attempt.controller) {
        return attempt.isCutShort ? NotFound : ObstaclesText(wanted);
      }
      auto recording = *InterpretRecording(RecordSample(board_.name, *attempt.controller));
      const auto matched = MatchedBy(recording);
      if (matched == index_) return recording;
      if (matched > index_ || obstacles_.size() == MaxObstacles) return std::string(NotFound);
      obstacles_.push_back({matched, AcceptanceOf(*PersonalityAt(type_, matched), sets_)});
    }
  }

 private:
  struct Obstacle {
    std::size_t index;
    Acceptance acceptance;
  };

  SampleAttempt Attempt(const Acceptance& wanted, const std::vector<Obstacle>& obstacles) {
    SampleTask task = {.type = type_.type, .wanted = wanted, .obstacles = {}, .sets = sets_};
    for (const auto& each : obstacles) task.obstacles.push_back(&each.acceptance);
    for (const auto& shape : ShapesFor(type_.type, wanted)) {
      auto attempt = FindController(task, shape, steps_);
      if (attempt.controller || attempt.isCutShort) return attempt;
    }
    return {};
  }

  // The index of the personality that the one controller matches.
  std::size_t MatchedBy(const Recording& recording) const {
    const auto& value = board_.configuration.file.Value();
    const Options options = {.personalitiesDirectory = "/Fernwick/"};  // nothing is read there
    const auto run = RunTool(recording, options, KeptOutput::Counts,
                             [&](const auto&, const auto&, Console&) -> Result<PropertyList> {
                               return PropertyList{{}, value};
                             });
    const auto key = std::ranges::find(run.trace.keys, type_.entry.key, &KeyTrace::key);
    return key->matched.front();
  }

  // Which earlier personalities accept everything: as few as are enough.
  std::string ObstaclesText(const Acceptance& wanted) {
    for (std::size_t i = obstacles_.size(); i > 0; --i) {
      auto others = obstacles_;
      others.erase(others.begin() + static_cast<std::ptrdiff_t>(i - 1));
      const auto attempt = Attempt(wanted, others);
      if (!attempt.controller && !attempt.isCutShort) obstacles_ = std::move(others);
    }
    std::ranges::sort(obstacles_, {}, &Obstacle::index);
    if (obstacles_.size() == 1) {
      return "it is never reached: personality " + std::to_string(obstacles_.front().index + 1) +
             " accepts everything that it accepts";
    }
    std::string text;
    for (const auto& each : obstacles_) {
      text.append(text.empty() ? "" : ", ").append(std::to_string(each.index + 1));
    }
    return "it is never reached: each controller that it accepts is accepted by one of the "
           "personalities " +
           text;
  }

  const SampledBoard& board_;
  const LocatedType& type_;
  std::size_t index_;
  ValueSets sets_;
  std::vector<Obstacle> obstacles_;
  std::size_t steps_ = MaxSteps;
};

}  // namespace

Result<Recording, std::string> FindSample(const SampledBoard& board, const LocatedType& type,
                                          std::size_t index) {
  const auto* personality = PersonalityAt(type, index);
  if (personality == nullptr) {
    const auto& element = (*type.entry.value->AsArray())[index];
    return "it is " + std::string(KindOf(element)) + ", not a dictionary";
  }
  return SampleSearch(board, type, index).Find(*personality);
}

std::size_t CountPersonalities(const LocatedType& type) {
  if (HasSinglePersonality(type.type)) return type.personalities.size();
  const auto array = type.entry.value->AsArray();
  return array ? array->size() : 0;
}

}  // namespace fernwick::lab
