// For each controller the failures of all its pairs are counted, and where there are more pairs
// than are wanted, quickselect (nth_element) finds those that are nearest to a match; only of these
// the failures are computed again and kept. O(pairs x requirements) for each controller, memory
// linear in the pairs of one controller and in what is kept.

#include "lab/explain/explained_keys.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "lab/recordings/entry_path.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

std::string_view NameOf(const Recording& recording, RegistryEntry entry) {
  return recording.entries[entry - 1].name;
}

ExplainedSkip ExplainSkip(const Recording& recording, const SkippedController& skipped) {
  ExplainedSkip explained = {.path = EntryPath(recording, skipped.controller),
                             .name = NameOf(recording, skipped.controller),
                             .reason = skipped.reason,
                             .sources = {}};
  const auto addSource = [&](std::string_view property) {
    explained.sources.push_back(LookUpSource(recording, {skipped.controller, property, ""}));
  };
  switch (skipped.reason) {
    case SkipReason::NotAtRootOfTopology: addSource("Depth"), addSource("Route String"); break;
    case SkipReason::RouteString: addSource("Route String"); break;
    case SkipReason::AddressBelowThunderbolt: addSource("Address"); break;
  }
  return explained;
}

bool IsSelected(TypeSet type, const ExplainFilter& filter) {
  return filter.types == Types::All || (type & filter.types) != 0;
}

// How many pairs of each controller are explained.
std::size_t PairsOfEach(const RunTrace& trace, const ExplainFilter& filter) {
  if (filter.nearest) return *filter.nearest;
  std::size_t controllers = 0;
  std::size_t pairs = 0;
  for (const auto& key : trace.keys) {
    if (!IsSelected(TypeNamed(key.key), filter)) continue;
    controllers += key.matched.size();
    pairs += key.matched.size() * key.isPersonality.size();
  }
  if (pairs <= MaxPairs) return MaxPairs;
  return std::max<std::size_t>(1, MaxPairs / controllers);
}

// The candidates of one key and what they are tested with besides a controller.
struct Candidates {
  Array personalities;
  TypeSet type;
  std::uint8_t boardRevision;
  bool bypassesVersionCheck;

  // What the pair fails; a match without the bypass of the version check.
  std::vector<FailedRequirement> FailuresOf(const ExplainedPair& pair, Dictionary hardware) const {
    const auto personality = personalities[pair.personality].AsDictionary();
    if (!personality) return {};
    const bool isMatch = pair.outcome == PairOutcome::Matched;
    return FailedRequirements(type, *personality,
                              {hardware, boardRevision, bypassesVersionCheck && !isMatch});
  }
};

// The `count` nearest pairs of a record, without their failures, of which there may be many: only
// the distances are stored.
std::vector<ExplainedPair> NearestPairs(const Candidates& candidates, const KeyTrace& trace,
                                        std::size_t record, std::size_t count) {
  std::vector<ExplainedPair> pairs;
  for (std::size_t i = 0; i < candidates.personalities.size(); ++i) {
    ExplainedPair pair = {.personality = i, .outcome = trace.OutcomeOf(record, i)};
    pair.distance = DistanceOf(candidates.FailuresOf(pair, trace.inventory.records[record]));
    pairs.push_back(std::move(pair));
  }
  if (pairs.size() <= count) return pairs;
  const auto middle = pairs.begin() + static_cast<std::ptrdiff_t>(count);
  std::ranges::nth_element(pairs, middle, IsShownBefore);
  pairs.erase(middle, pairs.end());
  pairs.shrink_to_fit();
  std::ranges::sort(pairs, {}, &ExplainedPair::personality);
  return pairs;
}

// A key of a personality that its type reads, and the location of its value, which is known.
using ReadKey = std::pair<std::string_view, const ValueLocation*>;

// A key of a personality.
struct KeyOfPersonality {
  std::string_view type;
  std::size_t index;  // of the personality
  std::string_view key;
};

