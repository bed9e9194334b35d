#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "value/number.h"

namespace fernwick {

struct DictionaryEntry;
class PropertyValue;

/// The values of an array, in their order: a view of elements that something else owns, an arena or
/// a container.
class Array {
 public:
  Array() = default;
  Array(std::span<const PropertyValue> elements);  // NOLINT: the elements are the array

  const PropertyValue* begin() const { return elements_; }
  const PropertyValue* end() const;
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const PropertyValue& operator[](std::size_t index) const;

  /// The same values in the same order.
  friend bool operator==(const Array& a, const Array& b);

 private:
  friend class PropertyValue;
  Array(const PropertyValue* elements, std::uint32_t size) : elements_(elements), size_(size) {}

  const PropertyValue* elements_ = nullptr;
  std::uint32_t size_ = 0;
};

/// Values by string key, in the order in which the keys came: a view of entries that something else
/// owns, an arena or a Record. Keys are compared exactly, case-sensitively.
class Dictionary {
 public:
  Dictionary() = default;

  /// REQUIRES: no key is there twice.
  Dictionary(std::span<const DictionaryEntry> entries);  // NOLINT: the entries are the dictionary

  /// The value of `key`, or null when it is absent; owned by the owner of the entries. Compares the
  /// keys one after the other: dictionaries are small, and those that are not are iterated.
  const PropertyValue* Find(std::string_view key) const;

  /// In their order.
  std::span<const DictionaryEntry> Entries() const;
  std::size_t Size() const { return size_; }

  /// The same keys and values in the same order.
  friend bool operator==(const Dictionary& a, const Dictionary& b);

 private:
  friend class PropertyValue;
  Dictionary(const DictionaryEntry* entries, std::uint32_t size) : entries_(entries), size_(size) {}

  const DictionaryEntry* entries_ = nullptr;
  std::uint32_t size_ = 0;
};

/// A view of a byte string.
struct Data {
  std::string_view bytes;
  friend bool operator==(const Data&, const Data&) = default;
};

/// A point in time: seconds since 1970-01-01T00:00:00Z, of the years 1 to 9999. It is none of the
/// kinds that a typed reader or a requirement accepts.
struct Date {
  std::int64_t seconds;
  friend bool operator==(const Date&, const Date&) = default;
};

/// One value of a property list: 16 bytes that are copied freely. A dictionary, an array, a string
/// and data are views: what they view is owned by the document or the record that the value comes
/// from, and must outlive it. A value is never absent: an optional one is a null pointer or an
/// empty optional. REQUIRES: less than 4 GiB of bytes and 2^32 elements; a file has at most 1 GiB.
class PropertyValue {
 public:
  PropertyValue() : PropertyValue(false) {}
  PropertyValue(Dictionary value)  // NOLINT: each kind is a value
      : content_{.entries = value.entries_}, size_(value.size_), kind_(Kind::Dictionary) {}
  PropertyValue(Array value)  // NOLINT
      : content_{.elements = value.elements_}, size_(value.size_), kind_(Kind::Array) {}
  PropertyValue(std::string_view text)  // NOLINT
      : PropertyValue(Kind::String, text) {}
  PropertyValue(const char* text) : PropertyValue(std::string_view(text)) {}  // NOLINT
  PropertyValue(const std::string& text)                                      // NOLINT
      : PropertyValue(std::string_view(text)) {}
  PropertyValue(std::string&& text) = delete;                            // the view would dangle
  PropertyValue(Data value) : PropertyValue(Kind::Data, value.bytes) {}  // NOLINT
  PropertyValue(Date value) : content_{.date = value}, kind_(Kind::Date) {}  // NOLINT
  PropertyValue(Integer value)                                               // NOLINT
      : content_{.bits = value.Bits()}, kind_(Kind::Integer), isNegative_(value.IsNegative()) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) PropertyValue(T value)  // NOLINT
      : PropertyValue(Integer(value)) {}
  PropertyValue(std::same_as<bool> auto value)  // NOLINT
      : content_{.boolean = value}, kind_(Kind::Boolean) {}
  PropertyValue(std::same_as<double> auto value)  // NOLINT
      : content_{.real = value}, kind_(Kind::Real) {}

