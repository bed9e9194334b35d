#include "personality/configuration.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/file_system.h"
#include "platform/platform_log.h"

namespace fernwick {
namespace {

Error FailReading(Console& console, const Error& error, Serialisation serialisation) {
  const auto text = Describe(error);
  PlatformLog(console, "Error reading plist: %@, format: %lu",
              {std::string_view(text), static_cast<unsigned long>(serialisation)});
  return error;
}

// Why there is no file: `error` is an errno.
Error NotFound(int error) {
  return {.message = std::strerror(error), .systemError = error};
}

}  // namespace

std::optional<std::string> BoardDirectory(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory) {
  if (!boardIdString || !personalitiesDirectory) return std::nullopt;
  return AppendPathComponent(*personalitiesDirectory, *boardIdString);
}

std::optional<std::string> ConfigurationPath(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory) {
  const auto directory = BoardDirectory(boardIdString, personalitiesDirectory);
  if (!directory) return std::nullopt;
  return AppendPathComponent(*directory, "Config.plist");
}

Result<PropertyList> LoadPersonalityConfiguration(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console) {
  const auto directory = BoardDirectory(boardIdString, personalitiesDirectory);
  if (const int error = directory ? PathError(*directory) : ENOENT) {
    PlatformLog(console, "Error reading plist: No files to support boardID: %@", {boardIdString});
    return NotFound(error);
  }
  const auto path = *ConfigurationPath(boardIdString, personalitiesDirectory);
  if (const int error = PathError(path)) {
    PlatformLog(console, "Error reading plist: No config file for this project");
    return NotFound(error);
  }
  auto file = ReadWholeFile(path);
  if (!file) return FailReading(console, file.Error(), Serialisation::None);
  auto reading = ReadPropertyList(*std::move(file));
  if (!reading.list) return FailReading(console, reading.list.Error(), reading.serialisation);
  return *std::move(reading.list);
}

}  // namespace fernwick
