#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "driver/options.h"
#include "driver/run.h"
#include "lab/support/diagnostics.h"
#include "lab/support/messages.h"
#include "personality/configuration.h"
#include "personality/requirements.h"
#include "personality/run_trace.h"
#include "registry/recorded_registry.h"
#include "value/arena.h"

namespace fernwick::lab {

/// A run of the tool: its result, all that it printed and why it decided as it did. It views the
/// recording, which must outlive it, and owns the configuration; views of the run stay valid when
/// it is moved.
struct ToolRun {
  RunResult result;
  std::string standardOutput = {};  // after a fault what was flushed before it
  std::string standardError = {};
  std::vector<DiagnosticCount> diagnostics = {};  // of standard error, each text once
  RunTrace trace = {};
};

/// What a run stores of what the tool prints. Counts alone do not grow with the number of rejected
/// pairs.
enum class KeptOutput { Texts, Counts };

/// The tool's options for "-p PAYLOAD" and, if wanted, "--bypassVersion". To be called while there
/// is one thread.
Options ToolOptions(const std::string& payload, bool bypassVersion);

/// Runs the tool over the recorded computer. Nothing reaches this process's own streams. Several
/// threads may run it at once, also over one recording. `load` returns the configuration, by
/// default that of the payload.
ToolRun RunTool(const Recording& recording, const Options& options,
                KeptOutput kept = KeptOutput::Texts,
                const ConfigurationLoader& load = LoadPersonalityConfiguration);

/// The same over another registry, whose values must outlive the run.
ToolRun RunTool(Registry& registry, const Options& options, KeptOutput kept = KeptOutput::Texts,
                const ConfigurationLoader& load = LoadPersonalityConfiguration);

/// Whether the payload has the directory of the run's board.
bool HasBoardDirectory(const ToolRun& run, const Options& options);

/// Why a run says nothing about the computer: its configuration could not be looked for or read,
/// for lack of permission, memory or descriptors. Empty otherwise: an absent or malformed
/// configuration is a result. The message begins with the path.
std::optional<LabError> UnreadableConfiguration(const ToolRun& run, const Options& options);

/// Why the run has no configuration though there is one: what is wrong in it, and where. Empty
/// otherwise.
std::optional<Error> MalformedConfiguration(const ToolRun& run);

/// What a run tests the requirements of a controller's personalities against. `controller` is its
/// index in the inventory of the key; the record is viewed. REQUIRES: the run has a board.
RequirementContext ContextOf(const RunResult& result, const KeyTrace& key, std::size_t controller);

/// The candidates of a top-level key whose pairs a run tested.
struct TestedCandidates {
  const KeyTrace* key;  // points into the ToolRun
  Array candidates;     // as WithoutUnreadKeys returns them
};

/// Those of each key that has pairs, in the order of the file. They view the run's configuration
/// and `copies`. REQUIRES: the configuration is a dictionary.
std::vector<TestedCandidates> CandidatesOf(const ToolRun& run, Arena& copies);

/// A personality and the controller that it matched. Points into the ToolRun.
struct MatchedPair {
  const KeyTrace* key;
  std::size_t controller;   // index in the key's inventory
  std::size_t personality;  // index in the array; 0 where there is a single one
  const MatchRecord* match;

  const HardwareRecord& Controller() const { return key->inventory.records[controller]; }
};

/// The pairs of a run that matched, in the order of the plan. Empty after a fault.
std::vector<MatchedPair> MatchedPairs(const ToolRun& run);

}  // namespace fernwick::lab
