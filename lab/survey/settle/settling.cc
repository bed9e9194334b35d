// A simulation with cycle detection: what a run plans depends on nothing but the registry, so that
// everything repeats once a state does. Each state is remembered as a digest of 128 bits, which a
// change of a property updates without reading the rest. With the version check versions only
// increase, but for those of two personalities that undo each other; without it, a few controllers
// may have cycles of different lengths, whose common period is too long to wait for: hence the
// bounds. Costs a run of the tool for each plan, and memory for what the plans change.

#include "lab/survey/settle/settling.h"

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <unordered_set>
#include <utility>

#include "driver/bypass_switch.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/settle/stored_version.h"
#include "lab/what_if/state_digest.h"
#include "personality/requirements.h"
#include "plan/plan_values.h"
#include "registry/board_identity.h"
#include "registry/thunderbolt_inventory.h"
#include "registry/typed_readers.h"
#include "value/property_list_reader.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxListedVariables = 100;
constexpr std::string_view BootArguments = "boot-args";

std::optional<PropertyValue> ReportedPortVersion(Registry& registry, RegistryEntry port) {
  std::uint32_t packed = 0;
  if (ReadU32Property(registry, port, "Version", packed) != RegistrySuccess) return std::nullopt;
  return PropertyValue(static_cast<std::int32_t>(DecodeBcd(packed)));
}

std::optional<PropertyValue> ReportedThunderboltVersion(Registry& registry, RegistryEntry entry) {
  std::uint32_t rom = 0;
  std::uint32_t eeprom = 0;
  if (ReadU32Property(registry, entry, "ROM Version", rom) != RegistrySuccess) return std::nullopt;
  static_cast<void>(ReadU32Property(registry, entry, "EEPROM Revision", eeprom));
  return PropertyValue(ThunderboltFirmwareVersion(rom, eeprom));
}

// A value of a variable as it is shown.
std::optional<std::string> ShortText(const std::optional<PropertyValue>& value) {
  constexpr std::size_t MaxLength = 200;
  if (!value) return std::nullopt;
  const auto text = InlineText(*value);
  if (text.size() <= MaxLength) return text;
  return std::string(FirstCharacters(text, MaxLength)) + "...";
}

// The personalities of a run by the top-level key that they are under. REQUIRES: the run has
// matches, and so a configuration.
class PersonalitiesOfRun {
 public:
  explicit PersonalitiesOfRun(const ToolRun& run) {
    for (const auto& [key, candidates] : CandidatesOf(run, copies_)) byKey_[key] = candidates;
  }

  Dictionary Of(const MatchedPair& pair) const {
    return *byKey_.at(pair.key)[pair.personality].AsDictionary();
  }

 private:
  Arena copies_;
  std::map<const KeyTrace*, Array> byKey_;
};

AppliedMatch AppliedMatchOf(const PersonalitiesOfRun& personalities, const MatchedPair& pair) {
  const auto& source = pair.key->inventory.sources[pair.controller];
  const auto type = TypeNamed(pair.key->key);
  // Both types for Thunderbolt controllers require their silicon, so that there is one.
  AppliedMatch match = {.type = type,
                        .personality = pair.personality,
                        .controller = source.Controller(),
                        .changed = IsOfThunderbolt(type) ? source.thunderbolt : source.port};
  match.comparesVersionAbove = !IsOfThunderbolt(type) && source.version == Origin::Thunderbolt;
  const auto* version = personalities.Of(pair).Find("Version");
  if (version != nullptr && version->IsNumber()) match.offered = *version;
  const auto* compared = pair.Controller().Find("Version");
  if (compared != nullptr) match.compared = *compared;
  return match;
}

// Changes the computer plan by plan.
class PlanExecution {
 public:
  PlanExecution(ChangedComputer& computer, const SettleOptions& options)
      : computer_(computer), options_(options) {}

  SettleStep CarryOut(const ToolRun& run) {
    RecordedRegistry registry(computer_.Recorded());
    const PersonalitiesOfRun personalities(run);
    SettleStep step;
    PlanValues plan;
    for (const auto& pair : MatchedPairs(run)) {
      step.matches.push_back(AppliedMatchOf(personalities, pair));
      Apply(registry, step.matches.back());
      MergeNvram(*pair.match, plan);
    }
    ApplyNvram(plan, step);
    return step;
  }

