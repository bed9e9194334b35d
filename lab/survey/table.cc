// A column is as wide as its widest cell, up to a limit, so the lines are kept until the last one
// is known: memory is linear in the table. Two versions of a computer's lines are compared by their
// common prefix and suffix, in linear time: a computer has few lines, and what changes is together.

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/format.h"
#include "lab/survey/text.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t ColumnCount = 11;
constexpr std::size_t MaxColumnWidth = 60;
using Cells = std::array<std::string, ColumnCount>;

const Cells Names = {"FILE", "BOARD", "REV",       "STATUS",  "CLASS", "TYPE",
                     "RID",  "PORT",  "INSTALLED", "VERSION", "IMAGE"};
constexpr std::size_t FirstOfMatch = 5;

// A line is either cells with a tab before each, or a text across the columns. No text that is safe
// to show contains a tab.
constexpr char Separator = '\t';

template <typename Value>
std::string CellOf(const std::optional<Value>& value) {
  return value ? CellText(Json(*value)) : "-";
}

void SetMatch(Cells& cells, const SurveyMatch& match) {
  cells[FirstOfMatch] = PrintableText(match.type);
  cells[FirstOfMatch + 1] = CellText(match.rid);
  cells[FirstOfMatch + 2] = CellText(match.portAddress);
  cells[FirstOfMatch + 3] = CellText(match.installed);
  cells[FirstOfMatch + 4] = CellText(match.version);
  cells[FirstOfMatch + 5] = CellText(match.image);
}

// The lines of one row that the other lacks: all between their common first and last lines.
struct ChangedLines {
  std::size_t begin;
  std::size_t expectedEnd;
  std::size_t foundEnd;
};

using Lines = std::vector<std::string>;

ChangedLines FindChange(const Lines& expected, const Lines& found) {
  const auto begin =
      static_cast<std::size_t>(std::ranges::mismatch(expected, found).in1 - expected.begin());
  ChangedLines change{begin, expected.size(), found.size()};
  while (change.expectedEnd > begin && change.foundEnd > begin &&
         expected[change.expectedEnd - 1] == found[change.foundEnd - 1]) {
    --change.expectedEnd;
    --change.foundEnd;
  }
  return change;
}

std::string CellsLine(const Cells& cells) {
  std::string line;
  for (const auto& cell : cells) line += Separator + cell;
  return line + "\n";
}

// Removes the cells from the start of the line.
Cells RemoveCells(std::string_view& line) {
  Cells cells;
  for (auto& cell : cells) {
    line.remove_prefix(1);
    cell = line.substr(0, line.find(Separator));
    line.remove_prefix(cell.size());
  }
  return cells;
}

// Calls `visit` with each line of the text, without its line feed.
template <typename Visit>
void ForEachLine(std::string_view text, Visit visit) {
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    visit(line);
    text.remove_prefix(line.size() + 1);
  }
}

class TableFormat : public SurveyFormat {
 public:
  TableFormat(Console& console, bool isComparison, bool isWide)
      : SurveyFormat(console),
        isComparison_(isComparison),
        maxWidth_(isWide ? std::string::npos : MaxColumnWidth) {
    Widen(Names);
  }

  std::string RowText(const SurveyRow& row) const override {
    Cells cells = {PrintableText(row.file), CellOf(row.board), CellOf(row.revision),
                   StatusText(row), std::string(NameOf(row.computerClass.value()))};
    std::string text;
    if (row.matches.empty()) text += CellsLine(cells);
    for (const auto& match : row.matches) {
      SetMatch(cells, match);
      text += CellsLine(cells);
      for (std::size_t i = 0; i < FirstOfMatch; ++i) cells[i].clear();
    }
    for (const auto& match : row.matches) {
      if (match.isImageMissing) text += "    " + MissingImageText(match) + "\n";
    }
    if (row.miss) text += "    nearest miss: " + MissText(*row.miss) + "\n";
    if (row.outcome == Outcome::Refused) text += "    " + PrintableText(row.reason) + "\n";
    for (const auto& diagnostic : row.diagnostics) {
      text += "    " + DiagnosticText(diagnostic) + "\n";
    }
    return text;
  }

  std::string DifferenceText(const SurveyDifference& difference) const override {
    const auto& [expected, found] = difference;
    auto text = PrintableText((found == nullptr ? expected : found)->file) + ": " +
                NameOf(difference) + "\n";
    const auto before = expected == nullptr ? Lines() : DescribeLines(*expected);
    const auto after = found == nullptr ? Lines() : DescribeLines(*found);
    const auto [begin, expectedEnd, foundEnd] = FindChange(before, after);
    for (auto i = begin; i < expectedEnd; ++i) text += "  - " + before[i] + "\n";
    for (auto i = begin; i < foundEnd; ++i) text += "  + " + after[i] + "\n";
    return text;
  }

  void Add(const std::string& text) override {
    if (isComparison_) return Out().Write(text);
    ForEachLine(text, [this](std::string_view line) {
      if (line.starts_with(Separator)) Widen(RemoveCells(line));
    });
    kept_ += text;
  }

  void Finish(std::size_t, std::size_t) override {
    if (isComparison_) return;
    WriteCells(Names);
    ForEachLine(kept_, [this](std::string_view line) {
      if (line.starts_with(Separator)) return WriteCells(RemoveCells(line));
      Out().Write(line);
      Out().Write("\n");
    });
  }

 private:
  void Widen(const Cells& cells) {
    for (std::size_t i = 0; i < ColumnCount; ++i) {
      widths_[i] = std::max(widths_[i], std::min(CountCharacters(cells[i]), maxWidth_));
    }
  }

  void WriteCells(const Cells& cells) {
    std::string line;
    for (std::size_t i = 0; i < ColumnCount; ++i) {
      line += cells[i];
      line.append(std::max(widths_[i], CountCharacters(cells[i])) + 2 - CountCharacters(cells[i]),
                  ' ');
    }
    line.resize(line.find_last_not_of(' ') + 1);
    Out().Write(line + "\n");
  }

  bool isComparison_;
  std::size_t maxWidth_;
  std::string kept_;  // the texts of a survey without an expectation
  std::array<std::size_t, ColumnCount> widths_ = {};
};

}  // namespace

std::unique_ptr<SurveyFormat> MakeTableFormat(Console& console, bool isComparison, bool isWide) {
  return std::make_unique<TableFormat>(console, isComparison, isWide);
}

}  // namespace fernwick::lab
