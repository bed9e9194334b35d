#include "lab/support/tool_run.h"

#include "personality/personality.h"
#include "platform/file_system.h"

namespace fernwick::lab {

Options ToolOptions(const std::string& payload, bool bypassVersion) {
  std::vector<std::string> words = {"fernwick", "-p", payload};
  if (bypassVersion) words.emplace_back("--bypassVersion");
  std::vector<char*> arguments;
  for (auto& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return ParseOptions(static_cast<int>(words.size()), arguments.data());
}

ToolRun RunTool(const Recording& recording, const Options& options, KeptOutput kept,
                const ConfigurationLoader& load) {
  RecordedRegistry registry(recording);
  return RunTool(registry, options, kept, load);
}

ToolRun RunTool(Registry& registry, const Options& options, KeptOutput kept,
                const ConfigurationLoader& load) {
  DiagnosticConsole console(kept == KeptOutput::Texts);
  RunTrace trace;
  auto result = Run(options, registry, console, &trace, load);
  return {std::move(result), console.TakeOutput(), console.TakeError(), console.TakeCounts(),
          std::move(trace)};
}

bool HasBoardDirectory(const ToolRun& run, const Options& options) {
  const auto directory =
      BoardDirectory(run.result.identity->boardIdString, options.personalitiesDirectory);
  return directory && PathExists(*directory);
}

std::optional<LabError> UnreadableConfiguration(const ToolRun& run, const Options& options) {
  const auto& error = run.result.configurationError;
  if (!error || error->systemError == 0 || IsAbsence(error->systemError)) return std::nullopt;
  const auto path =
      ConfigurationPath(run.result.identity->boardIdString, options.personalitiesDirectory);
  return LabError{{*path + ": " + error->message}, UnreadableStatus(*error)};
}

std::optional<Error> MalformedConfiguration(const ToolRun& run) {
  const auto& error = run.result.configurationError;
  return error && error->systemError == 0 ? error : std::nullopt;
}

RequirementContext ContextOf(const RunResult& result, const KeyTrace& key, std::size_t controller) {
  return {key.inventory.records[controller], result.identity->boardRevision,
          result.bypassesVersionCheck};
}

std::vector<TestedCandidates> CandidatesOf(const ToolRun& run, Arena& copies) {
  const auto entries = run.result.configuration->value.AsDictionary()->Entries();
  std::vector<TestedCandidates> tested;
  for (std::size_t i = 0; i < run.trace.keys.size(); ++i) {
    const auto& key = run.trace.keys[i];
    if (!key.HasPairs()) continue;
    const auto candidates = *PersonalitiesOf(key.key, entries[i].value);
    tested.push_back({&key, WithoutUnreadKeys(candidates, copies)});
  }
  return tested;
}

std::vector<MatchedPair> MatchedPairs(const ToolRun& run) {
  std::vector<MatchedPair> matched;
  if (run.result.fault) return matched;
  for (const auto& key : run.trace.keys) {
    for (std::size_t i = 0; i < key.matched.size(); ++i) {
      if (key.matched[i] == KeyTrace::NoMatch) continue;
      matched.push_back({&key, i, key.matched[i], &run.result.matches[matched.size()]});
    }
  }
  return matched;
}

}  // namespace fernwick::lab
