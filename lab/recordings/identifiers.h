#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/recordings/pseudonyms.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// Whether a property of that name identifies one computer: a unique id, a UUID, a serial number, a
/// hardware address. Case and punctuation do not matter.
bool IdentifiesComputer(std::string_view key);

/// The values of identifying properties, to find them again in other texts: a text in any letter
/// case, an integer in decimal or hexadecimal, data in hexadecimal or as the text that it contains.
/// Only spellings of at least eight characters count, as shorter ones may occur by chance.
class Identifiers {
 public:
  /// Adds the value and everything inside it.
  void Add(const PropertyValue& value);

  /// The bytes with a pseudonym for each identifier in them; empty when there is none.
  std::optional<std::string> Replaced(std::string_view bytes, Pseudonyms& pseudonyms) const;

 private:
  struct Spelling {
    std::string text;      // letters in lower case
    std::string original;  // what the pseudonym is for
  };

  void AddSpelling(std::string_view text);
  void AddBytes(std::string_view bytes);

  std::vector<Spelling> spellings_;  // the longest first, so that none hides one that contains it
};

/// The name of an entry with a pseudonym for each part of it that is an identifier by its form: a
/// UUID, a hardware address of six bytes ("00:1b:2c:3d:4e:5f"), a hexadecimal number of twelve
/// digits or more. Empty when there is none.
std::optional<std::string> ReplaceIdentifierForms(std::string_view name, Pseudonyms& pseudonyms);

}  // namespace fernwick::lab
