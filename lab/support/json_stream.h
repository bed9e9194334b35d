#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/json_values.h"
#include "value/property_value.h"
#include "value/text_sink.h"

namespace fernwick::lab {

/// Prints a JSON document as PrintJson does, but as a stream: objects and arrays that may be long
/// are begun and ended, and their contents are added value by value.
class JsonStream {
 public:
  explicit JsonStream(TextSink sink) : sink_(std::move(sink)) {}

  /// Begins an object or an array, "{" or "[": the document itself or an element of an array.
  void Begin(char bracket);

  /// Begins a member of an object.
  void Begin(std::string_view key, char bracket);

  /// Ends the innermost object or array; after the outermost one comes a line feed.
  void End();

  /// Adds an element to an array.
  void Add(const Json& element);

  /// The same, of a property list, which may be large.
  void Add(const PropertyValue& element);

  /// Adds every member of `members` to an object.
  void AddMembers(const Json& members);

  /// Adds a member whose value is that of a property list, which may be large.
  void AddMember(std::string_view key, const PropertyValue& value);

 private:
  struct Level {
    char bracket;
    bool isEmpty = true;
  };

  void BeginLine();
  void BeginMember(std::string_view key);
  void Open(char bracket);

  TextSink sink_;
  std::vector<Level> levels_;
};

}  // namespace fernwick::lab
