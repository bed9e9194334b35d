#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "lab/recordings/pseudonyms.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

using PropertyNames = std::set<std::string, std::less<>>;

/// Which properties of entries a redacted recording contains, besides those that the tool reads,
/// and which values are replaced, besides those of properties that identify the computer.
struct RedactionRules {
  PropertyNames replaced = {};  // these are contained too, with pseudonyms
  PropertyNames kept = {};
  bool keepsAll = false;
};

/// How many values were replaced, kept or dropped, by the name of the property.
using PropertyCounts = std::map<std::string, std::size_t, std::less<>>;

/// What was done to the properties of one or more recordings.
struct RedactionCounts {
  PropertyCounts replaced = {};  // at any depth of a property's value
  PropertyCounts kept = {};
  PropertyCounts dropped = {};
  std::size_t names = 0;  // names, IDs and links that contained an identifier
  std::size_t texts = 0;  // values of kept properties that contained one
};

/// A recording without what identifies the computer. It views the recording that it was made from.
struct RedactedRecording {
  PropertyList list;
  RedactionCounts counts;
};

/// Drops every property of an entry that neither the tool reads nor the rules keep, and replaces
/// the identifying ones by pseudonyms, at any depth of their values. An identifier, also of a
/// dropped property, is replaced in every other text, name and ID too, and so is a part of a name
/// that is an identifier by its form. REQUIRES: a well-formed recording.
RedactedRecording RedactRecording(const PropertyValue& recording, const RedactionRules& rules,
                                  Pseudonyms& pseudonyms);

}  // namespace fernwick::lab
