#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "value/property_value.h"

namespace fernwick {

/// A dictionary that can be modified: it owns its entries. Their keys and values are views; what
/// they view must outlive the record. A copy has entries of its own.
class Record {
 public:
  Record() = default;

  /// A key that occurs twice keeps its first position and its last value.
  Record(std::initializer_list<DictionaryEntry> entries);

  /// A copy of the entries.
  explicit Record(Dictionary dictionary);

  /// A view of the entries, valid until the record changes or ends.
  operator Dictionary() const { return std::span(entries_); }  // NOLINT: a record is a dictionary

  /// As in a Dictionary. Valid until the record changes or ends.
  const PropertyValue* Find(std::string_view key) const { return Dictionary(*this).Find(key); }
  std::span<const DictionaryEntry> Entries() const { return entries_; }
  std::size_t Size() const { return entries_.size(); }

  /// Sets `key` to the value. An existing key keeps its position, a new one comes last. Linear.
  void Set(std::string_view key, PropertyValue value);

  /// As Set; an absent value (null) removes the key. `value` may point into this record.
  void SetOrRemove(std::string_view key, const PropertyValue* value);

  /// Sets every entry of `other`, in its order. `other` is not a view of this record.
  void Merge(Dictionary other);

  friend bool operator==(const Record&, const Record&) = default;

 private:
  std::vector<DictionaryEntry> entries_;
};

}  // namespace fernwick
