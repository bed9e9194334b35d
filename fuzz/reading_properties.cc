#include "fuzz/reading_properties.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "fuzz/require.h"
#include "fuzz/same_value.h"
#include "fuzz/text_form.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"
#include "value/unicode/utf8.h"
#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

void CheckReadsBack(std::string bytes, const PropertyValue& value, Serialisation serialisation) {
  const auto reading = ReadPropertyList(std::move(bytes));
  Require(reading.serialisation == serialisation, "what was written is detected as what it is");
  Require(bool(reading.list), "what was written can be read");
  Require(SameValue(reading.list->value, value), "what was written reads back the same");
}

// Line `number` of `text`, counted from 1, with what ends it.
std::optional<std::string_view> LineOf(std::string_view text, std::size_t number) {
  for (;; --number) {
    std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    if (text.substr(end).starts_with("\r\n")) ++end;
    const auto line = text.substr(0, end + 1);
    if (number == 1) return line;
    if (end == text.size()) return std::nullopt;
    text.remove_prefix(line.size());
  }
}

void CheckMessage(std::string_view message) {
  Require(!message.empty(), "an error has a message");
  Require(FindInvalidUtf8(message) == npos, "a message is text");
  Require(std::ranges::none_of(message, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }),
          "a message is one line");
}

// Every error of a reader has a location.
FileLocation LocationOf(const Error& error) {
  Require(error.location.has_value(), "an error has a location");
  return *error.location;
}

}  // namespace

void CheckReading(const Result<PropertyValue>& reading) {
  if (!reading) return CheckMessage(reading.Error().message);
  if (!IsSmall(*reading)) return;
  CheckReadsBack(WriteXmlPropertyList(*reading), *reading, Serialisation::Xml);
  CheckReadsBack(WriteBinaryPropertyList(*reading), *reading, Serialisation::Binary);
  if (FitsTextForm(*reading)) {
    CheckReadsBack(WriteTextForm(*reading), *reading, Serialisation::Text);
  }
}

void CheckLocationInText(const Result<PropertyValue>& reading, std::string_view text) {
  if (reading) return;
  const auto location = LocationOf(reading.Error());
  Require(location.line > 0, "an error in a text has a line");
  const auto line = LineOf(text, location.line);
  Require(line.has_value(), "the line of an error is in the text");
  // In bytes, of which a line has at least as many as characters; the end is a location, too.
  Require(location.column > 0 && location.column <= line->size() + 1,
          "the column of an error is in its line");
}

void CheckLocationInFile(const Result<PropertyValue>& reading, std::size_t fileSize) {
  if (reading) return;
  const auto location = LocationOf(reading.Error());
  Require(location.line == 0 && location.column == 0, "an error in a binary file has no line");
  Require(location.byte <= fileSize, "the byte of an error is in the file");
}

}  // namespace fernwick::fuzz
