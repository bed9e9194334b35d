#include "lab/explain/explained_keys.h"

#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "lab/recordings/entry_path.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

// Where the keys of a dictionary stand; of one that occurs twice the last, whose value holds.
class KeyPlaces {
 public:
  // Null: nothing is known.
  explicit KeyPlaces(const ValuePlace* dictionary) {
    if (dictionary == nullptr) return;
    for (const auto& entry : dictionary->entries) places_[entry.key.View()] = &entry;
  }

  // Null when it is not told.
  const KeyPlace* Find(std::string_view key) const {
    const auto place = places_.find(key);
    return place == places_.end() ? nullptr : place->second;
  }

 private:
  std::unordered_map<std::string_view, const KeyPlace*> places_;
};

// What the values of one controller come from, looked up once for each key.
class ControllerSources {
 public:
  ControllerSources(const Recording& recording, const ExplainedSource& boardRevision,
                    const RecordSource& source)
      : recording_(recording), boardRevision_(boardRevision), source_(source) {}

  SharedSources Of(std::string_view hardwareKey) {
    auto& sources = byKey_[hardwareKey];
    if (sources == nullptr) sources = LookUp(hardwareKey);
    return sources;
  }

  bool IsUuidUnread() const { return !source_.uuidFetched; }

 private:
  SharedSources LookUp(std::string_view hardwareKey) const {
    if (hardwareKey.empty()) return Share({boardRevision_});
    std::vector<ExplainedSource> sources;
    for (const auto& each : SourcesOf(hardwareKey, source_)) {
      sources.push_back(LookUpSource(recording_, each));
    }
    return Share(std::move(sources));
  }

  const Recording& recording_;
  const ExplainedSource& boardRevision_;
  const RecordSource& source_;
  std::unordered_map<std::string_view, SharedSources> byKey_;  // by literals
};

// Explains one key after the other.
class KeyExplainer {
 public:
  KeyExplainer(const ConfigurationFile* file, const Recording& recording,
               const ExplainedSource& boardRevision)
      : file_(file),
        keyPlaces_(file == nullptr ? nullptr : &file->Root()),
        recording_(recording),
        boardRevision_(boardRevision) {}

  ExplainedKey Explain(const KeyDecisions& decisions, const PropertyValue& value) {
    const auto* place = keyPlaces_.Find(decisions.key);
    const auto type = TypeNamed(decisions.key);
    const auto candidates = PersonalitiesOf(decisions.key, value);
    ExplainedKey key = {.key = decisions.key,
                        .place = PlaceOfKey(place),
                        .type = type,
                        .hasShape = candidates.has_value(),
                        .value = value};
    if (type != Types::None && candidates) ExplainPersonalities(*candidates, place, key);
    for (std::size_t i = 0; i < decisions.controllers.size(); ++i) {
      key.controllers.push_back(
          ExplainController(decisions.controllers[i], decisions.inventory.listed[i]));
    }
    for (const auto& omitted : decisions.inventory.omitted) {
      key.omitted.push_back(ExplainOmission(omitted));
    }
    return key;
  }

 private:
  std::optional<FilePlace> PlaceOfKey(const KeyPlace* place) const {
    if (place == nullptr) return std::nullopt;
    return file_->PlaceOf(place->offset);
  }

  std::optional<FilePlace> PlaceOfValue(const ValuePlace* place) const {
    if (place == nullptr) return std::nullopt;
    return file_->PlaceOf(place->offset);
  }

  // The value of "LegacyUSBC" is the one personality itself.
  static const ValuePlace* PlaceOfCandidate(const KeyPlace* keyPlace, TypeSet type,
                                            std::size_t index) {
    if (keyPlace == nullptr) return nullptr;
    return type == Types::LegacyUsbc ? &keyPlace->value : FindElement(keyPlace->value, index);
  }

