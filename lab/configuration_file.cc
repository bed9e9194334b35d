#include "lab/configuration_file.h"

#include <algorithm>
#include <utility>

#include "lab/exit_status.h"
#include "platform/file_system.h"
#include "value/text_position.h"

namespace fernwick::lab {
namespace {

// Where the lines of the text begin. A line ends with a line feed, a carriage return, or both in
// that pair.
std::vector<std::size_t> LineStarts(std::string_view text) {
  std::vector<std::size_t> starts = {0};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool endsPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (text[i] == '\n' || (text[i] == '\r' && !endsPair)) starts.push_back(i + 1);
  }
  return starts;
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
      lineStarts_(LineStarts(places_.Text())) {}

FilePlace ConfigurationFile::PlaceOf(std::size_t offset) const {
  if (serialisation_ == Serialisation::Binary) return {0, 0, offset};
  const auto next = std::ranges::upper_bound(lineStarts_, offset);
  const std::size_t start = *std::prev(next);
  const auto line = static_cast<std::size_t>(next - lineStarts_.begin());
  return {line, PositionAt(places_.Text().substr(start), offset - start).column, 0};
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
