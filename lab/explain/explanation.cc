#include "lab/explain/explanation.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "driver/bypass_switch.h"
#include "lab/explain/explained_keys.h"
#include "lab/explain/near_boards.h"
#include "lab/explain/phrases.h"
#include "lab/explain/trial_registry.h"
#include "personality/configuration.h"
#include "platform/file_system.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

RunEnd EndOf(const RunResult& result) {
  if (result.fault) return RunEnd::Abnormal;
  if (result.bypassesUpdates) return RunEnd::Bypassed;
  if (!result.configuration) return RunEnd::NoConfiguration;
  if (!result.configuration->value.AsDictionary()) return RunEnd::NoDictionary;
  if (result.matches.empty()) return RunEnd::NothingMatched;
  const bool isWhole = result.plannedMatches == result.matches.size();
  return isWhole ? RunEnd::Planned : RunEnd::NoFirmware;
}

// A property of the entry with the boot arguments and NVRAM variables.
ExplainedSource OptionsSource(Registry& registry, std::string_view property) {
  const auto options = registry.LookupEntryByPath(BootOptionsPath);
  return {.path = std::string(BootOptionsPath),
          .name = "options",
          .property = property,
          .value = registry.GetProperty(options, property),
          .conversion = {}};
}

// REQUIRES: the switch is set, and a boot argument that is a bare name did not end the run or is
// hidden from it.
ActiveSwitch WhereSet(const Recording& recording, std::string_view name) {
  RecordedRegistry registry(recording);
  TrialRegistry withoutVariables(recording);
  withoutVariables.HideSwitchVariables();
  if (name == VersionSwitch) withoutVariables.HideWhatEndsTheRun();
  const bool isBootArgument = *ReadBypassSwitch(withoutVariables, name);
  return {.name = name,
          .isBootArgument = isBootArgument,
          .source = OptionsSource(registry, isBootArgument ? "boot-args" : name)};
}

// Found at or below the root of the device tree; without it the revision is 0.
ExplainedSource BoardRevisionSource(Registry& registry) {
  const auto root = registry.LookupEntryByPath(DeviceTreeRoot);
  const auto value =
      registry.SearchProperty(root, DeviceTreePlane, BoardRevisionProperty, SearchRecursively);
  const auto bytes = value ? value->AsData() : std::nullopt;
  return {.path = std::string(DeviceTreeRoot),
          .name = "the device tree",
          .property = BoardRevisionProperty,
          .value = value,
          .conversion = bytes && !bytes->empty() ? "its first byte" : "counts as 0"};
}

// What a fault that ends a run abnormally is about. Of a missing "UID" every controller that the
// run would read it of, if it did not end at the first.
ExplainedSources FaultSources(Fault fault, const Recording& recording, TrialRegistry& registry,
                              const Options& options, const ConfigurationLoader& load) {
  if (fault == Fault::BareSwitch) return {OptionsSource(registry, "boot-args")};
  registry.SupplyUids();
  RunTool(registry, options, KeptOutput::Texts, load);
  ExplainedSources sources;
  for (const auto controller : registry.ControllersWithoutUid()) {
    sources.push_back(LookUpSource(recording, {controller, "UID", ""}));
  }
  return sources;
}

// Whether there is something at the path, or may be where that is not permitted to know.
bool MayExist(const std::string& path) {
  return access(path.c_str(), F_OK) == 0 || errno == EACCES;
}

// Why a run has no configuration. That the payload has none for the board is not an error.
void FindConfigurationError(const Options& options, Explanation& explanation) {
  const auto& board = explanation.identity.boardIdString;
  const auto& path = explanation.configurationPath;
  if (!path) return;
  if (MayExist(*path)) {
    const auto configuration = LoadConfiguration(*path);
    if (!configuration) explanation.configurationError = configuration.Error();
  } else if (!PathExists(*BoardDirectory(board, options.personalitiesDirectory))) {
    explanation.nearBoards = NearBoards(*board, *options.personalitiesDirectory);
  }
}

