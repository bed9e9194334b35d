#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// Cells of comma-separated values, safe to show, not quoted yet.
using CsvCells = std::vector<std::string>;

/// A text. A spreadsheet would compute one that begins like a formula, which anyone who recorded a
/// computer may have written; an apostrophe before it makes it a text.
std::string CsvText(std::string_view text);

/// Any value; empty for null.
std::string CsvValue(const Json& value);

template <typename Value>
std::string CsvValue(const std::optional<Value>& value) {
  return value ? CsvValue(Json(*value)) : "";
}

/// The cells as a line that ends in carriage return and line feed, in quotes where they need them.
std::string CsvLine(const CsvCells& cells);

}  // namespace fernwick::lab
