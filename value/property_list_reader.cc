#include "value/property_list_reader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "value/binary/layout.h"
#include "value/binary/reader.h"
#include "value/text/reader.h"
#include "value/unicode/ascii.h"
#include "value/unicode/source_text.h"
#include "value/xml/reader.h"

namespace fernwick {
namespace {

constexpr std::string_view XmlOpenings[] = {"<?xml", "<!DOCTYPE", "<!--", "<plist"};

constexpr std::string_view ElementNames[] = {
    "array", "data", "date", "dict", "false", "integer", "key", "real", "string", "true",
};

bool StartsWithElement(std::string_view text, std::string_view name) {
  if (!text.starts_with('<') || !text.substr(1).starts_with(name)) return false;
  const auto rest = text.substr(1 + name.size());
  return rest.empty() || IsXmlWhiteSpace(rest.front()) || rest.starts_with('>') ||
         rest.starts_with('/');
}

bool LooksLikeXml(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r"), text.size()));
  return std::ranges::any_of(XmlOpenings, [&](auto o) { return text.starts_with(o); }) ||
         std::ranges::any_of(ElementNames, [&](auto n) { return StartsWithElement(text, n); });
}

PropertyListReading Reading(Result<PropertyValue> value, Serialisation serialisation,
                            Arena& arena) {
  if (!value) return {serialisation, value.Error()};
  return {serialisation, PropertyList{std::move(arena), *value}};
}

}  // namespace

PropertyListReading ReadPropertyList(std::string bytes, LocationBuilder* locations) {
  if (bytes.empty()) return {Serialisation::None, Error{"the file is empty"}};
  Arena arena;
  const auto file = arena.Adopt(std::move(bytes));
  if (file.starts_with(BinarySignature)) {
    return Reading(ParseBinaryPropertyList(file, arena, locations), Serialisation::Binary, arena);
  }
  const auto source = DecodeSource(file, arena);
  if (LooksLikeXml(source.text)) {
    return Reading(ParseXmlPropertyList(source, arena, locations), Serialisation::Xml, arena);
  }
  return Reading(ParseTextPropertyList(source, arena, locations), Serialisation::Text, arena);
}

}  // namespace fernwick
