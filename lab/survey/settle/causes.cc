#include "lab/survey/settle/causes.h"

#include <map>
#include <set>
#include <utility>

// One pass over the matches of the plans that repeat, which collects what sets the version of each
// controller, and one that classifies them. O(m log m) for m matches.

namespace fernwick::lab {
namespace {

// What sets a controller to a version, and what sets it to another one; null: nothing does.
struct Setters {
  const Flash* first = nullptr;
  const Flash* other = nullptr;
};

using SettersByController = std::map<RegistryEntry, Setters>;

void AddSetter(const Flash& flash, SettersByController& setters) {
  if (!flash.isStored) return;
  auto& known = setters[flash.changed];
  if (known.first == nullptr) known.first = &flash;
  const bool isOther = *known.first->after != *flash.after;
  if (isOther && known.other == nullptr) known.other = &flash;
}

Repetition Classify(const Flash& flash, const SettersByController& setters) {
  using enum RepetitionCause;
  // With the check only what is newer matches.
  if (!IsOlder(flash.compared, flash.offered)) return {VersionUnchecked, &flash};
  if (flash.comparesVersionAbove) return {ComparesVersionAbove, &flash};
  const auto known = setters.find(flash.changed);
  if (known->second.other != nullptr) {
    return {Undone, known->second.first, known->second.other};
  }
  return {NotStorable, &flash};
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
  for (auto i = settling.firstState; i < settling.steps.size(); ++i) {
    for (const auto& flash : settling.steps[i].flashes) AddSetter(flash, setters);
  }
  std::vector<Repetition> repetitions;
  std::set<std::pair<RegistryEntry, RepetitionCause>> known;
  for (auto i = settling.firstState; i < settling.steps.size(); ++i) {
    for (const auto& flash : settling.steps[i].flashes) {
      const auto repetition = Classify(flash, setters);
      const bool isNew = known.emplace(flash.changed, repetition.cause).second;
      if (isNew) repetitions.push_back(repetition);
    }
  }
  return repetitions;
}

}  // namespace fernwick::lab
