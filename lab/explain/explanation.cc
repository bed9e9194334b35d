#include "lab/explain/explanation.h"

#include <utility>

#include "driver/bypass_switch.h"
#include "lab/explain/explained_keys.h"
#include "personality/configuration.h"
#include "platform/file_system.h"
#include "registry/board_identity.h"
#include "registry/inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

RunEnd EndOf(const RunResult& result) {
  if (result.bypassesUpdates) return RunEnd::Bypassed;
  if (!result.configuration) return RunEnd::NoConfiguration;
  if (!result.configuration->value.AsDictionary()) return RunEnd::NoDictionary;
  if (result.matches.empty()) return RunEnd::NothingMatched;
  const bool isWhole = result.plannedMatches == result.matches.size();
  return isWhole ? RunEnd::Planned : RunEnd::NoFirmware;
}

// The boot arguments, one of which is a bare switch name.
ExplainedSource BootArguments(Registry& registry) {
  const auto options = registry.LookupEntryByPath(BootOptionsPath);
  return {.path = std::string(BootOptionsPath),
          .name = "options",
          .property = "boot-args",
          .value = registry.GetProperty(options, "boot-args"),
          .conversion = {}};
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

ExplainedSources ControllersWithoutUid(const Recording& recording, Registry& registry) {
  ExplainedSources sources;
  ForEachService(registry, ThunderboltControllerClass,
                 [&](RegistryEntry controller) -> std::optional<Fault> {
                   if (!registry.GetProperty(controller, "UID")) {
                     sources.push_back(LookUpSource(recording, {controller, "UID", ""}));
                   }
                   return std::nullopt;
                 });
  return sources;
}

// What a fault that ends a run abnormally is about.
ExplainedSources FaultSources(Fault fault, const Recording& recording, Registry& registry) {
  if (fault == Fault::BareSwitch) return {BootArguments(registry)};
  return ControllersWithoutUid(recording, registry);
}

// Of a run without a configuration. That a board has none is not an error.
void FindConfigurationError(Explanation& explanation) {
  const auto& path = explanation.configurationPath;
  if (!path || !PathExists(*path)) return;
  const auto configuration = LoadConfiguration(*path);
  if (!configuration) explanation.configurationError = configuration.Error();
}

void ExplainRun(const Recording& recording, Registry& registry, const Options& options,
                Explanation& explanation) {
  const auto& result = explanation.run.result;
  explanation.end = EndOf(result);
  if (!result.identity) return;
  explanation.optionBypassesVersion = options.bypassVersionCheck;
  explanation.configurationPath =
      ConfigurationPath(result.identity->boardIdString, options.personalitiesDirectory);
  if (!result.configuration) return FindConfigurationError(explanation);
  const auto file = LoadConfiguration(*explanation.configurationPath);
  explanation.keys = ExplainKeys(explanation.run, file ? &*file : nullptr, recording,
                                 BoardRevisionSource(registry));
}

}  // namespace

Explanation Explain(const Recording& recording, const Options& options) {
  RecordedRegistry registry(recording);
  Explanation explanation = {.end = RunEnd::Abnormal, .identity = ReadBoardIdentity(registry)};
  auto run = RunTool(recording, options);
  if (const auto fault = run.result.fault) {
    explanation.run.result.fault = fault;
    explanation.faultSources = FaultSources(*fault, recording, registry);
  } else {
    explanation.run = std::move(run);
    ExplainRun(recording, registry, options, explanation);
  }
  return explanation;
}

}  // namespace fernwick::lab
