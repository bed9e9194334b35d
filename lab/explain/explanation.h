#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/explain/failed_requirement.h"
#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "registry/key_schema.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// A property of the registry that a value comes from, or could have come from.
struct ExplainedSource {
  std::string path;       // of the entry
  std::string_view name;  // of the entry
  std::string_view property;
  std::optional<PropertyValue> value;  // of the property
  std::string_view conversion;         // as PropertySource
};

using ExplainedSources = std::vector<ExplainedSource>;

/// A requirement that a pair fails, with the location of the personality's value.
struct ExplainedFailure {
  FailedRequirement failed;
  std::optional<FileLocation> wantedLocation;
};

/// A personality and a controller that were tested against each other.
struct ExplainedPair {
  std::size_t personality;  // in ExplainedKey::personalities
  PairOutcome outcome;
  std::vector<ExplainedFailure> failures = {};  // the first one decided
};

/// A controller of an inventory, with the result of each personality on it.
struct ExplainedController {
  bool isPort;
  std::string path;
  std::string_view name;
  std::string_view thunderboltName;  // of a port, of the Thunderbolt controller above it, if any
  Dictionary record;
  bool isUuidUnread;                 // an earlier port has no UUID, after which none is read
  std::vector<ExplainedPair> pairs;  // in the order of the file

  // By the hardware key of each failure in `pairs`, the properties that the value is read from; an
  // empty list: no entry of the registry could have it.
  std::map<std::string_view, ExplainedSources> sources;
};

/// Whether the requirement fails because the port's UUID was not read.
inline bool IsUuidUnread(const FailedRequirement& failed, const ExplainedController& controller) {
  return controller.isUuidUnread && failed.requirement->hardwareKey == "Port UUID";
}

/// A controller of the registry that the inventory does not list.
struct ExplainedSkip {
  std::string path;
  std::string_view name;
  SkipReason reason;
  ExplainedSources sources;
};

/// A key of a personality that its type does not read.
struct UnreadKey {
  std::string_view key;
  std::optional<FileLocation> location;
  TypeSet readBy;  // other types; Types::None: no type does
};

/// A candidate under a type, a personality or not.
struct ExplainedPersonality {
  std::optional<FileLocation> location;
  std::optional<PropertyValue> firmware;  // its "Firmware", of any kind
  std::vector<UnreadKey> unread = {};
};

/// A top-level key of the configuration.
struct ExplainedKey {
  std::string_view key;
  std::optional<FileLocation> location;
  TypeSet type;   // Types::None: the key is not read
  bool hasShape;  // its value is of the shape that the type needs
  PropertyValue value;
  std::vector<ExplainedPersonality> personalities = {};
  std::vector<ExplainedController> controllers = {};
  std::vector<ExplainedSkip> skipped = {};
};

/// How the run ends.
enum class RunEnd {
  Planned,
  NothingMatched,
  NoFirmware,       // a match names no image, which ends the run without a plan
  NoDictionary,     // at the top of the configuration
  NoConfiguration,  // there is none for this board, or it cannot be read
  Bypassed,
  Abnormal,
};

/// Why a run over a recorded computer ends as it does and matches what it matches. It views the
/// recording, which must outlive it, and its own run; it can be moved.
struct Explanation {
  RunEnd end;
  ToolRun run = {};                    // after a fault only the fault
  ExplainedSources faultSources = {};  // the properties that the fault is about
  BoardIdentity identity = {};
  std::optional<std::string> configurationPath = {};
  std::optional<LabError> configurationError = {};  // why one that exists cannot be used
  bool optionBypassesVersion = false;
  std::vector<ExplainedKey> keys = {};
};

/// Runs the tool over the computer and explains what it decides.
Explanation Explain(const Recording& recording, const Options& options);

}  // namespace fernwick::lab
