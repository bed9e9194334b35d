#pragma once

#include <cstddef>
#include <deque>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "value/arena.h"
#include "value/property_list_reader.h"

namespace fernwick::fuzz {

/// Structure-aware mutation: changes property lists as values, so that the result is accepted by
/// the reader. Inserted values come from the values that it was shown, from the sample values and
/// from the fuzzing engine's own mutations of texts. A mutation costs a walk over the value and a
/// copy of the containers in it.
class ValueMutator {
 public:
  explicit ValueMutator(unsigned seed);

  /// Shows a property list, whose parts and keys may then be inserted anywhere. One that cannot be
  /// read, or is too large, shows nothing.
  void ShowPropertyList(std::string_view bytes);

  /// The value changed at a few locations. It views what `value` does and what this owns.
  PropertyValue Mutate(PropertyValue value);

  /// A number below `count`. REQUIRES: count is not 0.
  std::size_t Pick(std::size_t count) { return random_() % count; }

 private:
  PropertyValue MutateOne(const PropertyValue& value);
  PropertyValue Replaced(const PropertyValue& value, const PropertyValue* target);
  PropertyValue Changed(const PropertyValue& value);
  PropertyValue ChangedDictionary(Dictionary dictionary);
  PropertyValue ChangedArray(Array array);
  Array ArrayOf(const std::vector<PropertyValue>& elements);
  Dictionary DictionaryOf(std::vector<DictionaryEntry>& entries);
  std::string_view ChangedText(std::string_view text);
  PropertyValue AnyValue() { return values_[Pick(values_.size())]; }
  std::string_view AnyKey() { return keys_[Pick(keys_.size())]; }

  std::minstd_rand random_;
  Arena arena_;                     // of what is changed
  std::deque<PropertyList> shown_;  // what the values and keys view, besides the samples
  std::vector<PropertyValue> values_;
  std::vector<std::string_view> keys_;
};

/// The first `capacity` bytes as the fuzzing engine's own mutator changes them: as many at most.
std::string MutatedBytes(std::string_view bytes, std::size_t capacity);

/// The property list in `bytes` mutated as a value, written as binary when it was that and as XML
/// otherwise; as bytes when it is none, when it would become larger than `capacity`, and now and
/// then anyway.
std::string MutatePropertyList(std::string_view bytes, std::size_t capacity, ValueMutator& mutator);

}  // namespace fernwick::fuzz
