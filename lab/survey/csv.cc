#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/csv_cells.h"
#include "lab/survey/format.h"

namespace fernwick::lab {
namespace {

const CsvCells ComparisonNames = {"difference", "side"};
const CsvCells Names = {"file",
                        "outcome",
                        "status",
                        "reason",
                        "board",
                        "revision",
                        "type",
                        "rid",
                        "port address",
                        "installed",
                        "version",
                        "image",
                        "diagnostics",
                        "image missing",
                        "priority",
                        "SetNVRAM",
                        "ClearNVRAM",
                        "options",
                        "class",
                        "miss key",
                        "miss",
                        "miss type",
                        "miss personality",
                        "miss controller"};

std::string DiagnosticsOf(const SurveyRow& row) {
  std::string text;
  for (const auto& [line, count] : row.diagnostics) {
    if (!text.empty()) text += "; ";
    text += std::to_string(count) + " x " + PrintableText(line);
  }
  return text;
}

CsvCells Joined(const CsvCells& first, const CsvCells& second, const CsvCells& third) {
  auto cells = first;
  cells.insert(cells.end(), second.begin(), second.end());
  cells.insert(cells.end(), third.begin(), third.end());
  return cells;
}

// The cells of the plan, in each line of a computer that has one.
CsvCells PlanCells(const SurveyRow& row) {
  if (!row.plan) return {"", "", "", ""};
  const auto& plan = *row.plan;
  return {std::to_string(plan.priority), CsvValue(plan.setNvram), CsvValue(plan.clearNvram),
          CsvText(plan.options)};
}

CsvCells ClassCells(const SurveyRow& row) {
  CsvCells cells = {row.computerClass ? std::string(NameOf(*row.computerClass)) : ""};
  if (!row.miss) return Joined(cells, {"", "", "", "", ""}, {});
  const auto& miss = *row.miss;
  return Joined(cells,
                {CsvText(miss.key), CsvText(miss.text), CsvText(miss.type),
                 std::to_string(miss.personality), CsvText(miss.controller)},
                {});
}

// Shortens a long cell that is the same in each line of a computer: only the first has it whole.
void Shorten(std::string& cell) {
  constexpr std::size_t MaxRepeated = 1000;
  if (cell.size() > MaxRepeated) cell = "(as in the first line)";
}

std::string Lines(const CsvCells& first, const SurveyRow& row) {
  const auto computer =
      Joined(first,
             {CsvText(row.file), std::string(NameOf(row.outcome)), CsvValue(row.status),
              CsvText(row.reason), CsvValue(row.board), CsvValue(row.revision)},
             {});
  const auto diagnostics = DiagnosticsOf(row);
  auto planCells = Joined(PlanCells(row), ClassCells(row), {});
  if (row.matches.empty()) {
    return CsvLine(Joined(computer, {"", "", "", "", "", "", diagnostics, ""}, planCells));
  }
  std::string lines;
  auto diagnosticsCell = diagnostics;
  for (const auto& match : row.matches) {
    const CsvCells cells = {CsvText(match.type),
                            CsvValue(match.rid),
                            CsvValue(match.portAddress),
                            CsvValue(match.installed),
                            CsvValue(match.version),
                            CsvValue(match.image),
                            diagnosticsCell,
                            match.isImageMissing ? "yes" : ""};
    lines += CsvLine(Joined(computer, cells, planCells));
    Shorten(diagnosticsCell);
    for (auto& cell : planCells) Shorten(cell);
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
    if (!hasNames_)
      Out().Write(CsvLine(Joined(isComparison_ ? ComparisonNames : CsvCells(), Names, {})));
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
