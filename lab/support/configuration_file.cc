#include "lab/support/configuration_file.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "lab/support/messages.h"
#include "platform/file_system.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

// So many bytes are counted again for each place that is asked for, however long its line.
constexpr std::size_t MarkDistance = 1024;

bool IsInsideCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// The column of a place that lies in the line of the mark.
std::size_t ColumnAt(std::string_view text, const TextMark& mark, std::size_t offset) {
  return mark.column + PositionAt(text.substr(mark.offset), offset - mark.offset).column - 1;
}

// A line ends with a line feed, a carriage return, or both in that pair.
std::vector<TextMark> MarksOf(std::string_view text) {
  std::vector<TextMark> marks = {{0, 1, 1}};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto last = marks.back();
    const bool endsPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] == '\n' || (text[i] == '\r' && !endsPair)) {
      marks.push_back({i + 1, last.line + 1, 1});
    } else if (i - last.offset >= MarkDistance && !IsInsideCharacter(text[i])) {
      marks.push_back({i, last.line, ColumnAt(text, last, i)});
    }
  }
  return marks;
}

}  // namespace

std::string Describe(const FilePlace& place) {
  if (place.line == 0) return "byte " + std::to_string(place.byte);
  return std::to_string(place.line) + ":" + std::to_string(place.column);
}

ConfigurationFile::ConfigurationFile(PropertyValue value, Serialisation serialisation,
                                     PlaceRecorder places)
    : value_(std::move(value)),
      serialisation_(serialisation),
      places_(std::move(places)),
      root_(places_.TakeRoot()),
      marks_(MarksOf(places_.Text())) {}

FilePlace ConfigurationFile::PlaceOf(std::size_t offset) const {
  if (serialisation_ == Serialisation::Binary) return {0, 0, offset};
  const auto next = std::ranges::upper_bound(marks_, offset, {}, &TextMark::offset);
  const auto& mark = *std::prev(next);
  return {mark.line, ColumnAt(places_.Text(), mark, offset), 0};
}

ConfigurationLoading LoadConfiguration(const std::string& path) {
  auto file = ReadWholeFile(path);
  if (!file.bytes) return {{}, std::move(file.error), LabStatus::UnreadableInput};
  PlaceRecorder places;
  auto reading = ReadPropertyList(*std::move(file.bytes), &places);
  if (!reading.value) return {{}, std::move(reading.error), LabStatus::MalformedInput};
  return {ConfigurationFile(*std::move(reading.value), reading.serialisation, std::move(places)),
          {},
          LabStatus::Done};
}

const KeyPlace* FindKey(const ValuePlace& dictionary, std::string_view key) {
  const auto& entries = dictionary.entries;
  const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                 [&](const KeyPlace& entry) { return entry.key.View() == key; });
  return last == entries.rend() ? nullptr : &*last;
}

const ValuePlace* FindElement(const ValuePlace& array, std::size_t index) {
  return index < array.elements.size() ? &array.elements[index] : nullptr;
}

}  // namespace fernwick::lab
