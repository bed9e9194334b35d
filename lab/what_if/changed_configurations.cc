// A cache by directory. A change copies the dictionaries and the array that lead to the
// personality, not what they contain: linear in their entries, for each change.

#include "lab/what_if/changed_configurations.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "lab/support/words.h"
#include "personality/personality.h"
#include "value/record.h"

namespace fernwick::lab {
namespace {

Dictionary Copied(const Record& record, Arena& arena) {
  return arena.Copy(record.Entries());
}

// What is under the type with one of its personalities replaced.
PropertyValue WithPersonality(const PersonalityChange& change, Array personalities,
                              Dictionary replacement, Arena& arena) {
  if (TypeNamed(change.type) == Types::LegacyUsbc) return replacement;
  std::vector<PropertyValue> elements(personalities.begin(), personalities.end());
  elements[change.number - 1] = replacement;
  return Array(arena.Copy(std::span<const PropertyValue>(elements)));
}

Error NoSuchPersonality(const PersonalityChange& change, const std::string& why) {
  return {.message = "--personality: there is no personality " + std::to_string(change.number) +
                     " of " + change.type + ": " + why};
}

// The configuration with one change.
Result<PropertyValue> Apply(const PersonalityChange& change, const std::string& board,
                            const PropertyValue& value, Arena& arena) {
  if (!change.board.empty() && change.board != board) {
    return NoSuchPersonality(change, "the board is " + PrintableText(board));
  }
  const auto topLevel = value.AsDictionary();
  const auto* of = topLevel ? topLevel->Find(change.type) : nullptr;
  if (of == nullptr) return NoSuchPersonality(change, "the configuration lacks the type");
  const auto personalities = PersonalitiesOf(change.type, *of);
  if (!personalities || change.number > personalities->size()) {
    return NoSuchPersonality(
        change, "the type has " + std::to_string(personalities ? personalities->size() : 0));
  }
  const auto personality = (*personalities)[change.number - 1].AsDictionary();
  if (!personality) return NoSuchPersonality(change, "it is not a dictionary");
  Record changed(*personality);
  changed.SetOrRemove(change.key, change.value ? &change.value->value : nullptr);
  Record changedTop(*topLevel);
  changedTop.Set(change.type,
                 WithPersonality(change, *personalities, Copied(changed, arena), arena));
  return PropertyValue(Copied(changedTop, arena));
}

}  // namespace

ChangedConfigurations::DocumentKey ChangedConfigurations::KeyOf(
    const std::string& board, const std::string& personalitiesDirectory) const {
  const bool isNamed = std::ranges::find(changes_.personalities, board,
                                         &PersonalityChange::board) != changes_.personalities.end();
  return {BoardNamed(board, personalitiesDirectory), isNamed ? board : ""};
}

const ChangedConfigurations::Document* ChangedConfigurations::FindDocument(const DocumentKey& key) {
  const std::lock_guard lock(mutex_);
  const auto known = documents_.find(key);
  return known == documents_.end() ? nullptr : &known->second;
}

// Applies what can be applied; `fault` becomes why the first other change cannot be.
ChangedConfigurations::Document ChangedConfigurations::Change(PropertyList list,
                                                              const std::string& board,
                                                              std::optional<Error>& fault) const {
  Document document = {.list = std::move(list)};
  document.value = document.list.value;
  for (const auto& change : changes_.personalities) {
    const auto changed = Apply(change, board, document.value, document.arena);
    document.applied.push_back(static_cast<bool>(changed));
    if (changed) document.value = *changed;
    if (!changed && !fault) fault = changed.Error();
  }
  return document;
}

ConfigurationLoader ChangedConfigurations::Loader(std::optional<Error>& refusal) {
  return LoaderFor(&refusal, nullptr);
}

ConfigurationLoader ChangedConfigurations::Loader(std::vector<bool>& applied) {
  return LoaderFor(nullptr, &applied);
}

ConfigurationLoader ChangedConfigurations::LoaderFor(std::optional<Error>* refusal,
                                                     std::vector<bool>* applied) {
  return [this, refusal, applied](const std::optional<std::string>& boardIdString,
                                  const std::optional<std::string>& personalitiesDirectory,
                                  Console& console) -> Result<PropertyList> {
    const auto load = [&] {
      return LoadPersonalityConfiguration(boardIdString, personalitiesDirectory, console);
    };
    if (!boardIdString) return load();
    const auto key = KeyOf(*boardIdString, personalitiesDirectory.value_or(""));
    const auto* document = FindDocument(key);
    if (document == nullptr) {
      auto loaded = load();
      if (!loaded) return loaded;
      std::optional<Error> fault;
      auto changed = Change(*std::move(loaded), *boardIdString, fault);
      if (refusal != nullptr && fault) return refusal->emplace(*std::move(fault));
      const std::lock_guard lock(mutex_);
      document = &documents_.try_emplace(key, std::move(changed)).first->second;
    }
    if (applied != nullptr) *applied = document->applied;
    return PropertyList{{}, document->value};
  };
}

Result<const ConfigurationFile*, LabError> ChangedConfigurations::Located(
    const std::string& board, const std::string& personalitiesDirectory) {
  const auto key = BoardNamed(board, personalitiesDirectory);
  const std::lock_guard lock(mutex_);
  const auto known = located_.find(key);
  if (known != located_.end()) return &known->second;
  const auto path = *ConfigurationPath(board, personalitiesDirectory);
  auto file = LoadConfiguration(path);
  if (file) return &located_.try_emplace(key, *std::move(file)).first->second;
  const auto& [error, status] = file.Error();
  if (status != LabStatus::OutOfResources) return nullptr;
  return LabError{{path + ": " + error.message}, status};
}

}  // namespace fernwick::lab