// Explains one key after the other.
class KeyExplainer {
 public:
  KeyExplainer(const ToolRun& run, const ConfigurationFile* file, const Recording& recording,
               const ExplainedSource& boardRevision, const ExplainFilter& filter,
               const ExplainedTrial& trial)
      : result_(run.result),
        file_(file),
        keyLocations_(file == nullptr ? nullptr : &file->Root()),
        recording_(recording),
        boardRevision_(boardRevision),
        filter_(filter),
        trial_(trial),
        pairsOfEach_(PairsOfEach(run.trace, filter)) {}

  ExplainedKey Explain(const KeyTrace& trace, const PropertyValue& value) {
    const auto* location = keyLocations_.Find(trace.key);
    const auto candidates = PersonalitiesOf(trace.key, value);
    ExplainedKey key = {.key = trace.key,
                        .location = LocationOf(location),
                        .type = TypeNamed(trace.key),
                        .hasExpectedShape = candidates.has_value(),
                        .isSelected = IsSelected(TypeNamed(trace.key), filter_),
                        .value = value,
                        .controllerCount = trace.inventory.records.size()};
    candidates_ = {WithoutUnreadKeys(candidates.value_or(Array()), copies_), key.type,
                   result_.identity->boardRevision, result_.bypassesVersionCheck};
    if (key.type != Types::None) ExplainPersonalities(candidates.value_or(Array()), location, key);
    if (key.isSelected) ExplainControllers(trace, key);
    const bool isEmpty = key.controllers.empty() && key.skipped.empty();
    if (isEmpty && !filter_.controller.empty()) key.isSelected = false;
    return key;
  }

 private:
  void ExplainControllers(const KeyTrace& trace, ExplainedKey& key) const {
    for (std::size_t i = 0; i < trace.inventory.records.size(); ++i) {
      if (!IsWanted(trace.inventory.sources[i].Controller())) continue;
      key.controllers.push_back(ExplainController(trace, i));
    }
    for (const auto& skipped : trace.inventory.skipped) {
      if (IsWanted(skipped.controller)) key.skipped.push_back(ExplainSkip(recording_, skipped));
    }
  }

  bool IsWanted(RegistryEntry entry) const {
    const auto& wanted = filter_.controller;
    return wanted.empty() || NameOf(recording_, entry) == wanted ||
           EntryPath(recording_, entry) == wanted;
  }

  // The location of a key or a value; empty where it is not known (null).
  template <typename Location>
  std::optional<FileLocation> LocationOf(const Location* location) const {
    if (location == nullptr) return std::nullopt;
    return file_->LocationOf(location->offset);
  }

