#include "lab/survey/csv_cells.h"

#include "lab/support/messages.h"

namespace fernwick::lab {
namespace {

std::string Quoted(std::string_view cell) {
  if (cell.find_first_of(",\"") == std::string_view::npos) return std::string(cell);
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

}  // namespace

std::string CsvText(std::string_view text) {
  const auto cell = PrintableText(text);
  const bool isLikeFormula = text.find_first_of("=+-@") == 0;
  return isLikeFormula ? "'" + cell : cell;
}

std::string CsvValue(const Json& value) {
  if (value.is_null()) return "";
  if (value.is_string()) return CsvText(value.get_ref<const std::string&>());
  return PrintableText(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string CsvLine(const CsvCells& cells) {
  std::string line;
  for (const auto& cell : cells) line += (&cell == cells.data() ? "" : ",") + Quoted(cell);
  return line + "\r\n";
}

}  // namespace fernwick::lab
