#include "driver/bypass_switch.h"

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

// Removes the part before the next `separator` from the front of the text, the separator too, and
// returns it. The text is empty (nullopt) after its last part. REQUIRES: there is text.
std::string_view SplitFront(std::optional<std::string_view>& text, char separator) {
  const std::size_t end = text->find(separator);
  const auto part = text->substr(0, end);
  text = end == std::string_view::npos ? std::nullopt : std::optional(text->substr(end + 1));
  return part;
}

bool SetsIt(std::string_view value) {
  return value != "0";
}

// A bare switch name has no value to read. A malformed switch ends the run:
// there is no safe default for it.
Result<bool, Fault> SetsSwitch(std::string_view token, std::string_view name) {
  std::optional<std::string_view> rest = token;
  if (SplitFront(rest, '=') != name) return false;
  if (!rest) return Fault::BareSwitch;
  return SetsIt(SplitFront(rest, '='));
}

// Reads every token, also after one that has set the switch: a later 0 does not clear it, but a
// later bare name is still a fault.
Result<bool, Fault> IsSetInBootArguments(std::optional<std::string_view> bootArguments,
                                         std::string_view name) {
  bool isSet = false;
  while (bootArguments) {
    const auto setsIt = SetsSwitch(SplitFront(bootArguments, ' '), name);
    if (!setsIt) return setsIt;
    isSet = isSet || *setsIt;
  }
  return isSet;
}

bool IsSetInNvram(const std::optional<PropertyValue>& variable) {
  if (!variable) return false;
  if (const auto text = variable->AsString()) return SetsIt(*text);
  const auto bytes = variable->AsData();
  return bytes && FindInvalidUtf8(*bytes) == npos && SetsIt(*bytes);
}

}  // namespace

Result<bool, Fault> ReadBypassSwitch(Registry& registry, std::string_view name) {
  const RegistryEntry options = registry.LookupEntryByPath(BootOptionsPath);
  const auto bootArguments = registry.GetProperty(options, "boot-args");
  auto isSet = IsSetInBootArguments(bootArguments ? bootArguments->AsString() : std::nullopt, name);
  if (isSet && !*isSet) isSet = IsSetInNvram(registry.GetProperty(options, name));
  registry.ReleaseEntry(options);
  return isSet;
}

}  // namespace fernwick
