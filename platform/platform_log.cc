#include "platform/platform_log.h"

#include <algorithm>

#include "value/textual_dump.h"

namespace fernwick {
namespace {

std::string TextOf(const PropertyValue* value) {
  if (value == nullptr) return AbsentText;
  if (const auto text = value->AsString()) return std::string(*text);
  return DumpText(*value);
}

std::string TextOf(std::optional<std::string_view> text) {
  return std::string(text.value_or(AbsentText));
}

std::string TextOf(unsigned long number) {
  return std::to_string(number);
}

constexpr std::string_view Directives[] = {"%@", "%lu"};

// The directive at the start of `text`, or an empty text.
std::string_view DirectiveAt(std::string_view text) {
  for (const auto directive : Directives) {
    if (text.starts_with(directive)) return directive;
  }
  return {};
}

}  // namespace

std::string FormatLogMessage(std::string_view format,
                             std::initializer_list<LogArgument> arguments) {
  std::string message;
  const auto* argument = arguments.begin();
  while (!format.empty()) {
    const auto directive = DirectiveAt(format);
    if (directive.empty() || argument == arguments.end()) {
      message.push_back(format.front());
      format.remove_prefix(1);
      continue;
    }
    message += std::visit([](auto value) { return TextOf(value); }, *argument++);
    format.remove_prefix(directive.size());
  }
  return message;
}

void PlatformLog(Console& console, std::string_view format,
                 std::initializer_list<LogArgument> arguments) {
  console.Log(FormatLogMessage(format, arguments));
}

}  // namespace fernwick