  /// Each is empty when the value is of another kind.
  std::optional<Dictionary> AsDictionary() const {
    if (kind_ != Kind::Dictionary) return std::nullopt;
    return Dictionary(content_.entries, size_);
  }
  std::optional<Array> AsArray() const {
    if (kind_ != Kind::Array) return std::nullopt;
    return Array(content_.elements, size_);
  }
  std::optional<std::string_view> AsString() const {
    if (kind_ != Kind::String) return std::nullopt;
    return Bytes();
  }
  std::optional<std::string_view> AsData() const {
    if (kind_ != Kind::Data) return std::nullopt;
    return Bytes();
  }
  std::optional<Integer> AsInteger() const {
    if (kind_ != Kind::Integer) return std::nullopt;
    return Integer::OfBits(content_.bits, isNegative_);
  }
  std::optional<double> AsReal() const {
    if (kind_ != Kind::Real) return std::nullopt;
    return content_.real;
  }
  std::optional<bool> AsBoolean() const {
    if (kind_ != Kind::Boolean) return std::nullopt;
    return content_.boolean;
  }
  std::optional<Date> AsDate() const {
    if (kind_ != Kind::Date) return std::nullopt;
    return content_.date;
  }

  /// The number; empty unless the value is an integer, a real or a boolean.
  std::optional<Number> AsNumber() const;
  bool IsNumber() const {
    return kind_ == Kind::Integer || kind_ == Kind::Real || kind_ == Kind::Boolean;
  }

  /// Calls `visitor` with the content: a Dictionary, Array, std::string_view (a string), Integer,
  /// double, bool, Data or Date. Returns what it returns.
  template <typename Visitor>
  auto Visit(Visitor&& visitor) const {
    switch (kind_) {
      case Kind::Dictionary: return visitor(Dictionary(content_.entries, size_));
      case Kind::Array: return visitor(Array(content_.elements, size_));
      case Kind::String: return visitor(Bytes());
      case Kind::Integer: return visitor(Integer::OfBits(content_.bits, isNegative_));
      case Kind::Real: return visitor(content_.real);
      case Kind::Boolean: return visitor(content_.boolean);
      case Kind::Data: return visitor(Data{Bytes()});
      default: return visitor(content_.date);
    }
  }

  /// The same kind and content (numbers of different kinds are not the same value).
  friend bool operator==(const PropertyValue& a, const PropertyValue& b);

 private:
  enum class Kind : std::uint8_t { Dictionary, Array, String, Integer, Real, Boolean, Data, Date };

  union Content {
    const DictionaryEntry* entries;  // size_ of them
    const PropertyValue* elements;   // size_ of them
    const char* bytes;               // of a string and of data, size_ of them
    std::uint64_t bits;              // of an integer
    double real;
    bool boolean;
    Date date;
  };

  PropertyValue(Kind kind, std::string_view bytes)
      : content_{.bytes = bytes.data()},
        size_(static_cast<std::uint32_t>(bytes.size())),
        kind_(kind) {}

  std::string_view Bytes() const { return {content_.bytes, size_}; }

  Content content_;
  std::uint32_t size_ = 0;
  Kind kind_;
  bool isNegative_ = false;  // as an integer
};

static_assert(std::is_trivially_copyable_v<PropertyValue> && sizeof(PropertyValue) == 16);

/// A key of a dictionary and its value. The key is a view, like the value.
struct DictionaryEntry {
  std::string_view key;
  PropertyValue value;

  friend bool operator==(const DictionaryEntry&, const DictionaryEntry&) = default;
};

inline Array::Array(std::span<const PropertyValue> elements)
    : Array(elements.data(), static_cast<std::uint32_t>(elements.size())) {}
inline const PropertyValue* Array::end() const {
  return elements_ + size_;
}
inline const PropertyValue& Array::operator[](std::size_t index) const {
  return elements_[index];
}

inline Dictionary::Dictionary(std::span<const DictionaryEntry> entries)
    : Dictionary(entries.data(), static_cast<std::uint32_t>(entries.size())) {}
inline std::span<const DictionaryEntry> Dictionary::Entries() const {
  return {entries_, size_};
}
inline const PropertyValue* Dictionary::Find(std::string_view key) const {
  for (const auto& entry : Entries()) {
    if (entry.key == key) return &entry.value;
  }
  return nullptr;
}

/// Up to this many entries, comparing their keys with each other costs less than sorting them.
inline constexpr std::size_t FewEntries = 32;

/// Removes repeated keys in place: a key that occurs twice keeps its first position and its last
/// value. Returns the entries that remain, at the front of `entries`. Costs n log n for n entries,
/// whatever the keys.
std::span<DictionaryEntry> WithoutRepeatedKeys(std::span<DictionaryEntry> entries);

}  // namespace fernwick
