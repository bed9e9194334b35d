#include "value/property_list_reader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "value/binary/layout.h"
#include "value/binary/reader.h"
#include "value/parse_outcome.h"
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

PropertyListReading Reading(ParseOutcome outcome, Serialisation serialisation) {
  return {std::move(outcome.value), std::move(outcome.error), serialisation};
}

}  // namespace

PropertyListReading ReadPropertyList(std::string bytes, PlaceRecorder* places) {
  if (bytes.empty()) return {{}, "the file is empty", Serialisation::None};
  SourceBuffer buffer(std::move(bytes));
  if (buffer.View().starts_with(BinarySignature)) {
    return Reading(ParseBinaryPropertyList(buffer, places), Serialisation::Binary);
  }
  const auto source = DecodeSource(std::move(buffer));
  if (LooksLikeXml(source.text))
    return Reading(ParseXmlPropertyList(source, places), Serialisation::Xml);
  return Reading(ParseTextPropertyList(source, places), Serialisation::Text);
}

}  // namespace fernwick
