#include "personality/configuration.h"

#include <utility>

#include "platform/file_system.h"
#include "platform/platform_log.h"

namespace fernwick {
namespace {

std::nullopt_t FailReading(Console& console, const Error& error, Serialisation serialisation) {
  const auto text = Describe(error);
  PlatformLog(console, "Error reading plist: %@, format: %lu",
              {std::string_view(text), static_cast<unsigned long>(serialisation)});
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

std::optional<PropertyList> LoadPersonalityConfiguration(
    const std::optional<std::string>& boardIdString,
    const std::optional<std::string>& personalitiesDirectory, Console& console) {
  const auto directory = BoardDirectory(boardIdString, personalitiesDirectory);
  if (!directory || !PathExists(*directory)) {
    PlatformLog(console, "Error reading plist: No files to support boardID: %@", {boardIdString});
    return std::nullopt;
  }
  const auto path = *ConfigurationPath(boardIdString, personalitiesDirectory);
  if (!PathExists(path)) {
    PlatformLog(console, "Error reading plist: No config file for this project");
    return std::nullopt;
  }
  auto file = ReadWholeFile(path);
  if (!file) return FailReading(console, file.Error(), Serialisation::None);
  auto reading = ReadPropertyList(*std::move(file));
  if (!reading.list) return FailReading(console, reading.list.Error(), reading.serialisation);
  return *std::move(reading.list);
}

}  // namespace fernwick
