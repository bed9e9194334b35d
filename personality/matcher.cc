// First match: for each top-level key and each controller the first personality whose requirements
// are all met. O(controllers x personalities x requirements) for each key, plus one inventory.

#include "personality/matcher.h"

#include <string>
#include <utility>

#include "personality/personality.h"
#include "personality/requirements.h"
#include "platform/platform_log.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick {
namespace {

// One top-level key of the configuration, while its personalities are matched.
struct KeyMatch {
  const MatchContext& context;
  std::string_view typeName;
  TypeSet type;
  std::uint8_t boardRevision;
  std::vector<MatchRecord>& matches;
};

// Tests one candidate against the controller of `check`, and adds the record of a match.
bool MatchPair(const KeyMatch& key, const PropertyValue& candidate,
               const HardwareRecord& controller, const ControllerCheck& check) {
  const auto personality = candidate.AsDictionary();
  if (!personality || !check.Applies(*personality, key.context.console)) return false;
  key.matches.push_back(BuildMatchRecord(*personality, controller, key.typeName));
  return true;
}

// The controller gets the first candidate that applies: returns its index, or KeyTrace::NoMatch.
std::size_t MatchController(const KeyMatch& key, Array candidates,
                            const HardwareRecord& controller) {
  const ControllerCheck check(key.type,
                              {controller, key.boardRevision, key.context.bypassVersionCheck});
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (MatchPair(key, candidates[i], controller, check)) return i;
  }
  return KeyTrace::NoMatch;
}

// Controllers are matched independently: the one personality of "LegacyUSBC" may apply to several,
// and so may each of an array.
void MatchControllers(const KeyMatch& key, const PropertyValue& value,
                      const HardwareInventory& inventory, KeyTrace* trace) {
  auto candidates = PersonalitiesOf(key.typeName, value);
  if (key.type == Types::None || !candidates) return;
  Arena copies;
  candidates = WithoutUnreadKeys(*candidates, copies);
  for (const auto& controller : inventory.records) {
    const auto matched = MatchController(key, *candidates, controller);
    if (trace != nullptr) trace->matched.push_back(matched);
  }
  if (trace == nullptr) return;
  for (const auto& candidate : *candidates) {
    trace->isPersonality.push_back(candidate.AsDictionary().has_value());
  }
}

// An inventory is collected for every key, also for one that names no type, and never shared.
std::optional<Fault> MatchKey(const KeyMatch& key, const PropertyValue& value) {
  auto& registry = key.context.registry;
  auto inventory = key.type == Types::LegacyThunderbolt ? CollectThunderboltControllers(registry)
                                                        : CollectPortControllers(registry);
  if (!inventory) return inventory.Error();
  if (key.context.trace == nullptr) {
    MatchControllers(key, value, *inventory, nullptr);
    return std::nullopt;
  }
  auto& trace = key.context.trace->keys.emplace_back(KeyTrace{std::string(key.typeName)});
  if (key.type == Types::None) return std::nullopt;
  trace.inventory = *std::move(inventory);
  MatchControllers(key, value, trace.inventory, &trace);
  return std::nullopt;
}

}  // namespace

Result<Matching, Fault> MatchPersonalities(
    const MatchContext& context, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory) {
  auto loaded = context.load(boardIdString, personalitiesDirectory, context.console);
  Matching matching;
  if (!loaded) matching.configurationError = loaded.Error();
  if (loaded) matching.configuration = *std::move(loaded);
  const auto topLevel =
      matching.configuration ? matching.configuration->value.AsDictionary() : std::nullopt;
  if (!topLevel) {
    PlatformLog(context.console, "Unexpected format for config plist file.  Aborting");
    return matching;
  }
  const auto revision = static_cast<std::uint8_t>(boardRevision);
  for (const auto& [name, value] : topLevel->Entries()) {
    const KeyMatch key = {context, name, TypeNamed(name), revision, matching.matches};
    if (const auto fault = MatchKey(key, value)) return *fault;
  }
  return matching;
}

}  // namespace fernwick
