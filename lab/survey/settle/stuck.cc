// A maximum for each controller over all its pairs: first the newest version, of which requirements
// are tested of those that are for the controller, then of the personalities with that version the
// one that fails least. O(pairs x requirements).

#include "lab/survey/settle/stuck.h"

#include <algorithm>
#include <map>
#include <utility>

#include "lab/support/configuration_file.h"
#include "lab/survey/settle/settling.h"

namespace fernwick::lab {
namespace {

// The pairs of one type.
struct StuckCandidates {
  const ToolRun& run;
  const Recording& recording;
  const KeyTrace& key;
  Array personalities;

  TypeSet Type() const { return TypeNamed(key.key); }

  RequirementContext ContextFor(std::size_t record) const {
    return ContextOf(run.result, key, record);
  }

  // The version of the controller that would get the image. Of a port that reports none itself it
  // is not known, and the compared one counts.
  std::optional<PropertyValue> InstalledIn(std::size_t record) const {
    const auto* compared = key.inventory.records[record].Find("Version");
    RecordedRegistry registry(recording);
    auto own = IsOfThunderbolt(Type())
                   ? std::nullopt
                   : ReportedVersion(registry, key.inventory.sources[record].port, true);
    return own || compared == nullptr ? own : std::optional(*compared);
  }
};

// The version that the personality offers, if it is newer than the installed one.
const PropertyValue* NewerVersion(Dictionary personality,
                                  const std::optional<PropertyValue>& installed) {
  const auto* offered = personality.Find("Version");
  if (offered == nullptr || !NumbersEqual(*offered, *offered)) return nullptr;
  return !installed || NumberGreater(*offered, *installed) ? offered : nullptr;
}

// Whether the controller is what the personality requires, whatever its version.
bool IsFor(TypeSet type, Dictionary personality, const RequirementContext& context) {
  return std::ranges::none_of(RequirementsOf(type), [&](const Requirement& requirement) {
    return requirement.test == RequirementTest::SetMatch &&
           Test(requirement, personality, context).failure;
  });
}

bool AllowsRevision(TypeSet type, Dictionary personality, const RequirementContext& context) {
  return std::ranges::none_of(RequirementsOf(type), [&](const Requirement& requirement) {
    return requirement.hardwareKey.empty() && Test(requirement, personality, context).failure;
  });
}

// Whether the controller would match with some version that it could report.
bool CanBeMet(TypeSet type, Dictionary personality, const RequirementContext& context) {
  if (DistanceOf(FailedRequirements(type, personality, context)).neverMet > 0) return false;
  return context.bypassVersionCheck || AllowsAnyVersion(type, personality, context.hardware);
}

// The personalities that a controller could match: they are for it and can be met. Those for other
// revisions of the board are left out where there are others.
std::vector<std::size_t> PersonalitiesFor(const StuckCandidates& candidates,
                                          const RequirementContext& context) {
  const auto type = candidates.Type();
  std::vector<std::size_t> all;
  std::vector<std::size_t> ofRevision;
  for (std::size_t i = 0; i < candidates.personalities.size(); ++i) {
    const auto personality = candidates.personalities[i].AsDictionary();
    if (!personality || !IsFor(type, *personality, context)) continue;
    if (!CanBeMet(type, *personality, context)) continue;
    all.push_back(i);
    if (AllowsRevision(type, *personality, context)) ofRevision.push_back(i);
  }
  return ofRevision.empty() ? all : ofRevision;
}

// Those for the controller with the newest version of all, if that is newer than the installed one;
// several where they offer the same.
std::vector<std::size_t> NewestPersonalities(const StuckCandidates& candidates,
                                             std::size_t record) {
  const auto installed = candidates.InstalledIn(record);
  std::vector<std::size_t> newest;
  const PropertyValue* version = nullptr;  // of them
  for (const auto i : PersonalitiesFor(candidates, candidates.ContextFor(record))) {
    const auto* offered = NewerVersion(*candidates.personalities[i].AsDictionary(), installed);
    if (offered == nullptr || (version != nullptr && NumberLess(*offered, *version))) continue;
    if (version != nullptr && NumberGreater(*offered, *version)) newest.clear();
    version = offered;
    newest.push_back(i);
  }
  return newest;
}

// What keeps the controller below the version of one of these.
StuckController StuckBelow(const StuckCandidates& candidates, std::size_t record,
                           std::size_t index) {
  const auto personality = *candidates.personalities[index].AsDictionary();
  const auto context = candidates.ContextFor(record);
  StuckController stuck = {.controller = candidates.key.inventory.sources[record].Controller(),
                           .type = candidates.key.key,
                           .personality = index,
                           .offered = *personality.Find("Version"),
                           .installed = candidates.InstalledIn(record),
                           .requirements = {}};
  for (const auto& failed : FailedRequirements(candidates.Type(), personality, context)) {
    stuck.requirements.push_back({failed, std::nullopt});
  }
  return stuck;
}

// Images of ports and of Thunderbolt controllers, which have versions of their own.
using FirmwareOfController = std::pair<RegistryEntry, bool>;

FirmwareOfController FirmwareOf(const StuckController& stuck) {
  return {stuck.controller, IsOfThunderbolt(TypeNamed(stuck.type))};
}

bool IsPreferred(const StuckController& a, const StuckController& b) {
  if (NumberGreater(a.offered, b.offered)) return true;
  return !NumberLess(a.offered, b.offered) && a.requirements.size() < b.requirements.size();
}

}  // namespace

std::vector<StuckController> FindStuckControllers(const ToolRun& run, const Recording& recording) {
  std::map<FirmwareOfController, StuckController> newest;
  Arena copies;
  for (const auto& [key, personalities] : CandidatesOf(run, copies)) {
    const StuckCandidates candidates = {run, recording, *key, personalities};
    for (std::size_t record = 0; record < key->matched.size(); ++record) {
      for (const auto index : NewestPersonalities(candidates, record)) {
        auto stuck = StuckBelow(candidates, record, index);
        const auto [known, isNew] = newest.try_emplace(FirmwareOf(stuck), stuck);
        if (!isNew && IsPreferred(stuck, known->second)) known->second = std::move(stuck);
      }
    }
  }
  std::vector<StuckController> found;
  for (auto& [firmware, stuck] : newest) {
    found.push_back(std::move(stuck));
  }
  return found;
}

void Locate(StuckController& stuck, std::string_view board, const Changes& changes,
            const ConfigurationFile* file) {
  const KeyLocations types(file == nullptr ? nullptr : &file->Root());
  const KeyLocations locations(
      LocationOfCandidate(types.Find(stuck.type), TypeNamed(stuck.type), stuck.personality));
  for (auto& [failed, origin] : stuck.requirements) {
    const auto key = failed.requirement->key;
    const auto* location = locations.Find(key);
    if (changes.SetsKey(stuck.type, stuck.personality + 1, key, board)) {
      origin = ValueOrigin(PersonalityOption);
    } else if (location != nullptr) {
      origin = file->LocationOf(location->value.offset);
    }
  }
}

}  // namespace fernwick::lab
