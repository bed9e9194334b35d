#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// Whether the value may identify a computer: all do but an empty text or container, a boolean, a
/// date and a number that is not finite.
bool MayIdentify(const PropertyValue& value);

/// Replaces every value that identifies one computer by another of the same kind: the same for
/// equal ones, a different one for each other. They are counted, so they say nothing of what they
/// replace, except the punctuation and length of a text, the length of data and the low four bits
/// of a number, which make a controller's "RID". What may not identify a computer stays.
class Pseudonyms {
 public:
  /// Of an array or a dictionary: with everything inside it replaced, but no key. Views `arena` and
  /// what the value views.
  PropertyValue Of(const PropertyValue& value, Arena& arena);

  std::string OfText(std::string_view text);

 private:
  std::string OfBytes(std::string_view bytes);
  std::uint64_t OfNumber(const Number& number);

  // To the counts that their pseudonyms are made of.
  std::map<std::string, std::uint64_t, std::less<>> texts_;
  std::map<std::string, std::uint64_t, std::less<>> bytes_;
  std::map<std::string, std::uint64_t> numbers_;  // by their exact value, whatever their kind
};

}  // namespace fernwick::lab
