#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "testing/property_values.h"
#include "value/property_value.h"

namespace fernwick::testing {

/// The dictionary with these entries set; one that is there keeps its place.
inline Dictionary With(Dictionary dictionary, const Dictionary& entries) {
  dictionary.Merge(entries);
  return dictionary;
}

/// The dictionary without the key.
inline Dictionary Without(Dictionary dictionary, std::string_view key) {
  dictionary.SetOrRemove(key, nullptr);
  return dictionary;
}

/// A dictionary of the one key, or without it when there is no value.
inline Dictionary Holding(std::string_view key, std::optional<PropertyValue> value) {
  Dictionary dictionary;
  if (value) dictionary.Set(key, *std::move(value));
  return dictionary;
}

}  // namespace fernwick::testing
