// One pass over the matches of the plans that repeat, which collects what sets the version of each
// controller, and one that classifies them. O(m log m) for m matches.

#include "lab/survey/settle/causes.h"

#include <map>
#include <set>
#include <utility>

namespace fernwick::lab {
namespace {

// What sets a controller to a version, and what sets it to another one; null: nothing does.
struct Setters {
  const AppliedMatch* first = nullptr;
  const AppliedMatch* other = nullptr;
};

using SettersByController = std::map<RegistryEntry, Setters>;

void AddSetter(const AppliedMatch& match, SettersByController& setters) {
  if (!match.isStored) return;
  auto& known = setters[match.changed];
  if (known.first == nullptr) known.first = &match;
  const bool isOther = *known.first->after != *match.after;
  if (isOther && known.other == nullptr) known.other = &match;
}

Repetition Classify(const AppliedMatch& match, const SettersByController& setters) {
  using enum RepetitionCause;
  // With the check only what is newer matches.
  if (!IsOlder(match.compared, match.offered)) return {VersionUnchecked, &match};
  if (match.comparesVersionAbove) return {ComparesVersionAbove, &match};
  const auto known = setters.find(match.changed);
  if (known->second.other != nullptr) {
    return {Undone, known->second.first, known->second.other};
  }
  return {NotStorable, &match};
}

}  // namespace

std::string_view NameOf(RepetitionCause cause) {
  switch (cause) {
    case RepetitionCause::Undone: return "undone";
    case RepetitionCause::ComparesVersionAbove: return "compares version above";
    case RepetitionCause::NotStorable: return "not storable";
    case RepetitionCause::VersionUnchecked: break;
  }
  return "version unchecked";
}

std::vector<Repetition> FindRepetitions(const Settling& settling) {
  SettersByController setters;
  for (auto i = settling.stepsBeforeCycle; i < settling.steps.size(); ++i) {
    for (const auto& match : settling.steps[i].matches) AddSetter(match, setters);
  }
  std::vector<Repetition> repetitions;
  std::set<std::pair<RegistryEntry, RepetitionCause>> known;
  for (auto i = settling.stepsBeforeCycle; i < settling.steps.size(); ++i) {
    for (const auto& match : settling.steps[i].matches) {
      const auto repetition = Classify(match, setters);
      const bool isNew = known.emplace(match.changed, repetition.cause).second;
      if (isNew) repetitions.push_back(repetition);
    }
  }
  return repetitions;
}

}  // namespace fernwick::lab
