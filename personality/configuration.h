#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/console.h"
#include "value/property_list_reader.h"

namespace fernwick {

/// The directory of a board's images and configuration: the `PersonalitiesDirectory` with the board
/// identifier string as a path component. Absent when either is.
std::optional<std::string> BoardDirectory(const std::optional<std::string>& boardIdString,
                                          const std::optional<std::string>& personalitiesDirectory);

/// The board's configuration, "Config.plist" in that directory. Absent when the directory is.
std::optional<std::string> ConfigurationPath(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory);

/// Reads "Config.plist" of the board's directory, in whatever serialisation it is. Returns the
/// property list, with a value of whatever kind, or after one line in the system log why there is
/// none: there is no such directory, no such file, or it cannot be read, each with an errno as its
/// `systemError`, or it is not well formed, without one.
Result<PropertyList> LoadPersonalityConfiguration(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console);

/// Where a run gets the configuration from: a function of the arguments and the results of
/// `LoadPersonalityConfiguration`, which is the tool's own.
using ConfigurationLoader = std::function<Result<PropertyList>(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console)>;

}  // namespace fernwick
