#include "personality/matcher.h"

#include <string>
#include <utility>

#include "personality/configuration.h"
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
PairOutcome MatchPair(const KeyMatch& key, const PropertyValue& candidate,
                      const HardwareRecord& controller, const ControllerCheck& check) {
  const auto personality = candidate.AsDictionary();
  if (!personality) return PairOutcome::NotAPersonality;
  if (!check.Applies(*personality, key.context.console)) return PairOutcome::Rejected;
  key.matches.push_back(BuildMatchRecord(*personality, controller, key.typeName));
  return PairOutcome::Matched;
}

// The controller gets the first candidate that applies. `outcomes` may be null.
void MatchController(const KeyMatch& key, Array candidates, const HardwareRecord& controller,
                     std::vector<PairOutcome>* outcomes) {
  const ControllerCheck check(key.type,
                              {controller, key.boardRevision, key.context.bypassVersionCheck});
  for (const auto& candidate : candidates) {
    const auto outcome = MatchPair(key, candidate, controller, check);
    if (outcomes != nullptr) outcomes->push_back(outcome);
    if (outcome == PairOutcome::Matched) break;
  }
  if (outcomes != nullptr) outcomes->resize(candidates.size(), PairOutcome::NotReached);
}

// Controllers are matched independently: the one personality of "LegacyUSBC" may apply to several,
// and so may each of an array.
void MatchControllers(const KeyMatch& key, const PropertyValue& value,
                      const HardwareInventory& inventory, KeyTrace* trace) {
  const auto candidates = PersonalitiesOf(key.typeName, value);
  if (key.type == Types::None || !candidates) return;
  for (const auto& controller : inventory.records) {
    auto* outcomes = trace == nullptr ? nullptr : &trace->outcomes.emplace_back();
    MatchController(key, *candidates, controller, outcomes);
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
  trace.inventory = *std::move(inventory);
  MatchControllers(key, value, trace.inventory, &trace);
  return std::nullopt;
}

}  // namespace

Result<Matching, Fault> MatchPersonalities(
    const MatchContext& context, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory) {
  Matching matching{.configuration = LoadPersonalityConfiguration(
                        boardIdString, personalitiesDirectory, context.console),
                    .matches = {}};
  const auto types =
      matching.configuration ? matching.configuration->value.AsDictionary() : std::nullopt;
  if (!types) {
    PlatformLog(context.console, "Unexpected format for config plist file.  Aborting");
    return matching;
  }
  const auto revision = static_cast<std::uint8_t>(boardRevision);
  for (const auto& [name, value] : types->Entries()) {
    const KeyMatch key = {context, name, TypeNamed(name), revision, matching.matches};
    if (const auto fault = MatchKey(key, value)) return *fault;
  }
  return matching;
}

}  // namespace fernwick
