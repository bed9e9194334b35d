#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "value/shared_bytes.h"
#include "value/unicode/source_text.h"

namespace fernwick {

struct KeyPlace;

/// Where a value of a property list begins, and the values inside it: a byte offset into the text
/// of an XML or text form, or into a binary file.
struct ValuePlace {
  std::size_t offset = 0;
  std::vector<KeyPlace> entries;     // of a dictionary; a key that occurs twice is there twice
  std::vector<ValuePlace> elements;  // of an array
};

/// A key of a dictionary, where it begins, and its value.
struct KeyPlace {
  SharedBytes key;
  std::size_t offset = 0;
  ValuePlace value = {};
};

/// Learns from a reader where the values stand. A reader that only wants the value gives none
/// (null). Told of the beginning and the end of each value, and of each key before its value.
class PlaceRecorder {
 public:
  void BeginValue(std::size_t offset);
  void EndValue();
  void Key(SharedBytes key, std::size_t offset);

  /// The place of the one value of the file. REQUIRES: it was read without a fault.
  ValuePlace TakeRoot();

  /// The text that the offsets count in, as it was decoded. Empty for a binary file.
  void SetText(SourceText text) { text_ = std::move(text); }
  std::string_view Text() const { return text_.text; }

 private:
  struct OpenValue {
    ValuePlace place;
    KeyPlace pendingKey;
    bool isDictionary = false;
  };

  SourceText text_;
  std::vector<OpenValue> open_;  // the innermost last
  ValuePlace root_;
};

}  // namespace fernwick
