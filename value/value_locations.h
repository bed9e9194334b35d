#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "value/arena.h"

namespace fernwick {

struct KeyLocation;

/// Where a value of a property list begins, and the values inside it: a byte offset into the text
/// of an XML or text form, or into a binary file. Like a value it is 16 bytes that are copied
/// freely, and views what its builder owns.
class ValueLocation {
 public:
  ValueLocation() = default;
  ValueLocation(std::size_t start, std::span<const KeyLocation> entries);
  ValueLocation(std::size_t start, std::span<const ValueLocation> elements);

  std::uint32_t offset = 0;

  /// Of a dictionary; a key that occurs twice is there twice. Empty for another value.
  std::span<const KeyLocation> Entries() const;

  /// Of an array. Empty for another value.
  std::span<const ValueLocation> Elements() const;

 private:
  std::uint32_t count_ : 31 = 0;
  std::uint32_t isDictionary_ : 1 = 0;
  const void* children_ = nullptr;
};

static_assert(std::is_trivially_copyable_v<ValueLocation> && sizeof(ValueLocation) == 16);

/// A key of a dictionary, where it begins, and its value. The key is a view into the document.
struct KeyLocation {
  std::string_view key;
  std::uint32_t offset = 0;
  ValueLocation value = {};
};

/// Builds the tree of locations while a reader reads: the reader reports the beginning and the end
/// of each value, and each key before its value. A reader without a builder (null) reports
/// nothing. It owns the tree, also when it is moved. REQUIRES: a document of less than 4 GiB, with
/// fewer than 2^31 values in an array or dictionary.
class LocationBuilder {
 public:
  void BeginValue(std::size_t offset);

  /// The array or dictionary that has just begun has so many elements or entries: no more memory
  /// than that is allocated for them.
  void Expect(std::size_t count);

  void Key(std::string_view key, std::size_t offset);

  /// Returns the location of the value that ends.
  ValueLocation EndValue();

  /// Adds a value in one step: one that has ended before, as when an object is shared.
  void AddValue(const ValueLocation& location);

  /// The location of the one value of the file. REQUIRES: it was read without a fault.
  const ValueLocation& Root() const { return root_; }

  /// The text that the offsets count in, as it was decoded; owned by the document. Empty for a
  /// binary file.
  void SetText(std::string_view text) { text_ = text; }
  std::string_view Text() const { return text_; }

 private:
  // What is inside a value that is being read, in the arena.
  template <typename Location>
  struct Children {
    Location* first = nullptr;
    std::size_t size = 0;
    std::size_t capacity = 0;

    std::span<const Location> All() const { return {first, size}; }
  };

  struct OpenValue {
    std::size_t offset;
    KeyLocation pendingKey = {};
    bool isDictionary = false;
    std::size_t expected = 0;
    Children<KeyLocation> entries = {};
    Children<ValueLocation> elements = {};
  };

  template <typename Location>
  void Append(Children<Location>& children, const Location& location, std::size_t expected);

  std::string_view text_;
  Arena arena_;
  std::vector<OpenValue> open_;  // the innermost last
  ValueLocation root_;
};

}  // namespace fernwick
