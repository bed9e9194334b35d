#include "lab/support/configuration_file.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include "platform/file_system.h"
#include "value/unicode/text_position.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

// The most bytes that are counted again for a location, however long its line.
constexpr std::size_t MarkDistance = 1024;

// The column of an offset in the line of the mark.
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
    } else if (i - last.offset >= MarkDistance && !IsContinuation(text[i])) {
      marks.push_back({i, last.line, ColumnAt(text, last, i)});
    }
  }
  return marks;
}

}  // namespace

std::string Describe(const FileLocation& location) {
  if (location.line == 0) return "byte " + std::to_string(location.byte);
  return std::to_string(location.line) + ":" + std::to_string(location.column);
}

// Empty components and "." say nothing. ".." after a link is not what is before it, so that a path
// with it is resolved.
std::string BoardNamed(const std::string& identifier, const std::string& personalitiesDirectory) {
  std::filesystem::path path;
  bool goesUp = false;
  for (const auto& component : std::filesystem::path(identifier).relative_path()) {
    if (component.empty() || component == ".") continue;
    goesUp = goesUp || component == "..";
    path /= component;
  }
  if (goesUp) {
    const std::filesystem::path directory = personalitiesDirectory;
    std::error_code removed;
    path = std::filesystem::canonical(directory / path, removed)
               .lexically_relative(std::filesystem::canonical(directory, removed));
  }
  return path.empty() ? "." : path.string();
}

ConfigurationFile::ConfigurationFile(PropertyList list, Serialisation serialisation,
                                     LocationBuilder locations)
    : list_(std::move(list)),
      serialisation_(serialisation),
      locations_(std::move(locations)),
      marks_(MarksOf(locations_.Text())) {}

FileLocation ConfigurationFile::LocationOf(std::size_t offset) const {
  if (serialisation_ == Serialisation::Binary) return {.byte = offset};
  const auto next = std::ranges::upper_bound(marks_, offset, {}, &TextMark::offset);
  const auto& mark = *std::prev(next);
  return {mark.line, ColumnAt(locations_.Text(), mark, offset)};
}

Result<ConfigurationFile, LabError> LoadConfiguration(const std::string& path) {
  auto file = ReadWholeFile(path);
  if (!file) return LabError{file.Error(), UnreadableStatus(file.Error())};
  LocationBuilder locations;
  auto reading = ReadPropertyList(*std::move(file), &locations);
  if (!reading.list) return LabError{reading.list.Error(), LabStatus::MalformedInput};
  return ConfigurationFile(*std::move(reading.list), reading.serialisation, std::move(locations));
}

KeyLocations::KeyLocations(const ValueLocation* dictionary) {
  if (dictionary == nullptr) return;
  for (const auto& entry : dictionary->Entries()) locations_[entry.key] = &entry;
}

const KeyLocation* KeyLocations::Find(std::string_view key) const {
  const auto location = locations_.find(key);
  return location == locations_.end() ? nullptr : location->second;
}

const ValueLocation* FindElement(const ValueLocation& array, std::size_t index) {
  return index < array.Elements().size() ? &array.Elements()[index] : nullptr;
}

// The value of "LegacyUSBC" is the one personality itself.
const ValueLocation* LocationOfCandidate(const KeyLocation* key, TypeSet type, std::size_t index) {
  if (key == nullptr) return nullptr;
  return type == Types::LegacyUsbc ? &key->value : FindElement(key->value, index);
}

}  // namespace fernwick::lab
