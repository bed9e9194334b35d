#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// Changes property lists as values, so that what comes of it is again a property list and gets
/// past the reader. What it puts in comes from the values that it was shown, from the sample values
/// and from the fuzzing engine's own mutations of texts.
class ValueMutator {
 public:
  explicit ValueMutator(unsigned seed);

  /// Shows a value, whose parts and keys may then turn up anywhere. REQUIRES: the value is small.
  void Show(const PropertyValue& value);

  /// The value changed in a few places.
  PropertyValue Mutate(PropertyValue value);

  /// A number below `count`. REQUIRES: count is not 0.
  std::size_t Pick(std::size_t count) { return random_() % count; }

 private:
  PropertyValue MutateOne(const PropertyValue& value);
  PropertyValue Replaced(const PropertyValue& value, const PropertyValue* target);
  PropertyValue Changed(const PropertyValue& value);
  PropertyValue ChangedDictionary(const Dictionary& dictionary);
  PropertyValue ChangedArray(Array array);
  std::string ChangedText(std::string_view text);
  const PropertyValue& AnyValue() { return values_[Pick(values_.size())]; }
  const std::string& AnyKey() { return keys_[Pick(keys_.size())]; }

  std::minstd_rand random_;
  std::vector<PropertyValue> values_;
  std::vector<std::string> keys_;
};

/// Mutates the property list in the first `size` of `capacity` bytes in place, written as XML, as a
/// value; as bytes when it is none, and now and then anyway. Returns its new size.
std::size_t MutatePropertyList(std::uint8_t* data, std::size_t size, std::size_t capacity,
                               unsigned seed);

/// As above, of a text. `mutator` has been shown what may turn up in it.
std::string MutatePropertyList(std::string_view bytes, std::size_t capacity, ValueMutator& mutator);

}  // namespace fernwick::fuzz
