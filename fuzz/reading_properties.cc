#include "fuzz/reading_properties.h"

#include <algorithm>
#include <charconv>

#include "fuzz/hold.h"
#include "fuzz/same_value.h"
#include "fuzz/text_form.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"
#include "value/unicode/utf8.h"
#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

void HoldReadsBack(std::string bytes, const PropertyValue& value, Serialisation serialisation) {
  const auto reading = ReadPropertyList(std::move(bytes));
  Hold(reading.serialisation == serialisation, "what was written is detected as what it is");
  Hold(reading.value.has_value(), "what was written can be read");
  Hold(SameValue(*reading.value, value), "what was written reads back the same");
}

// Takes `word` and the number behind it off the start of `text`; 0 when they do not stand there.
std::size_t TakeNumber(std::string_view& text, std::string_view word) {
  std::size_t number = 0;
  if (!text.starts_with(word)) return 0;
  text.remove_prefix(word.size());
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return error == std::errc() ? number : 0;
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

void HoldMessage(std::string_view message) {
  Hold(message.size() > 2 && message.starts_with(": "), "a message follows the place");
  Hold(FindInvalidUtf8(message) == npos, "a message is text");
  Hold(std::ranges::none_of(message, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }),
       "a message stands on one line");
}

}  // namespace

void HoldReading(const std::optional<PropertyValue>& value, const std::string& error) {
  Hold(value.has_value() == error.empty(), "there is either a value or an error");
  if (!value || !IsSmall(*value)) return;
  HoldReadsBack(WriteXmlPropertyList(*value), *value, Serialisation::Xml);
  HoldReadsBack(WriteBinaryPropertyList(*value), *value, Serialisation::Binary);
  if (FitsTextForm(*value)) HoldReadsBack(WriteTextForm(*value), *value, Serialisation::Text);
}

void HoldPlaceInText(std::string_view error, std::string_view text) {
  if (error.empty()) return;
  const auto lineNumber = TakeNumber(error, "line ");
  Hold(lineNumber > 0, "an error tells its line");
  const auto line = LineOf(text, lineNumber);
  Hold(line.has_value(), "the line of an error is in the text");
  const auto column = TakeNumber(error, ", column ");
  // In bytes, of which a line has at least as many as characters; the end is a place, too.
  Hold(column > 0 && column <= line->size() + 1, "the column of an error is in its line");
  HoldMessage(error);
}

void HoldPlaceInFile(std::string_view error, std::size_t fileSize) {
  if (error.empty()) return;
  Hold(error.starts_with("byte "), "an error tells its byte");
  Hold(TakeNumber(error, "byte ") <= fileSize, "the byte of an error is in the file");
  HoldMessage(error);
}

}  // namespace fernwick::fuzz
