#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// Takes a text piece by piece, so that nobody need hold a long one as a whole.
using TextSink = std::function<void(std::string_view)>;

/// Prints a JSON document as PrintJson does, without holding it as a whole: objects and arrays that
/// may grow long are begun and ended, and what stands in them is added value by value.
class JsonStream {
 public:
  explicit JsonStream(TextSink sink) : sink_(std::move(sink)) {}

  /// Begins what `bracket` opens, "{" or "[": the document itself or an element of an array.
  void Begin(char bracket);

  /// Begins a member of an object.
  void Begin(std::string_view key, char bracket);

  /// Ends what was begun last; the document with a line feed.
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
