#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace fernwick {

struct KeyLocation;

/// Where a value of a property list begins, and the values inside it: a byte offset into the text
/// of an XML or text form, or into a binary file.
struct ValueLocation {
  std::size_t offset = 0;
  std::vector<KeyLocation> entries;     // of a dictionary; a key that occurs twice is there twice
  std::vector<ValueLocation> elements;  // of an array
};

/// A key of a dictionary, where it begins, and its value. The key is a view into the document.
struct KeyLocation {
  std::string_view key;
  std::size_t offset = 0;
  ValueLocation value = {};
};

/// Builds the tree of locations while a reader reads: the reader reports the beginning and the end
/// of each value, and each key before its value. A reader without a builder (null) reports
/// nothing.
class LocationBuilder {
 public:
  void BeginValue(std::size_t offset);
  void EndValue();
  void Key(std::string_view key, std::size_t offset);

  /// The location of the one value of the file. REQUIRES: it was read without a fault.
  ValueLocation TakeRoot();

  /// The text that the offsets count in, as it was decoded; owned by the document. Empty for a
  /// binary file.
  void SetText(std::string_view text) { text_ = text; }
  std::string_view Text() const { return text_; }

 private:
  struct OpenValue {
    ValueLocation location;
    KeyLocation pendingKey;
    bool isDictionary = false;
  };

  std::string_view text_;
  std::vector<OpenValue> open_;  // the innermost last
  ValueLocation root_;
};

}  // namespace fernwick
