#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "lab/explain/failed_requirement.h"
#include "lab/support/tool_run.h"
#include "lab/what_if/changed_configurations.h"
#include "lab/what_if/changes.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// A requirement that keeps a controller below a version, with the origin of the personality's
/// value.
struct StuckRequirement {
  FailedRequirement failed;
  std::optional<ValueOrigin> origin;
};

/// A controller that stays below the newest version that the payload has for it. The values view
/// the run.
struct StuckController {
  RegistryEntry controller;  // the port that was compared, or the Thunderbolt controller
  std::string_view type;
  std::size_t personality;                     // of that version: its index
  PropertyValue offered;                       // the version; a number
  std::optional<PropertyValue> installed;      // the version of the controller that gets the image
  std::vector<StuckRequirement> requirements;  // all that fail
};

/// The controllers that get no newer version although the configuration has one for them, in a
/// personality
///
///   - whose keys select the controller: only requirements on versions, engineering firmware or the
///     board's revision fail,
///   - that some controller could match,
///   - and that is for the board's revision, unless no personality of its type is.
///
/// The installed version is that of the controller that gets the image: for a port below a
/// Thunderbolt controller its own. Each controller is listed once, with the newest version, and of
/// several personalities with that version the nearest to a match. The origins of the values are
/// not filled in. REQUIRES: the run over the recording matched nothing, with a configuration that
/// is a dictionary.
std::vector<StuckController> FindStuckControllers(const ToolRun& run, const Recording& recording);

/// Adds the origins: the option of a change, or a location of the file, which is null when it
/// cannot be read. `board` is that of the configuration.
void Locate(StuckController& stuck, std::string_view board, const Changes& changes,
            const ConfigurationFile* file);

}  // namespace fernwick::lab
