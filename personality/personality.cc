#include "personality/personality.h"

namespace fernwick {

std::optional<Array> PersonalitiesOf(std::string_view type, const PropertyValue& value) {
  if (type != PersonalityType::LegacyUsbc) return value.AsArray();
  if (!value.AsDictionary()) return std::nullopt;
  return Array(std::span(&value, 1));
}

}  // namespace fernwick
