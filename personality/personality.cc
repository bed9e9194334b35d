#include "personality/personality.h"

namespace fernwick {

std::optional<std::span<const PropertyValue>> PersonalitiesOf(std::string_view type,
                                                              const PropertyValue& value) {
  if (type == PersonalityType::LegacyUsbc) {
    if (value.AsDictionary() == nullptr) return std::nullopt;
    return std::span(&value, 1);
  }
  const auto* array = value.AsArray();
  if (array == nullptr) return std::nullopt;
  return std::span(*array);
}

}  // namespace fernwick