std::optional<ExplainedPlan> PlanOf(const Explanation& explanation, const Recording& recording,
                                    const Options& options) {
  auto summary = SummaryOfPlan(explanation.run);
  if (!summary) return std::nullopt;
  ExplainedPlan plan = {.summary = *std::move(summary), .images = {}};
  for (const auto& pair : MatchedPairs(explanation.run)) {
    const auto key = static_cast<std::size_t>(pair.key - explanation.run.trace.keys.data());
    const auto entry = pair.key->inventory.sources[pair.controller].Controller();
    const auto controller = LookUpSource(recording, {entry, "", ""});
    const auto path = *ImagePath(pair, explanation.run, options.personalitiesDirectory);
    const auto valueIn = [](Dictionary record) {
      const auto* version = record.Find("Version");
      return version == nullptr ? std::nullopt : std::optional(*version);
    };
    plan.images.push_back(
        {.key = explanation.keys[key].key,
         .personality = LocatedPersonality(explanation.keys[key], pair.personality),
         .number = pair.personality + 1,
         .controller = controller.path,
         .name = controller.name,
         .installed = valueIn(pair.Controller()),
         .version = valueIn(*pair.match),
         .path = path,
         .isMissing = !PathExists(path)});
  }
  return plan;
}

// What the run read and decided.
void ExplainRun(const Recording& recording, Registry& registry, const Options& options,
                const ExplainFilter& filter, const ExplainedTrial& trial,
                Explanation& explanation) {
  const auto& result = explanation.run.result;
  explanation.optionBypassesVersion = options.bypassVersionCheck;
  if (result.switchBypassesVersion) {
    explanation.switches.push_back(WhereSet(recording, VersionSwitch));
  }
  explanation.configurationPath =
      ConfigurationPath(result.identity->boardIdString, options.personalitiesDirectory);
  if (!result.configuration) return FindConfigurationError(options, explanation);
  const auto file = LoadConfiguration(*explanation.configurationPath);
  explanation.keys = ExplainKeys(explanation.run, file ? &*file : nullptr, recording,
                                 BoardRevisionSource(registry), filter, trial);
  explanation.plan = PlanOf(explanation, recording, options);
}

Explanation ExplainOver(TrialRegistry& registry, const Recording& recording, const Options& options,
                        const ExplainFilter& filter, const ExplainedTrial& trial) {
  Explanation explanation = {.end = RunEnd::Abnormal, .identity = ReadBoardIdentity(registry)};
  if (trial.changes != nullptr) explanation.changes = trial.changes->Texts();
  auto run = RunTool(registry, options, KeptOutput::Texts, trial.load);
  explanation.end = EndOf(run.result);
  if (const auto fault = run.result.fault) {
    explanation.run.result.fault = fault;
    explanation.faultSources = FaultSources(*fault, recording, registry, options, trial.load);
    return explanation;
  }
  explanation.run = std::move(run);
  if (explanation.end == RunEnd::Bypassed) {
    explanation.switches.push_back(WhereSet(recording, UpdatesSwitch));
  } else {
    ExplainRun(recording, registry, options, filter, trial, explanation);
  }
  return explanation;
}

bool IsEndedBySwitch(const Explanation& explanation) {
  return explanation.end == RunEnd::Bypassed || explanation.run.result.fault == Fault::BareSwitch;
}

}  // namespace

Explanation Explain(const Recording& recording, const Options& options, const ExplainFilter& filter,
                    const ExplainedTrial& trial) {
  TrialRegistry registry(recording);
  auto explanation = ExplainOver(registry, recording, options, filter, trial);
  if (IsEndedBySwitch(explanation)) {
    TrialRegistry changed(recording);
    changed.HideWhatEndsTheRun();
    explanation.withoutSwitch =
        std::make_unique<Explanation>(ExplainOver(changed, recording, options, filter, trial));
  }
  return explanation;
}

}  // namespace fernwick::lab
