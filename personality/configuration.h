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

/// Reads "Config.plist" of the board's directory, in any serialisation. Returns the property list,
/// whose value may be of any kind. Otherwise logs one line and returns why there is none. Where the
/// directory or the file does not exist or cannot be read, `systemError` is the errno; where the
/// file is not well formed, it is empty.
Result<PropertyList> LoadPersonalityConfiguration(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console);

/// Where a run gets the configuration from: a function with the arguments and the results of
/// `LoadPersonalityConfiguration`, which is the tool's own.
using ConfigurationLoader = std::function<Result<PropertyList>(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console)>;

}  // namespace fernwick
