// An additive multiset hash: the sum of a hash of each property, twice with different prefixes. A
// property costs a hash of its value; the others are not read.

#include "lab/what_if/state_digest.h"

#include <functional>
#include <string>

#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

// All that makes the property differ from others, the kind of its value included.
std::string TextOf(RegistryEntry entry, std::string_view property, const PropertyValue& value) {
  auto text = std::to_string(entry) + " " + std::to_string(property.size()) + " ";
  text += property;
  WriteXmlPropertyList(value, 0, [&](std::string_view part) { text += part; });
  return text;
}

std::uint64_t HashOf(const std::string& text) {
  return std::hash<std::string>()(text);
}

}  // namespace

void StateDigest::Add(RegistryEntry entry, std::string_view property, const PropertyValue& value) {
  const auto text = TextOf(entry, property, value);
  first_ += HashOf("1" + text);
  second_ += HashOf("2" + text);
}

void StateDigest::Remove(RegistryEntry entry, std::string_view property,
                         const PropertyValue& value) {
  const auto text = TextOf(entry, property, value);
  first_ -= HashOf("1" + text);
  second_ -= HashOf("2" + text);
}

}  // namespace fernwick::lab
