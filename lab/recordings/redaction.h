#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "lab/recordings/pseudonyms.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

/// Whether a property of that name identifies one computer: a unique id, a UUID, a serial number, a
/// hardware address. Case and punctuation do not matter.
bool IdentifiesComputer(std::string_view key);

/// How many values were replaced, by the key of the property.
using ReplacedCounts = std::map<std::string, std::size_t, std::less<>>;

/// A recording without what identifies the computer. It views the recording that it was made of.
struct RedactedRecording {
  PropertyList list;
  ReplacedCounts replaced;
  std::size_t textsElsewhere = 0;  // that contained one of the replaced texts
};

/// Replaces the properties of every entry, however deep in their values, that identify the computer
/// or that `furtherKeys` names. A text of eight characters or more that was replaced so is
/// replaced everywhere in a string, data, a name or an ID too. REQUIRES: a well-formed recording.
RedactedRecording RedactRecording(const PropertyValue& recording,
                                  const std::set<std::string>& furtherKeys, Pseudonyms& pseudonyms);

}  // namespace fernwick::lab
