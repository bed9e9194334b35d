#pragma once

#include <string_view>
#include <vector>

#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick::lab {

/// The dictionary with each value replaced by `step(key, value)`, in `arena`.
template <typename Step>
Dictionary Rebuilt(Dictionary dictionary, Arena& arena, Step step) {
  std::vector<DictionaryEntry> entries;
  entries.reserve(dictionary.Size());
  for (const auto& [key, value] : dictionary.Entries()) entries.push_back({key, step(key, value)});
  return arena.Copy(std::span<const DictionaryEntry>(entries));
}

/// The same of an array, whose elements have the key `key`.
template <typename Step>
Array Rebuilt(Array array, Arena& arena, Step step, std::string_view key = {}) {
  std::vector<PropertyValue> elements;
  elements.reserve(array.size());
  for (const auto& element : array) elements.push_back(step(key, element));
  return arena.Copy(std::span<const PropertyValue>(elements));
}

/// The same of a dictionary or an array; any other value as it is.
template <typename Step>
PropertyValue Rebuilt(const PropertyValue& value, Arena& arena, Step step,
                      std::string_view key = {}) {
  if (const auto dictionary = value.AsDictionary()) return Rebuilt(*dictionary, arena, step);
  if (const auto array = value.AsArray()) return Rebuilt(*array, arena, step, key);
  return value;
}

}  // namespace fernwick::lab