  const StateDigest& State() const { return state_; }

 private:
  void Apply(Registry& registry, AppliedMatch& match) {
    const bool isPort = !IsOfThunderbolt(match.type);
    match.before = ReportedVersion(registry, match.changed, isPort);
    const auto stored = match.offered ? StoredValues(*match.offered, isPort) : std::nullopt;
    match.isStored = stored.has_value();
    if (stored) Set(match.changed, *stored);
    match.after = ReportedVersion(registry, match.changed, isPort);
  }

  // The properties of a controller with that version; empty when it can store none.
  static std::optional<Record> StoredValues(const PropertyValue& offered, bool isPort) {
    if (isPort) {
      const auto packed = StoredPortVersion(offered);
      return packed ? std::optional(Record{{"Version", *packed}}) : std::nullopt;
    }
    const auto words = StoredThunderboltVersion(offered);
    if (!words) return std::nullopt;
    return Record{{"ROM Version", words->rom}, {"EEPROM Revision", words->eeprom}};
  }

  void Set(RegistryEntry entry, const Record& values) {
    Record properties(computer_.Properties(entry));
    for (const auto& [key, value] : values.Entries()) {
      const auto* before = properties.Find(key);
      if (before != nullptr) state_.Remove(entry, key, *before);
      state_.Add(entry, key, value);
      properties.Set(key, value);
    }
    computer_.SetProperties(entry, std::move(properties));
  }

  // A tree of the variables that the plan names: a configuration chooses how many there are.
  void ApplyNvram(const PlanValues& plan, SettleStep& step) {
    std::map<std::string_view, std::optional<PropertyValue>> after;
    const auto toSet = NvramToSet(plan);
    for (const auto& [name, value] : toSet.Entries()) after[name] = value;
    for (const auto& name : NvramToClear(plan)) {
      if (const auto text = name.AsString()) after[*text] = std::nullopt;
    }
    if (after.empty()) return;
    // There is a device tree, since the board has a configuration.
    const auto entry = computer_.BootOptions();
    std::map<std::string_view, std::optional<PropertyValue>> before;
    for (const auto& [name, value] : computer_.Properties(entry).Entries()) before[name] = value;
    Record properties(computer_.Properties(entry));
    properties.Merge(toSet);
    std::vector<DictionaryEntry> kept;
    for (const auto& property : properties.Entries()) {
      const auto changed = after.find(property.key);
      if (changed == after.end() || changed->second) kept.push_back(property);
    }
    for (const auto& [name, value] : after) Note(entry, name, before[name], value, step);
    computer_.SetProperties(entry, Record(Dictionary(kept)));
  }

  // Records the change of a variable in the state and in the step.
  void Note(RegistryEntry entry, std::string_view name, const std::optional<PropertyValue>& before,
            const std::optional<PropertyValue>& after, SettleStep& step) {
    if (before == after) return;
    if (before) state_.Remove(entry, name, *before);
    if (after) state_.Add(entry, name, *after);
    const bool setsSwitch = name == BootArguments || name == UpdatesSwitch || name == VersionSwitch;
    if (setsSwitch) step.switches.emplace_back(name);
    if (!options_.listsNvram) return;
    if (step.nvram.size() == MaxListedVariables) {
      ++step.otherNvram;
    } else {
      step.nvram.push_back({std::string(name), ShortText(before), ShortText(after)});
    }
  }

  ChangedComputer& computer_;
  const SettleOptions& options_;
  StateDigest state_;  // of what differs from the recording
};

SettleEnd EndOfRun(const ToolRun& run, const Options& options) {
  if (run.result.fault) return SettleEnd::AbnormalEnd;
  if (run.result.bypassesUpdates) return SettleEnd::Bypassed;
  if (UnreadableConfiguration(run, options)) return SettleEnd::Failure;
  const auto& configuration = run.result.configuration;
  const bool isUsable = configuration && configuration->value.AsDictionary();
  return isUsable && run.result.matches.empty() ? SettleEnd::NothingMatches : SettleEnd::NoPlan;
}

