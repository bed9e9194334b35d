#pragma once

#include <optional>
#include <string_view>

#include "testing/property_values.h"
#include "value/record.h"

namespace fernwick::testing {

/// The record with these entries set; an existing key keeps its position.
inline Record With(Record record, const Record& entries) {
  record.Merge(entries);
  return record;
}

/// The record without the key.
inline Record Without(Record record, std::string_view key) {
  record.SetOrRemove(key, nullptr);
  return record;
}

/// A record of the one key, or without it when there is no value.
inline Record SingleEntry(std::string_view key, std::optional<PropertyValue> value) {
  Record record;
  if (value) record.Set(key, *value);
  return record;
}

}  // namespace fernwick::testing
