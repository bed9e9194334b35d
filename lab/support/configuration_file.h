#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lab/support/messages.h"
#include "registry/key_schema.h"
#include "value/property_list_reader.h"
#include "value/property_value.h"
#include "value/result.h"
#include "value/value_locations.h"

namespace fernwick::lab {

/// "12:7", line and column; "byte 812" in a binary file.
std::string Describe(const FileLocation& location);

/// The name of the directory that the tool opens for a board identifier, which it uses as it is:
/// "Zed-9" also for "Zed-9/" and "/Zed-9", "." for the directory of the boards itself, and for one
/// that is not in it a path from there. REQUIRES: the directory exists.
std::string BoardNamed(const std::string& identifier, const std::string& personalitiesDirectory);

/// A position in a text from which others are counted: the start of a line, or one further on in a
/// long line.
struct TextMark {
  std::size_t offset;
  std::size_t line;
  std::size_t column;
};

/// A configuration with the location of everything in it. It owns the document that its values and
/// locations view, which stay valid when it is moved.
class ConfigurationFile {
 public:
  /// REQUIRES: `locations` were built while `list` was read.
  ConfigurationFile(PropertyList list, Serialisation serialisation, LocationBuilder locations);

  const PropertyValue& Value() const { return list_.value; }
  Serialisation Form() const { return serialisation_; }

  /// The location of the value at the top; all others are inside it.
  const ValueLocation& Root() const { return locations_.Root(); }

  /// The location of an offset in Root() or in a location inside it, as messages name it.
  FileLocation LocationOf(std::size_t offset) const;

 private:
  PropertyList list_;
  Serialisation serialisation_;
  LocationBuilder locations_;
  std::vector<TextMark> marks_;
};

/// Reads a configuration with the locations of its values, a dictionary or not.
Result<ConfigurationFile, LabError> LoadConfiguration(const std::string& path);

/// The locations of the keys of a dictionary; of one that occurs twice the last, whose value
/// counts. A hash table: linear to build, and a search costs the same in a dictionary of any size.
/// Views the dictionary's location, which must outlive it.
class KeyLocations {
 public:
  /// Without a dictionary (null) there are none.
  explicit KeyLocations(const ValueLocation* dictionary);

  /// Null when the dictionary has no such key.
  const KeyLocation* Find(std::string_view key) const;

 private:
  std::unordered_map<std::string_view, const KeyLocation*> locations_;
};

/// The location of the element in an array. Null when the array has no such element.
const ValueLocation* FindElement(const ValueLocation& array, std::size_t index);

/// The location of a candidate of the type under its key, by the index that PersonalitiesOf has it
/// at. Null when there is no such candidate or no key (null).
const ValueLocation* LocationOfCandidate(const KeyLocation* key, TypeSet type, std::size_t index);

}  // namespace fernwick::lab
