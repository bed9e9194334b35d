#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "lab/support/messages.h"
#include "value/result.h"

namespace fernwick::lab {

/// A JSON document as it is read: its objects are searched in logarithmic time, and their keys are
/// sorted.
using SortedJson = nlohmann::json;

/// Whether arrays and objects are nested deeper than in any document of the lab. To print such a
/// value, which is recursive, may exhaust the stack.
bool IsTooDeep(std::string_view json);

/// Parses a document. The error has its location where there is one.
Result<SortedJson> ParseJson(std::string_view json);

/// Reads a file that contains a document.
Result<SortedJson, LabError> ReadJsonFile(const std::string& path);

}  // namespace fernwick::lab
