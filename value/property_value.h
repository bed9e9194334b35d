#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "value/dictionary_key.h"
#include "value/number.h"
#include "value/share.h"
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
/// or an empty optional says so. Copies share what they hold, however large it is. A value that has
/// been moved from may only be given another or be destroyed. REQUIRES: a string and data have less
/// than 4 GiB; a file has no more than 1 GiB.
class PropertyValue {
 public:
  /// A dictionary and an array are taken over, the bytes of a string and of data are shared.
  PropertyValue(Dictionary value);    // NOLINT: each kind is a value
  PropertyValue(Array value);         // NOLINT
  PropertyValue(const String& value)  // NOLINT
      : PropertyValue(Kind::String, value.text) {}
  PropertyValue(const Data& value) : PropertyValue(Kind::Data, value.bytes) {}  // NOLINT
  PropertyValue(Date value) : content_{.date = value}, kind_(Kind::Date) {}     // NOLINT
  PropertyValue(Integer value)                                                  // NOLINT
      : content_{.bits = value.Bits()}, kind_(Kind::Integer), isNegative_(value.IsNegative()) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) PropertyValue(T value)
      : PropertyValue(Integer(value)) {}  // NOLINT
  PropertyValue(std::same_as<bool> auto value)
      : content_{.boolean = value}, kind_(Kind::Boolean) {}  // NOLINT
  PropertyValue(std::same_as<double> auto value)
      : content_{.real = value}, kind_(Kind::Real) {}  // NOLINT

  /// A string that holds a copy of `text`, or takes it over.
  PropertyValue(std::string_view text) : PropertyValue(std::string(text)) {}  // NOLINT
  PropertyValue(const char* text) : PropertyValue(std::string(text)) {}       // NOLINT
  PropertyValue(std::string text)                                             // NOLINT
      : PropertyValue(Kind::String, SharedBytes(std::move(text))) {}

  PropertyValue(const PropertyValue&) = default;
  PropertyValue(PropertyValue&&) noexcept = default;
  PropertyValue& operator=(PropertyValue other) noexcept {  // which may be part of this one
    share_ = std::move(other.share_);
    content_ = other.content_;
    size_ = other.size_;
    kind_ = other.kind_;
    isNegative_ = other.isNegative_;
    return *this;
  }
  ~PropertyValue() = default;

  /// Each yields nothing when the value is of another kind. A dictionary and an array live as long
  /// as any copy of the value, what else is pointed to as long as the value itself.
  const Dictionary* AsDictionary() const {
    return Is(Kind::Dictionary) ? content_.dictionary : nullptr;
  }
  const Array* AsArray() const { return Is(Kind::Sequence) ? content_.array : nullptr; }
  std::optional<Integer> AsInteger() const {
    if (!Is(Kind::Integer)) return std::nullopt;
    return WholeNumber();
  }
  const double* AsReal() const { return Is(Kind::Real) ? &content_.real : nullptr; }
  const bool* AsBoolean() const { return Is(Kind::Boolean) ? &content_.boolean : nullptr; }
  const Date* AsDate() const { return Is(Kind::Date) ? &content_.date : nullptr; }

  /// The text of a string, the bytes of data. They live as long as any copy of the value.
  std::optional<std::string_view> AsString() const { return BytesOf(Kind::String); }
  std::optional<std::string_view> AsData() const { return BytesOf(Kind::Data); }

  /// The number that an integer, a real or a boolean is.
  std::optional<Number> AsNumber() const;
  bool IsNumber() const { return Is(Kind::Integer) || Is(Kind::Real) || Is(Kind::Boolean); }

  /// Calls `visitor` with the one of Dictionary, Array, String, Integer, double, bool, Data and
  /// Date that the value is. Returns what it returns.
  template <typename Visitor>
  auto Visit(Visitor&& visitor) const {
    switch (kind_) {
      case Kind::Dictionary: return visitor(*content_.dictionary);
      case Kind::Sequence: return visitor(*content_.array);
      case Kind::String: return visitor(String{SharedBytes(share_, Bytes())});
      case Kind::Integer: return visitor(WholeNumber());
      case Kind::Real: return visitor(content_.real);
      case Kind::Boolean: return visitor(content_.boolean);
      case Kind::Data: return visitor(Data{SharedBytes(share_, Bytes())});
      default: return visitor(content_.date);
    }
  }

  /// The same kind and content (numbers of different kinds are not the same value).
  friend bool operator==(const PropertyValue& a, const PropertyValue& b);

 private:
  enum class Kind : std::uint8_t {
    Dictionary,
    Sequence,
    String,
    Integer,
    Real,
    Boolean,
    Data,
    Date
  };

  // Dictionary, array and bytes are what share_ holds; the others hold it themselves. All are
  // plain, so that values move as fast as the numbers that they are made of: a reader moves each a
  // few times. And they are small: who goes through many waits for the memory that they take.
  union Content {
    const Dictionary* dictionary;
    const Array* array;
    const char* bytes;   // of a string and of data, size_ of them
    std::uint64_t bits;  // of an integer
    double real;
    bool boolean;
    Date date;
  };

  PropertyValue(Kind kind, const SharedBytes& bytes)
      : share_(bytes.Held()),
        content_{.bytes = bytes.View().data()},
        size_(static_cast<std::uint32_t>(bytes.View().size())),
        kind_(kind) {}

  bool Is(Kind kind) const { return kind_ == kind; }

  std::optional<std::string_view> BytesOf(Kind kind) const {
    if (!Is(kind)) return std::nullopt;
    return Bytes();
  }

  std::string_view Bytes() const { return {content_.bytes, size_}; }

  Integer WholeNumber() const { return Integer::OfBits(content_.bits, isNegative_); }

  Share share_;  // in nothing for the kinds that hold their content themselves
  Content content_;
  std::uint32_t size_ = 0;
  Kind kind_;
  bool isNegative_ = false;  // as an integer
};

/// A key of a dictionary and its value.
struct DictionaryEntry {
  DictionaryEntry(DictionaryKey entryKey, PropertyValue entryValue)
      : key(std::move(entryKey)), value(std::move(entryValue)) {}
  DictionaryEntry(std::string_view entryKey, PropertyValue entryValue)
      : DictionaryEntry(DictionaryKey(entryKey), std::move(entryValue)) {}

  DictionaryKey key;
  PropertyValue value;

  friend bool operator==(const DictionaryEntry&, const DictionaryEntry&) = default;
};

/// Values by string key, in the order in which the keys came. Keys are exact and case-sensitive.
class Dictionary {
 public:
  Dictionary() = default;

  /// A key that occurs twice keeps its first place and its last value.
  Dictionary(std::initializer_list<DictionaryEntry> entries);
  explicit Dictionary(std::vector<DictionaryEntry> entries);

  /// The value of `key`, or null when it is absent. Valid until the dictionary changes.
  const PropertyValue* Find(std::string_view key) const;

  /// Gives `key` the value. A key that is there keeps its place, a new one comes last.
  void Set(std::string_view key, PropertyValue value);

  /// As Set, with a copy; an absent value (null) removes the key. `value` may point into any
  /// dictionary.
  void SetOrRemove(std::string_view key, const PropertyValue* value);

  /// Sets every entry of `other`, in its order.
  void Merge(const Dictionary& other);

  /// In their order. Valid until the dictionary changes.
  std::span<const DictionaryEntry> Entries() const { return entries_; }
  std::size_t Size() const { return entries_.size(); }

  friend bool operator==(const Dictionary& a, const Dictionary& b) = default;

 private:
  std::vector<DictionaryEntry> entries_;
};

}  // namespace fernwick
