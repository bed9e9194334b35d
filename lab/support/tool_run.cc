#include "lab/support/tool_run.h"

#include <algorithm>

namespace fernwick::lab {

Options ToolOptions(const std::string& payload, bool bypassVersion) {
  std::vector<std::string> words = {"fernwick", "-p", payload};
  if (bypassVersion) words.emplace_back("--bypassVersion");
  std::vector<char*> arguments;
  for (auto& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return ParseOptions(static_cast<int>(words.size()), arguments.data());
}

ToolRun RunTool(const Recording& recording, const Options& options) {
  RecordedRegistry registry(recording);
  return RunTool(registry, options);
}

ToolRun RunTool(Registry& registry, const Options& options) {
  StringConsole console;
  RunTrace trace;
  auto result = Run(options, registry, console, &trace);
  return {std::move(result), console.Output(), console.Error(), std::move(trace)};
}

std::vector<MatchedPair> MatchedPairs(const ToolRun& run) {
  std::vector<MatchedPair> matched;
  if (run.result.fault) return matched;
  for (const auto& key : run.trace.keys) {
    for (std::size_t i = 0; i < key.outcomes.size(); ++i) {
      const auto first = std::ranges::find(key.outcomes[i], PairOutcome::Matched);
      if (first == key.outcomes[i].end()) continue;
      const auto personality = static_cast<std::size_t>(first - key.outcomes[i].begin());
      matched.push_back({&key, i, personality, &run.result.matches[matched.size()]});
    }
  }
  return matched;
}

}  // namespace fernwick::lab
