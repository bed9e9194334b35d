#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "lab/support/configuration_file.h"
#include "personality/personality.h"
#include "personality/personality_keys.h"
#include "value/property_value.h"
#include "value/value_places.h"

namespace fernwick::lab {

/// A key of a dictionary and its value, with where both stand.
struct PlacedEntry {
  std::string_view key;
  const PropertyValue* value;
  std::size_t keyOffset;
  std::size_t valueOffset;
  const ValuePlace* place;  // of the value; null when it is not told
};

/// The entries of a dictionary in their order; of a key that occurs twice the last, which holds. A
/// container that a binary file shares tells no places (`place` may be null, or have no entries):
/// then everything in it stands at `offset`.
std::vector<PlacedEntry> PlacedEntries(const Dictionary& dictionary, const ValuePlace* place,
                                       std::size_t offset);

/// Where an element of the entry's array stands, or the array itself when that is not told.
std::size_t OffsetOfElement(const PlacedEntry& array, std::size_t index);

/// One personality of a configuration.
struct PlacedPersonality {
  TypeSet type;
  std::string_view typeName;
  std::size_t offset;
  const Personality* values;
  std::vector<PlacedEntry> entries;

  /// Null when the personality has no such key.
  const PlacedEntry* Find(std::string_view key) const;
};

/// A key at the top of a configuration that names a type.
struct PlacedType {
  PlacedEntry entry;
  TypeSet type;
  std::vector<PlacedPersonality> personalities;  // in the order of the array; those that are
                                                 // dictionaries, when the value has its shape
};

/// A configuration as its rules look at it. REQUIRES: `configuration` outlives it.
struct LintSubject {
  explicit LintSubject(const ConfigurationFile& configuration);

  const ConfigurationFile& file;
  std::vector<PlacedEntry> entries;  // at the top; none when it is not a dictionary
  std::vector<PlacedType> types;     // in the order of the file
};

/// Whether the type's value is a single personality and not an array of them.
bool HoldsSinglePersonality(TypeSet type);

}  // namespace fernwick::lab
