#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// Whether the value may identify a computer: any may except an empty text or container, a boolean,
/// a date and a number that is not finite.
bool MayIdentify(const PropertyValue& value);

/// Replaces values that identify one computer by pseudonyms of the same kind, equal ones for equal
/// values and different ones for different values. A pseudonym is a number in the order of first
/// use, so it reveals nothing of the value, except the punctuation and length of a text, the length
/// of data and the low four bits of a number, from which a controller's "RID" is computed. Values
/// that cannot identify a computer are kept.
class Pseudonyms {
 public:
  /// The pseudonym of a value; an array or a dictionary with every value inside it replaced, but
  /// no key. Views `arena` and what the value views.
  PropertyValue Of(const PropertyValue& value, Arena& arena);

  std::string OfText(std::string_view text);

 private:
  std::string OfBytes(std::string_view bytes);
  std::uint64_t OfNumber(const Number& number);

  // From each value to the number that its pseudonym contains.
  std::map<std::string, std::uint64_t, std::less<>> texts_;
  std::map<std::string, std::uint64_t, std::less<>> bytes_;
  std::map<std::string, std::uint64_t> numbers_;  // by their exact value, whatever their kind
};

}  // namespace fernwick::lab
