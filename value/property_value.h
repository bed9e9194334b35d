#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "value/number.h"
#include "value/shared_bytes.h"

namespace fernwick {

class Dictionary;
class PropertyValue;

/// The values of an array, in their order.
using Array = std::vector<PropertyValue>;

/// Text, in UTF-8.
struct String {
  SharedBytes text;
  friend bool operator==(const String&, const String&) = default;
};

/// A byte string.
struct Data {
  SharedBytes bytes;
  friend bool operator==(const Data&, const Data&) = default;
};

/// A point in time: seconds since 1970-01-01T00:00:00Z, of the years 1 to 9999. Carried through
/// untouched; it is none of the kinds that a reader or a check accepts.
struct Date {
  std::int64_t seconds;
  friend bool operator==(const Date&, const Date&) = default;
};

/// One value of a property list. A value is never absent: where one may be missing, a null pointer
/// or an empty optional says so. Copies share what they hold, however large it is.
class PropertyValue {
 public:
  PropertyValue(Dictionary value);                           // NOLINT: each kind is a value
  PropertyValue(Array value);                                // NOLINT
  PropertyValue(String value) : value_(std::move(value)) {}  // NOLINT
  PropertyValue(Data value) : value_(std::move(value)) {}    // NOLINT
  PropertyValue(Date value) : value_(value) {}               // NOLINT
  PropertyValue(Integer value) : value_(value) {}            // NOLINT
  template <std::integral T>
  requires(!std::same_as<T, bool>) PropertyValue(T value) : value_(Integer(value)) {}  // NOLINT
  PropertyValue(std::same_as<bool> auto value) : value_(value) {}                      // NOLINT
  PropertyValue(std::same_as<double> auto value) : value_(value) {}                    // NOLINT

  /// A string that holds a copy of `text`.
  PropertyValue(std::string_view text) : PropertyValue(std::string(text)) {}  // NOLINT
  PropertyValue(const char* text) : PropertyValue(std::string(text)) {}       // NOLINT
  PropertyValue(std::string text)                                             // NOLINT
      : value_(String{SharedBytes(std::move(text))}) {}

  /// Each yields nothing when the value is of another kind. A dictionary and an array live as long
  /// as any copy of the value, the others as long as the value itself.
  const Dictionary* AsDictionary() const;
  const Array* AsArray() const;
  const Integer* AsInteger() const { return std::get_if<Integer>(&value_); }
  const double* AsReal() const { return std::get_if<double>(&value_); }
  const bool* AsBoolean() const { return std::get_if<bool>(&value_); }
  const Date* AsDate() const { return std::get_if<Date>(&value_); }

  /// The text of a string, the bytes of data. They live as long as any copy of the value.
  std::optional<std::string_view> AsString() const;
  std::optional<std::string_view> AsData() const;

  /// The number that an integer, a real or a boolean is.
  std::optional<Number> AsNumber() const;
  bool IsNumber() const { return AsNumber().has_value(); }

  /// Calls `visitor` with the one of Dictionary, Array, String, Integer, double, bool, Data and
  /// Date that the value is.
  template <typename Visitor>
  auto Visit(Visitor&& visitor) const {
    return std::visit([&](const auto& held) { return visitor(Contents(held)); }, value_);
  }

  /// The same kind and content (numbers of different kinds are not the same value).
  friend bool operator==(const PropertyValue& a, const PropertyValue& b);

 private:
  template <typename Container>
  static const Container& Contents(const std::shared_ptr<const Container>& held) {
    return *held;
  }
  template <typename Leaf>
  static const Leaf& Contents(const Leaf& held) {
    return held;
  }

  std::variant<std::shared_ptr<const Dictionary>, std::shared_ptr<const Array>, String, Integer,
               double, bool, Data, Date>
      value_;
};

/// A key of a dictionary and its value.
struct DictionaryEntry {
  DictionaryEntry(SharedBytes entryKey, PropertyValue entryValue)
      : key(std::move(entryKey)), value(std::move(entryValue)) {}
  DictionaryEntry(std::string_view entryKey, PropertyValue entryValue)
      : DictionaryEntry(SharedBytes(std::string(entryKey)), std::move(entryValue)) {}

  SharedBytes key;
  PropertyValue value;

  friend bool operator==(const DictionaryEntry&, const DictionaryEntry&) = default;
};

/// Values by string key, in the order in which the keys came. Keys are exact and case-sensitive.
class Dictionary {
 public:
  Dictionary() = default;
  Dictionary(std::initializer_list<DictionaryEntry> entries);

  /// Takes the entries over; a key that occurs twice keeps its first place and its last value.
  explicit Dictionary(std::vector<DictionaryEntry> entries);

  /// The value of `key`, or null when it is absent. Valid until the dictionary changes.
  const PropertyValue* Find(std::string_view key) const;

  /// Gives `key` the value. A key that is there keeps its place, a new one comes last.
  void Set(std::string_view key, PropertyValue value);

  /// As Set; an absent value (null) removes the key. `value` may point into another dictionary.
  void SetOrRemove(std::string_view key, const PropertyValue* value);

  /// Sets every entry of `other`, in its order.
  void Merge(const Dictionary& other);

  std::span<const DictionaryEntry> Entries() const { return entries_; }
  std::size_t Size() const { return entries_.size(); }

  friend bool operator==(const Dictionary& a, const Dictionary& b) = default;

 private:
  std::vector<DictionaryEntry> entries_;
};

}  // namespace fernwick
