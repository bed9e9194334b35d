#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "driver/run_recorder.h"
#include "lab/support/captured_run.h"
#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "personality/personality_keys.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// A property of the registry that a value comes from, or could have come from.
struct ExplainedSource {
  std::string path;  // of the entry
  std::string name;  // of the entry
  std::string property;
  std::optional<PropertyValue> value;  // what the property holds
  std::string conversion;              // as PropertySource
};

/// What a value comes from. All failures of a controller that look at the same key share one list.
using SharedSources = std::shared_ptr<const std::vector<ExplainedSource>>;

SharedSources Share(std::vector<ExplainedSource> sources);

/// A requirement that a pair fails, with the places of both its sides.
struct ExplainedFailure {
  FailedRequirement requirement;
  std::optional<FilePlace> wantedPlace;
  SharedSources sources;      // null: not looked up; empty: nothing that is there could give it
  bool isUuidUnread = false;  // an earlier port without a UUID kept this one's unread
};

/// A personality and a controller that were held against each other.
struct ExplainedPair {
  std::size_t personality;  // in ExplainedKey::personalities
  PairOutcome outcome;
  std::vector<ExplainedFailure> failures = {};  // the first one decided
};

/// A controller of an inventory, with the pair that each personality makes with it.
struct ExplainedController {
  bool isPort;
  std::string path;
  std::string name;
  std::string thunderboltName;  // of a port, of the Thunderbolt controller above it; may be empty
  HardwareRecord record;
  std::vector<ExplainedPair> pairs;  // in the order of the file
};

/// A controller that is there and that the inventory passes over.
struct ExplainedOmission {
  std::string path;
  std::string name;
  Omission why;
  std::vector<ExplainedSource> sources;
};

/// A key of a personality that its type does not read.
struct UnreadKey {
  std::string key;
  std::optional<FilePlace> place;
  TypeSet readBy;  // other types; none: nothing reads it
};

/// A candidate that stands under a type, whether it is a personality or not.
struct ExplainedPersonality {
  std::optional<FilePlace> place;
  std::optional<PropertyValue> firmware;  // whatever it has as "Firmware"
  std::vector<UnreadKey> unread = {};
};

/// A top-level key of the configuration.
struct ExplainedKey {
  std::string key;
  std::optional<FilePlace> place;
  TypeSet type;   // none: nothing reads it
  bool hasShape;  // its value is of the shape that the type needs
  PropertyValue value;
  std::vector<ExplainedPersonality> personalities = {};
  std::vector<ExplainedController> controllers = {};
  std::vector<ExplainedOmission> omitted = {};
};

/// How the run ends.
enum class RunEnd {
  Planned,
  NothingMatched,
  NoFirmware,       // a match names no image, which ends the run without a plan
  NoDictionary,     // at the top of the configuration
  NoConfiguration,  // for this board, or none that can be read
  Bypassed,
  Abnormal,
};

/// Why a run over a recorded computer ends as it does and matches what it matches.
struct Explanation {
  RunEnd end;
  CapturedRun run = {};  // of an abnormal end nothing
  std::string fault = {};
  std::vector<ExplainedSource> faultSources = {};  // the properties that the fault is about
  BoardIdentity identity = {};
  std::optional<std::string> configurationPath = {};
  std::string configurationFault = {};        // why a configuration that is there cannot be used
  int configurationStatus = LabStatus::Done;  // what the lab says of that
  bool bypassesVersionCheck = false;
  bool optionBypassesVersion = false;
  bool switchBypassesVersion = false;
  std::vector<ExplainedKey> keys = {};
  std::size_t matchCount = 0;
  std::size_t plannedMatchCount = 0;
};

/// A personality and a controller of one key.
struct PairPlace {
  const ExplainedKey* key;
  const ExplainedController* controller;
  const ExplainedPair* pair;
};

/// The pairs that match, in the order of the plan. They live as long as the explanation.
std::vector<PairPlace> MatchedPairs(const Explanation& explanation);

/// Runs the tool over the computer and explains what it decides.
Explanation Explain(const Recording& recording, const std::string& payload, bool bypassVersion);

}  // namespace fernwick::lab
