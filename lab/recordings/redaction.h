#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "lab/recordings/pseudonyms.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// Whether a property of that name identifies one computer: a unique id, a UUID, a serial number, a
/// hardware address. Case and punctuation do not matter.
bool IdentifiesComputer(std::string_view key);

/// How many values were replaced, by the key of the property.
using ReplacedCounts = std::map<std::string, std::size_t, std::less<>>;

/// A recording without what identifies the computer.
struct RedactedRecording {
  PropertyValue value;
  ReplacedCounts replaced;
  std::size_t textsElsewhere = 0;  // that held one of the replaced texts, and do so no longer
};

/// Replaces the properties of every entry, however deep in their values, that identify the computer
/// or that `furtherKeys` names. A text of eight characters or more that was replaced so gives way
/// wherever it stands in a string, data, a name or an ID too. REQUIRES: a well-formed recording.
RedactedRecording RedactRecording(const PropertyValue& recording,
                                  const std::set<std::string>& furtherKeys, Pseudonyms& pseudonyms);

}  // namespace fernwick::lab
