#include "lab/support/json_stream.h"

#include <string>

namespace fernwick::lab {

void JsonStream::Begin(char bracket) {
  if (!levels_.empty()) BeginLine();
  Open(bracket);
}

void JsonStream::Begin(std::string_view key, char bracket) {
  BeginMember(key);
  Open(bracket);
}

void JsonStream::End() {
  const auto [bracket, isEmpty] = levels_.back();
  levels_.pop_back();
  if (!isEmpty) sink_("\n" + JsonIndentation(levels_.size()));
  sink_(bracket == '{' ? "}" : "]");
  if (levels_.empty()) sink_("\n");
}

void JsonStream::Add(const Json& element) {
  BeginLine();
  PrintJsonAt(levels_.size(), element, sink_);
}

void JsonStream::Add(const PropertyValue& element) {
  BeginLine();
  PrintJsonAt(levels_.size(), element, sink_);
}

void JsonStream::AddMembers(const Json& members) {
  for (const auto& [key, value] : members.items()) {
    BeginMember(key);
    PrintJsonAt(levels_.size(), value, sink_);
  }
}

void JsonStream::AddMember(std::string_view key, const PropertyValue& value) {
  BeginMember(key);
  PrintJsonAt(levels_.size(), value, sink_);
}

// Starts the line of the next element or member of the innermost object or array.
void JsonStream::BeginLine() {
  auto& isEmpty = levels_.back().isEmpty;
  sink_((isEmpty ? "\n" : ",\n") + JsonIndentation(levels_.size()));
  isEmpty = false;
}

void JsonStream::BeginMember(std::string_view key) {
  BeginLine();
  PrintJsonAt(levels_.size(), Json(key), sink_);
  sink_(": ");
}

void JsonStream::Open(char bracket) {
  sink_(std::string_view(&bracket, 1));
  levels_.push_back({bracket});
}

}  // namespace fernwick::lab
