#include "personality/configuration.h"

#include <utility>

#include "platform/file_system.h"
#include "platform/platform_log.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

std::nullopt_t FailReading(const std::string& error, Serialisation serialisation) {
  PlatformLog("Error reading plist: %@, format: %lu",
              {std::string_view(error), static_cast<unsigned long>(serialisation)});
  return std::nullopt;
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

std::optional<PropertyValue> LoadPersonalityConfiguration(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory) {
  const auto directory = BoardDirectory(boardIdString, personalitiesDirectory);
  if (!directory || !PathExists(*directory)) {
    PlatformLog("Error reading plist: No files to support boardID: %@", {boardIdString});
    return std::nullopt;
  }
  const auto path = *ConfigurationPath(boardIdString, personalitiesDirectory);
  if (!PathExists(path)) {
    PlatformLog("Error reading plist: No config file for this project");
    return std::nullopt;
  }
  auto file = ReadWholeFile(path);
  if (!file.bytes) return FailReading(file.error, Serialisation::None);
  auto reading = ReadPropertyList(*std::move(file.bytes));
  if (!reading.value) return FailReading(reading.error, reading.serialisation);
  return std::move(reading.value);
}

}  // namespace fernwick
