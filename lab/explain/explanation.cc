#include "lab/explain/explanation.h"

#include <utility>

#include "driver/bypass_switch.h"
#include "lab/explain/explained_keys.h"
#include "lab/support/abnormal_end.h"
#include "personality/configuration.h"
#include "platform/file_system.h"
#include "registry/board_identity.h"
#include "registry/inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

RunEnd EndOf(const RunRecorder& recorder) {
  if (recorder.bypassesUpdates) return RunEnd::Bypassed;
  const auto& configuration = recorder.matching.configuration;
  if (!configuration) return RunEnd::NoConfiguration;
  if (configuration->AsDictionary() == nullptr) return RunEnd::NoDictionary;
  if (recorder.matches.empty()) return RunEnd::NothingMatched;
  const bool isWhole = recorder.plannedMatches == recorder.matches.size();
  return isWhole ? RunEnd::Planned : RunEnd::NoFirmware;
}

// The boot arguments, which hold a bare switch name.
std::vector<ExplainedSource> BootArguments(Registry& registry) {
  const auto options = registry.LookupEntryByPath(BootOptionsPath);
  return {{.path = std::string(BootOptionsPath),
           .name = "options",
           .property = "boot-args",
           .value = registry.GetProperty(options, "boot-args"),
           .conversion = {}}};
}

// Found at or below the root of the device tree; without it the revision is 0.
ExplainedSource BoardRevisionSource(Registry& registry) {
  const std::string path = "IODeviceTree:/";
  const auto root = registry.LookupEntryByPath(path);
  const auto value = registry.SearchProperty(root, "IODeviceTree", "board-rev", SearchRecursively);
  const auto bytes = value ? value->AsData() : std::nullopt;
  return {.path = path,
          .name = "the device tree",
          .property = "board-rev",
          .value = value,
          .conversion = bytes && !bytes->empty() ? "its first byte" : "counts as 0"};
}

std::vector<ExplainedSource> ControllersWithoutUid(const Recording& recording, Registry& registry) {
  std::vector<ExplainedSource> sources;
  ForEachService(registry, ThunderboltControllerClass, [&](RegistryEntry controller) {
    if (registry.GetProperty(controller, "UID")) return;
    sources.push_back(LookUpSource(recording, {controller, "UID", ""}));
  });
  return sources;
}

// What a fault that ends a run abnormally is about.
std::vector<ExplainedSource> FaultSources(const std::string& fault, const Recording& recording,
                                          Registry& registry) {
  if (fault == BareSwitchFault) return BootArguments(registry);
  if (fault == MissingUidFault) return ControllersWithoutUid(recording, registry);
  return {};
}

// Of a run that has no configuration: a board for which there is none is nothing wrong.
void FindConfigurationFault(Explanation& explanation) {
  const auto& path = explanation.configurationPath;
  if (!path || !PathExists(*path)) return;
  auto loading = LoadConfiguration(*path);
  explanation.configurationFault = std::move(loading.error);
  explanation.configurationStatus = loading.status;
}

void ExplainRun(const Recording& recording, Registry& registry, const RunRecorder& recorder,
                Explanation& explanation) {
  explanation.end = EndOf(recorder);
  explanation.bypassesVersionCheck = recorder.bypassesVersionCheck;
  explanation.switchBypassesVersion = recorder.switchBypassesVersion;
  explanation.matchCount = recorder.matches.size();
  explanation.plannedMatchCount = recorder.plannedMatches;
  if (!recorder.options || !recorder.identity) return;
  explanation.optionBypassesVersion = recorder.options->bypassVersionCheck;
  explanation.configurationPath =
      ConfigurationPath(recorder.identity->boardIdString, recorder.options->personalitiesDirectory);
  if (!recorder.matching.configuration) return FindConfigurationFault(explanation);
  const auto loading = LoadConfiguration(*explanation.configurationPath);
  explanation.keys = ExplainKeys(recorder.matching, loading.file ? &*loading.file : nullptr,
                                 recording, BoardRevisionSource(registry));
}

}  // namespace

SharedSources Share(std::vector<ExplainedSource> sources) {
  return std::make_shared<const std::vector<ExplainedSource>>(std::move(sources));
}

std::vector<PairPlace> MatchedPairs(const Explanation& explanation) {
  std::vector<PairPlace> matched;
  for (const auto& key : explanation.keys) {
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        if (pair.outcome == PairOutcome::Matched) matched.push_back({&key, &controller, &pair});
      }
    }
  }
  return matched;
}

Explanation Explain(const Recording& recording, const std::string& payload, bool bypassVersion) {
  std::vector<std::string> arguments = {"-p", payload};
  if (bypassVersion) arguments.emplace_back("--bypassVersion");
  RecordedRegistry registry(recording);
  Explanation explanation = {.end = RunEnd::Abnormal, .identity = ReadBoardIdentity(registry)};
  // In a process of its own first, so that a run that ends abnormally can be told of.
  const auto fault = FaultThatEnds([&] { RunCaptured(registry, arguments, nullptr); });
  if (fault) {
    explanation.fault = *fault;
    explanation.faultSources = FaultSources(*fault, recording, registry);
    return explanation;
  }
  RunRecorder recorder;
  explanation.run = RunCaptured(registry, arguments, &recorder);
  ExplainRun(recording, registry, recorder, explanation);
  return explanation;
}

}  // namespace fernwick::lab
