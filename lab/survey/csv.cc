#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/format.h"

namespace fernwick::lab {
namespace {

using Cells = std::vector<std::string>;

const Cells ComparisonNames = {"difference", "side"};
const Cells Names = {"file", "outcome",      "status",    "reason",  "board", "revision",   "type",
                     "rid",  "port address", "installed", "version", "image", "diagnostics"};

std::string Quoted(std::string_view cell) {
  if (cell.find_first_of(",\"") == std::string_view::npos) return std::string(cell);
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

// A spreadsheet would compute a text that begins like a formula, which anyone may have written
// who recorded a computer; an apostrophe keeps it a text.
std::string TextCell(std::string_view text) {
  const auto cell = PrintableText(text);
  const bool isLikeFormula = text.find_first_of("=+-@") == 0;
  return isLikeFormula ? "'" + cell : cell;
}

// Empty for an absent value.
std::string CellOf(const Json& value) {
  if (value.is_null()) return "";
  return value.is_string() ? TextCell(value.get<std::string>()) : PrintableText(value.dump());
}

template <typename Value>
std::string CellOf(const std::optional<Value>& value) {
  return value ? CellOf(Json(*value)) : "";
}

std::string DiagnosticsOf(const SurveyRow& row) {
  std::string text;
  for (const auto& [line, count] : row.diagnostics) {
    if (!text.empty()) text += "; ";
    text += std::to_string(count) + " x " + PrintableText(line);
  }
  return text;
}

std::string Line(const Cells& first, const Cells& rest) {
  std::string line;
  for (const auto* cells : {&first, &rest}) {
    for (const auto& cell : *cells) line += Quoted(cell) + ",";
  }
  line.pop_back();
  return line + "\r\n";
}

std::string Lines(const Cells& first, const SurveyRow& row) {
  Cells computer = {TextCell(row.file), std::string(NameOf(row.outcome)),
                    CellOf(row.status), TextCell(row.reason),
                    CellOf(row.board),  CellOf(row.revision)};
  computer.insert(computer.begin(), first.begin(), first.end());
  const auto diagnostics = DiagnosticsOf(row);
  if (row.matches.empty()) return Line(computer, {"", "", "", "", "", "", diagnostics});
  std::string lines;
  for (const auto& match : row.matches) {
    lines += Line(computer, {TextCell(match.type), CellOf(match.rid), CellOf(match.portAddress),
                             CellOf(match.installed), CellOf(match.version), CellOf(match.image),
                             diagnostics});
  }
  return lines;
}

class CsvFormat : public SurveyFormat {
 public:
  CsvFormat(Console& console, bool isComparison)
      : SurveyFormat(console), isComparison_(isComparison) {}

  std::string RowText(const SurveyRow& row) const override { return Lines({}, row); }

  std::string DifferenceText(const SurveyDifference& difference) const override {
    const auto& [expected, found] = difference;
    const auto side = [&](const char* name, const SurveyRow* row) {
      return row == nullptr ? "" : Lines({NameOf(difference), name}, *row);
    };
    return side("expected", expected) + side("found", found);
  }

  void Add(const std::string& text) override {
    if (text.empty()) return;
    if (!hasNames_) Out().Write(Line(isComparison_ ? ComparisonNames : Cells(), Names));
    hasNames_ = true;
    Out().Write(text);
  }

 private:
  bool isComparison_;
  bool hasNames_ = false;
};

}  // namespace

std::unique_ptr<SurveyFormat> MakeCsvFormat(Console& console, bool isComparison) {
  return std::make_unique<CsvFormat>(console, isComparison);
}

}  // namespace fernwick::lab