// What of the last plan sets the switch, by the boot arguments or a variable of its name.
SwitchChange ChangeOf(const std::vector<SettleStep>& steps, std::string_view name) {
  SwitchChange change = {.run = steps.size()};
  for (const auto& variable : steps.back().switches) {
    if (variable == BootArguments || variable == name) change.variables.push_back(variable);
  }
  return change;
}

// Compares the run with the one before the last plan, if there is one. A fault of an argument
// without a value is of the boot arguments alone.
void NoteSwitches(const ToolRun& run, bool wasBypassed, Settling& settling) {
  if (settling.steps.empty()) return;
  if (run.result.switchBypassesVersion && !wasBypassed) {
    settling.uncheckedBy = ChangeOf(settling.steps, VersionSwitch);
  }
  if (run.result.bypassesUpdates) settling.endedBy = ChangeOf(settling.steps, UpdatesSwitch);
  if (run.result.fault == Fault::BareSwitch) {
    settling.endedBy = ChangeOf(settling.steps, BootArguments);
  }
}

std::size_t MaxTestedPairs(const ToolRun& run) {
  return run.result.bypassesVersionCheck ? MaxUncheckedPairs : MaxCheckedPairs;
}

bool HasPlan(const ToolRun& run) {
  return !run.result.fault && !run.result.bypassesUpdates &&
         run.result.status == ExitStatus::PlanPrinted;
}

std::size_t TestedPairs(const ToolRun& run) {
  std::size_t pairs = 0;
  for (const auto& key : run.trace.keys) pairs += key.matched.size() * key.isPersonality.size();
  return pairs;
}

// Those of the inventories of the first run. Another configuration, which a plan leads to that
// changes the board's identifier, may list others; they are not followed.
std::vector<ControllerVersion> ControllersOf(const ToolRun& run, Registry& registry) {
  std::array<std::set<RegistryEntry>, 2> entries;  // ports, Thunderbolt controllers
  for (const auto& key : run.trace.keys) {
    for (const auto& source : key.inventory.sources) {
      entries[0].insert(source.port);
      entries[1].insert(source.thunderbolt);
    }
  }
  std::vector<ControllerVersion> controllers;
  for (const bool isPort : {true, false}) {
    for (const auto entry : entries[isPort ? 0 : 1]) {
      if (entry == 0) continue;
      controllers.push_back({entry, isPort, ReportedVersion(registry, entry, isPort)});
    }
  }
  return controllers;
}

}  // namespace

std::optional<PropertyValue> ReportedVersion(Registry& registry, RegistryEntry entry, bool isPort) {
  return isPort ? ReportedPortVersion(registry, entry)
                : ReportedThunderboltVersion(registry, entry);
}

bool IsOlder(const std::optional<PropertyValue>& version,
             const std::optional<PropertyValue>& other) {
  return version && other && NumberLess(*version, *other);
}

Settling Settle(ChangedComputer& computer, const SettleOptions& options) {
  Settling settling;
  PlanExecution execution(computer, options);
  std::map<StateDigest, std::size_t> states = {{execution.State(), 0}};
  std::size_t pairs = 0;
  for (bool isFirst = true;; isFirst = false) {
    const bool wasBypassed = settling.last.result.switchBypassesVersion;
    settling.last = RunTool(computer.Recorded(), options.tool, KeptOutput::Counts, options.load);
    RecordedRegistry registry(computer.Recorded());
    if (isFirst) settling.controllers = ControllersOf(settling.last, registry);
    settling.end = EndOfRun(settling.last, options.tool);
    NoteSwitches(settling.last, wasBypassed, settling);
    if (!HasPlan(settling.last)) break;
    settling.end = SettleEnd::GivenUp;
    pairs += TestedPairs(settling.last);
    if (settling.steps.size() == MaxPlans) break;
    if (settling.steps.size() >= MinPlans && pairs > MaxTestedPairs(settling.last)) break;
    settling.steps.push_back(execution.CarryOut(settling.last));
    const auto [state, isNew] = states.emplace(execution.State(), settling.steps.size());
    if (!isNew) {
      settling.end = SettleEnd::StateComesBack;
      settling.stepsBeforeCycle = state->second;
      break;
    }
  }
  RecordedRegistry registry(computer.Recorded());
  for (auto& controller : settling.controllers) {
    controller.after = ReportedVersion(registry, controller.entry, controller.isPort);
  }
  return settling;
}

}  // namespace fernwick::lab
