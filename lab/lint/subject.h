#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "lab/support/configuration_file.h"
#include "personality/personality.h"
#include "registry/key_schema.h"
#include "value/property_value.h"
#include "value/value_locations.h"

namespace fernwick::lab {

/// A key of a dictionary and its value, with the locations of both.
struct LocatedEntry {
  std::string_view key;
  const PropertyValue* value;
  std::size_t keyOffset;
  std::size_t valueOffset;
  const ValueLocation* location;  // of the value and what is in it
};

/// The entries of a dictionary in their order; of a key that occurs twice the last, which counts.
/// REQUIRES: the location is that of the dictionary.
std::vector<LocatedEntry> LocatedEntries(Dictionary dictionary, const ValueLocation& location);

/// The offset of an element of the entry's array.
std::size_t OffsetOfElement(const LocatedEntry& array, std::size_t index);

/// One personality of a configuration.
struct LocatedPersonality {
  TypeSet type;
  std::string_view typeName;
  std::size_t offset;
  std::vector<LocatedEntry> entries;

  /// Null when the personality has no such key.
  const LocatedEntry* Find(std::string_view key) const;

  /// The value under the key; null when the personality has no such key.
  const PropertyValue* Value(std::string_view key) const;
};

/// A key at the top of a configuration that names a type.
struct LocatedType {
  LocatedEntry entry;
  TypeSet type;
  std::vector<LocatedPersonality> personalities;  // in the order of the array; those that are
                                                  // dictionaries, when the value has its shape
};

/// A configuration as its rules look at it. REQUIRES: `configuration` outlives it.
struct LintSubject {
  explicit LintSubject(const ConfigurationFile& configuration);

  const ConfigurationFile& file;
  std::vector<LocatedEntry> entries;  // at the top; none when it is not a dictionary
  std::vector<LocatedType> types;     // in the order of the file
};

/// Whether the type's value is a single personality and not an array of them.
bool HasSinglePersonality(TypeSet type);

}  // namespace fernwick::lab
