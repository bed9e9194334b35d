#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/explain/failed_requirement.h"
#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "lab/support/plan_summary.h"
#include "lab/support/tool_run.h"
#include "lab/what_if/changes.h"
#include "personality/configuration.h"
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
  std::optional<ValueOrigin> wantedLocation;
};

/// A personality and a controller of its kind. Of a rejected pair the first failure decided. One
/// that was not reached has those that would have rejected it; a match those that would without the
/// bypass of the version check.
struct ExplainedPair {
  std::size_t personality;  // in ExplainedKey::personalities
  PairOutcome outcome;
  Distance distance = {};
  std::vector<ExplainedFailure> failures = {};
};

/// A controller of an inventory, with the result of each personality on it.
struct ExplainedController {
  std::size_t number;  // in the inventory, from 1
  bool isPort;
  std::string path;
  std::string_view name;
  std::string_view thunderboltName;  // of a port, of the Thunderbolt controller above it, if any
  Dictionary record;
  bool isUuidUnread;                 // an earlier port has no UUID, after which none is read
  std::vector<ExplainedPair> pairs;  // the selected ones, in the order of the file
  std::size_t otherPairs = 0;        // the number of those that are not selected

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
  std::optional<ValueOrigin> location;
  TypeSet readBy;  // other types; Types::None: no type does
};

/// A candidate under a type, a personality or not.
struct ExplainedPersonality {
  std::optional<FileLocation> location;
  bool isDictionary = false;
  std::optional<PropertyValue> firmware = {};  // its "Firmware", of any kind
  std::vector<UnreadKey> unread = {};
};

/// A top-level key of the configuration.
struct ExplainedKey {
  std::string_view key;
  std::optional<FileLocation> location;
  TypeSet type;           // Types::None: the key is not read
  bool hasExpectedShape;  // its value is of the shape that the type needs
  bool isSelected;
  PropertyValue value;
  std::vector<ExplainedPersonality> personalities = {};
  std::vector<ExplainedController> controllers = {};  // the selected ones
  std::vector<ExplainedSkip> skipped = {};            // the selected ones
  std::size_t controllerCount = 0;                    // of the inventory
};

/// An image of the plan.
struct PlannedImage {
  std::string_view key;     // of the configuration
  std::string personality;  // "personality 2 at 50:3"
  std::size_t number;       // of the personality, from 1
  std::string controller;   // the path of its entry
  std::string_view name;    // of the entry
  std::optional<PropertyValue> installed = {};
  std::optional<PropertyValue> version = {};  // of the image
  std::string path;
  bool isMissing;  // the payload has no such file
};

/// What the run plans.
struct ExplainedPlan {
  PlanSummary summary;
  std::vector<PlannedImage> images;  // in the order of the plan
};

/// A switch that is set, and where.
struct ActiveSwitch {
  std::string_view name;
  bool isBootArgument;  // otherwise an NVRAM variable
  ExplainedSource source;
};

/// What of an explanation is wanted.
struct ExplainFilter {
  TypeSet types = Types::All;               // the keys of other types, and of none, are left out
  std::string controller = {};              // the name of an entry or its path; empty: all
  std::optional<std::size_t> nearest = {};  // this many pairs of each controller; empty: all, as
                                            // long as they are not more than MaxPairs
};

/// How many pairs are explained when no number is wanted, at least one of each controller.
inline constexpr std::size_t MaxPairs = 10'000;

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
  ToolRun run = {};                       // after a fault only the fault
  ExplainedSources faultSources = {};     // the properties that the fault is about
  std::vector<std::string> changes = {};  // what was changed before: "--board-revision 3"
  BoardIdentity identity = {};
  std::vector<ActiveSwitch> switches = {};  // the bypass switches that the run reads as set
  std::optional<std::string> configurationPath = {};
  std::optional<LabError> configurationError = {};  // why one that exists cannot be used
  std::vector<std::string> nearBoards = {};         // of a board that the payload does not have
  bool optionBypassesVersion = false;
  std::optional<ExplainedPlan> plan = {};
  std::vector<ExplainedKey> keys = {};
  std::unique_ptr<Explanation> withoutSwitch = {};  // where a switch ends the run: what it would do
                                                    // otherwise
};

/// Changes of the computer and of the payload that are applied before the run.
struct ExplainedTrial {
  const Changes* changes = nullptr;  // of which `load` applies those of personalities; null: none
  ConfigurationLoader load = LoadPersonalityConfiguration;

  bool SetsKey(std::string_view type, std::size_t personality, std::string_view key) const {
    return changes != nullptr && changes->SetsKey(type, personality + 1, key);
  }
};

/// Runs the tool over the computer and explains what it decides.
Explanation Explain(const Recording& recording, const Options& options,
                    const ExplainFilter& filter = {}, const ExplainedTrial& trial = {});

}  // namespace fernwick::lab
