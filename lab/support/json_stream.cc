#include "lab/support/json_stream.h"

namespace fernwick::lab {

void JsonStream::Begin(char bracket) {
  if (!levels_.empty()) BeginLine();
  Open(bracket);
}

void JsonStream::Begin(std::string_view key, char bracket) {
  BeginLine();
  sink_(Print(Json(key)) + ": ");
  Open(bracket);
}

void JsonStream::End() {
  const auto [bracket, isEmpty] = levels_.back();
  levels_.pop_back();
  if (!isEmpty) sink_("\n" + std::string(2 * levels_.size(), ' '));
  sink_(bracket == '{' ? "}" : "]");
  if (levels_.empty()) sink_("\n");
}

void JsonStream::Add(const Json& element) {
  BeginLine();
  sink_(Print(element));
}

void JsonStream::AddMembers(const Json& members) {
  for (const auto& [key, value] : members.items()) {
    BeginLine();
    sink_(Print(Json(key)) + ": " + Print(value));
  }
}

// Starts the line of the next element or member of the innermost object or array.
void JsonStream::BeginLine() {
  auto& isEmpty = levels_.back().isEmpty;
  sink_((isEmpty ? "\n" : ",\n") + std::string(2 * levels_.size(), ' '));
  isEmpty = false;
}

void JsonStream::Open(char bracket) {
  sink_(std::string_view(&bracket, 1));
  levels_.push_back({bracket});
}

std::string JsonStream::Print(const Json& value) const {
  return PrintJsonInside(value, 2 * levels_.size());
}

}  // namespace fernwick::lab
