#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "value/property_list_reader.h"
#include "value/property_value.h"
#include "value/value_places.h"

namespace fernwick::lab {

/// A place in a configuration as people name it. A binary file has no lines: line and column are 0.
struct FilePlace {
  std::size_t line;
  std::size_t column;
  std::size_t byte;  // in a binary file alone
};

/// "12:7", line and column; "byte 812" in a binary file.
std::string Describe(const FilePlace& place);

/// A place in a text from which others are counted: the start of a line, or one further on in a
/// long line.
struct TextMark {
  std::size_t offset;
  std::size_t line;
  std::size_t column;
};

/// A configuration with the place of everything in it.
class ConfigurationFile {
 public:
  /// REQUIRES: `places` were recorded while `value` was read.
  ConfigurationFile(PropertyValue value, Serialisation serialisation, PlaceRecorder places);

  const PropertyValue& Value() const { return value_; }
  Serialisation Form() const { return serialisation_; }

  /// Where the value at the top stands; all others are inside it.
  const ValuePlace& Root() const { return root_; }

  /// The place of an offset that Root() or a place in it has.
  FilePlace PlaceOf(std::size_t offset) const;

 private:
  PropertyValue value_;
  Serialisation serialisation_;
  PlaceRecorder places_;
  ValuePlace root_;
  std::vector<TextMark> marks_;
};

/// What became of loading one.
struct ConfigurationLoading {
  std::optional<ConfigurationFile> file;
  std::string error;  // what is wrong, without the path; empty when there is a file
  int status;         // LabStatus: Done, MalformedInput or UnreadableInput
};

/// Reads a configuration with the places of its values. Whether it is a dictionary is not looked
/// at.
ConfigurationLoading LoadConfiguration(const std::string& path);

/// Where the key stands in a dictionary; of one that occurs twice the last, whose value holds. Null
/// when it is not told, as for the keys of a dictionary that a binary file shares.
const KeyPlace* FindKey(const ValuePlace& dictionary, std::string_view key);

/// Where the element stands in an array. Null when it is not told.
const ValuePlace* FindElement(const ValuePlace& array, std::size_t index);

}  // namespace fernwick::lab
