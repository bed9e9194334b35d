#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/json_values.h"
#include "lab/support/messages.h"
#include "value/result.h"

namespace fernwick::lab {

/// Parses a JSON document. A key that occurs twice keeps its first position and its last value.
/// Arrays and objects that are nested more than 1024 deep are an error; the error of a malformed
/// document has its location. Costs n log n, however many keys an object has.
Result<Json> ParseJson(std::string_view text);

/// Reads a file that contains a document.
Result<Json, LabError> ReadJsonFile(const std::string& path);

/// The member of an object; null where it has none of that name, and of any other value.
const Json& MemberOf(const Json& object, const char* key);

/// The strings of an array of strings; empty for any other value.
std::optional<std::vector<std::string>> StringsOf(const Json& array);

}  // namespace fernwick::lab
