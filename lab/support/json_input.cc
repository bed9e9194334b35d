#include "lab/support/json_input.h"

#include <algorithm>
#include <cstddef>

#include "platform/file_system.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {

bool IsTooDeep(std::string_view json) {
  constexpr std::size_t MaxDepth = 1024;
  std::size_t depth = 0;
  bool isInText = false;
  for (std::size_t i = 0; i < json.size(); ++i) {
    const char c = json[i];
    if (isInText && c == '\\') {
      ++i;
    } else if (c == '"') {
      isInText = !isInText;
    } else if (!isInText && (c == '[' || c == '{')) {
      if (++depth > MaxDepth) return true;
    } else if (!isInText && (c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return false;
}

Result<SortedJson> ParseJson(std::string_view json) {
  if (IsTooDeep(json)) return Error{"arrays and objects are nested too deeply"};
  try {
    return SortedJson::parse(json);
  } catch (const SortedJson::parse_error& error) {
    const auto offset = error.byte - std::min<std::size_t>(error.byte, 1);
    return ErrorAt(json, std::min(offset, json.size()), "this is no JSON");
  } catch (const SortedJson::exception&) {  // a number
    return Error{"a number is out of range"};
  }
}

Result<SortedJson, LabError> ReadJsonFile(const std::string& path) {
  const auto text = ReadWholeFile(path);
  if (!text) return LabError{text.Error(), UnreadableStatus(text.Error())};
  auto json = ParseJson(*text);
  if (!json) return LabError{json.Error(), LabStatus::MalformedInput};
  return *std::move(json);
}

}  // namespace fernwick::lab
