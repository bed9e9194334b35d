#pragma once

#include <string>
#include <string_view>

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

}  // namespace fernwick::lab