  void ExplainPersonalities(std::span<const PropertyValue> candidates, const KeyPlace* keyPlace,
                            ExplainedKey& key) {
    places_.clear();
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      places_.push_back(PlaceOfCandidate(keyPlace, key.type, i));
      ExplainedPersonality personality{.place = PlaceOfValue(places_.back()), .firmware = {}};
      if (const auto* dictionary = candidates[i].AsDictionary()) {
        if (const auto* firmware = dictionary->Find("Firmware")) personality.firmware = *firmware;
        personality.unread = UnreadKeys(*dictionary, key.type, places_.back());
      }
      key.personalities.push_back(std::move(personality));
    }
  }

  std::vector<UnreadKey> UnreadKeys(const Dictionary& personality, TypeSet type,
                                    const ValuePlace* place) const {
    const KeyPlaces places(place);
    std::vector<UnreadKey> unread;
    for (const auto& [key, value] : personality.Entries()) {
      const auto* known = FindPersonalityKey(key.View());
      const TypeSet readBy = known == nullptr ? Types::None : known->checkedBy | known->plannedBy;
      if ((readBy & type) != 0) continue;
      unread.push_back({std::string(key.View()), PlaceOfKey(places.Find(key.View())), readBy});
    }
    return unread;
  }

  ExplainedController ExplainController(const ControllerDecisions& decisions,
                                        const RecordSource& source) const {
    const bool hasThunderbolt = source.port != 0 && source.thunderbolt != 0;
    ExplainedController controller = {
        .isPort = source.port != 0,
        .path = EntryPath(recording_, source.Controller()),
        .name = NameOf(source.Controller()),
        .thunderboltName = hasThunderbolt ? NameOf(source.thunderbolt) : "",
        .record = decisions.controller,
        .pairs = {},
    };
    ControllerSources sources(recording_, boardRevision_, source);
    for (std::size_t i = 0; i < decisions.pairs.size(); ++i) {
      ExplainedPair pair = {.personality = i, .outcome = decisions.pairs[i].outcome};
      pair.failures.reserve(decisions.pairs[i].failures.size());
      for (const auto& failure : decisions.pairs[i].failures) {
        pair.failures.push_back(ExplainFailure(failure, places_[i], sources));
      }
      controller.pairs.push_back(std::move(pair));
    }
    return controller;
  }

  ExplainedFailure ExplainFailure(const FailedRequirement& requirement,
                                  const ValuePlace* personality, ControllerSources& sources) const {
    const auto* place = personality == nullptr ? nullptr : FindKey(*personality, requirement.key);
    return {.requirement = requirement,
            .wantedPlace = PlaceOfValue(place == nullptr ? nullptr : &place->value),
            .sources = sources.Of(requirement.hardwareKey),
            .isUuidUnread = requirement.hardwareKey == "Port UUID" && sources.IsUuidUnread()};
  }

  ExplainedOmission ExplainOmission(const OmittedController& omitted) const {
    ExplainedOmission explained = {.path = EntryPath(recording_, omitted.controller),
                                   .name = NameOf(omitted.controller),
                                   .why = omitted.why,
                                   .sources = {}};
    const auto look = [&](std::string_view property) {
      explained.sources.push_back(LookUpSource(recording_, {omitted.controller, property, ""}));
    };
    switch (omitted.why) {
      case Omission::NotAtRootOfTopology: look("Depth"), look("Route String"); break;
      case Omission::RouteString: look("Route String"); break;
      case Omission::AddressBelowThunderbolt: look("Address"); break;
    }
    return explained;
  }

  const std::string& NameOf(RegistryEntry entry) const {
    return recording_.entries[entry - 1].name;
  }

  const ConfigurationFile* file_;
  KeyPlaces keyPlaces_;  // of the top-level keys
  const Recording& recording_;
  const ExplainedSource& boardRevision_;
  std::vector<const ValuePlace*> places_;  // of the personalities of the key; null where not told
};

}  // namespace

ExplainedSource LookUpSource(const Recording& recording, const PropertySource& source) {
  const auto& entry = recording.entries[source.entry - 1];
  ExplainedSource explained = {.path = EntryPath(recording, source.entry),
                               .name = entry.name,
                               .property = std::string(source.property),
                               .value = {},
                               .conversion = std::string(source.conversion)};
  if (const auto* value = entry.properties.Find(source.property)) explained.value = *value;
  return explained;
}

std::vector<ExplainedKey> ExplainKeys(const MatchRecorder& matching, const ConfigurationFile* file,
                                      const Recording& recording,
                                      const ExplainedSource& boardRevision) {
  std::vector<ExplainedKey> keys;
  KeyExplainer explainer(file, recording, boardRevision);
  const auto* configuration = matching.configuration->AsDictionary();
  if (configuration == nullptr) return keys;
  auto entry = configuration->Entries().begin();
  for (const auto& decisions : matching.keys) {
    keys.push_back(explainer.Explain(decisions, (entry++)->value));
  }
  return keys;
}

}  // namespace fernwick::lab