  void ExplainPersonalities(Array candidates, const KeyLocation* keyLocation, ExplainedKey& key) {
    locations_.clear();
    locations_.reserve(candidates.size());
    key.personalities.reserve(candidates.size());
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const auto* location = LocationOfCandidate(keyLocation, key.type, i);
      ExplainedPersonality personality{.location = LocationOf(location)};
      auto& locations = locations_.emplace_back();
      if (const auto dictionary = candidates[i].AsDictionary()) {
        personality.isDictionary = true;
        if (const auto* firmware = dictionary->Find("Firmware")) personality.firmware = *firmware;
        personality.unread =
            PartitionKeys(*dictionary, {key.key, i, {}}, key.type, location, locations);
      }
      key.personalities.push_back(std::move(personality));
    }
  }

  // Partitions the keys: returns those that the type does not read; the locations of the others go
  // to `read`.
  std::vector<UnreadKey> PartitionKeys(Dictionary personality, KeyOfPersonality of, TypeSet type,
                                       const ValueLocation* location,
                                       std::vector<ReadKey>& read) const {
    const KeyLocations locations(location);
    std::vector<UnreadKey> unread;
    for (const auto& [key, value] : personality.Entries()) {
      const auto* known = FindPersonalityKey(key);
      const TypeSet readBy = known == nullptr ? Types::None : known->checkedBy | known->plannedBy;
      of.key = key;
      if ((readBy & type) != 0) {
        if (const auto* found = locations.Find(key)) read.emplace_back(key, &found->value);
      } else {
        unread.push_back({key, OriginOf(of, locations.Find(key)), readBy});
      }
    }
    return unread;
  }

  // `location` is that of the key or of its value; null: the file does not have it.
  template <typename Location>
  std::optional<ValueOrigin> OriginOf(const KeyOfPersonality& key, const Location* location) const {
    if (trial_.SetsKey(key.type, key.index, key.key)) return ValueOrigin(PersonalityOption);
    return LocationOf(location);
  }

  ExplainedController ExplainController(const KeyTrace& trace, std::size_t index) const {
    const auto& source = trace.inventory.sources[index];
    const bool hasThunderbolt = source.port != 0 && source.thunderbolt != 0;
    ExplainedController controller = {
        .number = index + 1,
        .isPort = source.port != 0,
        .path = EntryPath(recording_, source.Controller()),
        .name = NameOf(recording_, source.Controller()),
        .thunderboltName = hasThunderbolt ? NameOf(recording_, source.thunderbolt) : "",
        .record = trace.inventory.records[index],
        .isUuidUnread = !source.uuidFetched,
        .pairs = {},
        .sources = {},
    };
    if (!trace.HasPairs()) return controller;
    controller.pairs = NearestPairs(candidates_, trace, index, pairsOfEach_);
    controller.otherPairs = candidates_.personalities.size() - controller.pairs.size();
    for (auto& pair : controller.pairs) ExplainFailures(trace.key, source, controller, pair);
    return controller;
  }

  void ExplainFailures(std::string_view type, const RecordSource& source,
                       ExplainedController& controller, ExplainedPair& pair) const {
    const auto& locations = locations_[pair.personality];
    for (const auto& failed : candidates_.FailuresOf(pair, controller.record)) {
      const auto wanted = std::ranges::find(locations, failed.requirement->key, &ReadKey::first);
      pair.failures.push_back(
          {failed, OriginOf({type, pair.personality, failed.requirement->key},
                            wanted == locations.end() ? nullptr : wanted->second)});
      const auto hardwareKey = failed.requirement->hardwareKey;
      auto [sources, isNew] = controller.sources.try_emplace(hardwareKey);
      if (isNew) sources->second = SourcesFor(hardwareKey, source);
    }
  }

  ExplainedSources SourcesFor(std::string_view hardwareKey, const RecordSource& source) const {
    if (hardwareKey.empty()) return {boardRevision_};
    ExplainedSources sources;
    for (const auto& each : SourcesOf(hardwareKey, source)) {
      sources.push_back(LookUpSource(recording_, each));
    }
    return sources;
  }

  const RunResult& result_;
  const ConfigurationFile* file_;
  KeyLocations keyLocations_;  // of the top-level keys
  const Recording& recording_;
  const ExplainedSource& boardRevision_;
  const ExplainFilter& filter_;
  const ExplainedTrial& trial_;
  std::size_t pairsOfEach_;
  Arena copies_;                                 // of candidates
  Candidates candidates_ = {};                   // of the key that is explained
  std::vector<std::vector<ReadKey>> locations_;  // of these
};

}  // namespace

bool IsShownBefore(const ExplainedPair& a, const ExplainedPair& b) {
  const auto rank = [](const ExplainedPair& pair) {
    return std::tuple(pair.outcome, pair.distance, pair.personality);
  };
  return rank(a) < rank(b);
}

ExplainedSource LookUpSource(const Recording& recording, const PropertySource& source) {
  const auto& entry = recording.entries[source.entry - 1];
  ExplainedSource explained = {.path = EntryPath(recording, source.entry),
                               .name = entry.name,
                               .property = source.property,
                               .value = {},
                               .conversion = source.conversion};
  if (const auto* value = entry.properties.Find(source.property)) explained.value = *value;
  return explained;
}

std::vector<ExplainedKey> ExplainKeys(const ToolRun& run, const ConfigurationFile* file,
                                      const Recording& recording,
                                      const ExplainedSource& boardRevision,
                                      const ExplainFilter& filter, const ExplainedTrial& trial) {
  std::vector<ExplainedKey> keys;
  const auto configuration = run.result.configuration->value.AsDictionary();
  if (!configuration) return keys;
  KeyExplainer explainer(run, file, recording, boardRevision, filter, trial);
  for (std::size_t i = 0; i < run.trace.keys.size(); ++i) {
    keys.push_back(explainer.Explain(run.trace.keys[i], configuration->Entries()[i].value));
  }
  return keys;
}

}  // namespace fernwick::lab
