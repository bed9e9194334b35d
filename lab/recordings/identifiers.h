#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/recordings/pseudonyms.h"
#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// Whether a property of that name identifies one computer: a unique id, a UUID, a serial number, a
/// hardware address. Case and punctuation do not matter.
bool IdentifiesComputer(std::string_view key);

/// The values of identifying properties, to find them again in other texts: a text in any letter
/// case, an integer in decimal or hexadecimal, data in hexadecimal or as the text that it contains.
/// Only spellings of at least eight characters count, as shorter ones may occur by chance. Of a
/// spelling of more than 64 characters the first 64 are found too, with all that agrees after them.
class Identifiers {
 public:
  /// Adds the value and everything inside it.
  void Add(const PropertyValue& value);

  /// The bytes with a pseudonym for each identifier in them, of those that begin at one character
  /// the longest; empty when there is none. Costs m log m at the first call, for spellings of m
  /// characters, and n log m for each text of n.
  std::optional<std::string> Replaced(std::string_view bytes, Pseudonyms& pseudonyms);

 private:
  struct Spelling {
    std::string_view text;      // letters in lower case
    std::string_view original;  // what the pseudonym is for
    std::size_t prefix = 0;  // the longest other spelling that this one begins with; itself: none
  };
  // An identifier at the start of a text: its length there, and the spelling if it is whole.
  struct Found {
    std::size_t length = 0;
    const Spelling* whole = nullptr;
  };

  void AddSpelling(std::string_view text);
  void AddBytes(std::string_view bytes);
  void Sort();
  void LinkPrefixes();
  Found FindAtStart(std::string_view text) const;

  Arena arena_;                        // of the spellings
  std::vector<Spelling> spellings_;    // sorted by their texts once they are searched for
  std::vector<std::uint64_t> starts_;  // of each the first eight bytes, as a number; also sorted
  bool isSorted_ = true;
};

/// The name of an entry with a pseudonym for each part of it that is an identifier by its form: a
/// UUID, a hardware address of six bytes ("00:1b:2c:3d:4e:5f"), a hexadecimal number of twelve
/// digits or more. Empty when there is none.
std::optional<std::string> ReplaceIdentifierForms(std::string_view name, Pseudonyms& pseudonyms);

}  // namespace fernwick::lab
