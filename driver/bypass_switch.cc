#include "driver/bypass_switch.h"

#include "platform/diagnostics.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

// Takes the piece before the next `separator` off the front. False when none is left.
bool TakePiece(std::optional<std::string_view>& text, char separator, std::string_view& piece) {
  if (!text) return false;
  const std::size_t end = text->find(separator);
  piece = text->substr(0, end);
  text = end == std::string_view::npos ? std::nullopt : std::optional(text->substr(end + 1));
  return true;
}

bool IsSetting(std::string_view value) {
  return value != "0";
}

// A bare switch name has no value to read. That it ends the process is how a malformed switch is
// treated: no default may be made up for it.
bool SetsSwitch(std::string_view token, std::string_view name) {
  std::optional<std::string_view> rest = token;
  std::string_view key;
  TakePiece(rest, '=', key);
  if (key != name) return false;
  std::string_view value;
  if (!TakePiece(rest, '=', value)) EndAbnormally(BareSwitchFault);
  return IsSetting(value);
}

// Looks at every token, also behind one that has set the switch: a later 0 does not clear it, but a
// later bare name is still a fault.
bool IsSetInBootArguments(std::optional<std::string_view> bootArguments, std::string_view name) {
  bool isSet = false;
  std::string_view token;
  while (TakePiece(bootArguments, ' ', token)) {
    if (SetsSwitch(token, name)) isSet = true;
  }
  return isSet;
}

bool IsSetInNvram(const std::optional<PropertyValue>& variable) {
  if (!variable) return false;
  if (const auto text = variable->AsString()) return IsSetting(*text);
  const auto bytes = variable->AsData();
  return bytes && FindInvalidUtf8(*bytes) == NoPlace && IsSetting(*bytes);
}

}  // namespace

bool ReadBypassSwitch(Registry& registry, std::string_view name) {
  const RegistryEntry options = registry.LookupEntryByPath(BootOptionsPath);
  const auto bootArguments = registry.GetProperty(options, "boot-args");
  const bool isSet =
      IsSetInBootArguments(bootArguments ? bootArguments->AsString() : std::nullopt, name) ||
      IsSetInNvram(registry.GetProperty(options, name));
  registry.ReleaseEntry(options);
  return isSet;
}

}  // namespace fernwick
