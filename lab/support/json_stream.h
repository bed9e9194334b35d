#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// Accepts a text in parts, so that a long one is never in memory as a whole.
using TextSink = std::function<void(std::string_view)>;

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

  /// Adds every member of `members` to an object.
  void AddMembers(const Json& members);

 private:
  struct Level {
    char bracket;
    bool isEmpty = true;
  };

  void BeginLine();
  void Open(char bracket);
  std::string Print(const Json& value) const;

  TextSink sink_;
  std::vector<Level> levels_;
};

}  // namespace fernwick::lab
