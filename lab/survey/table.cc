#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/messages.h"
#include "lab/survey/format.h"
#include "lab/survey/row_spool.h"
#include "lab/survey/text.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t ColumnCount = 10;
using Cells = std::array<std::string, ColumnCount>;

const Cells Names = {"FILE", "BOARD", "REV",       "STATUS",  "TYPE",
                     "RID",  "PORT",  "INSTALLED", "VERSION", "IMAGE"};

// A kept line begins with its kind: cells with a tab before each, or a text across the columns. No
// text that is safe to show holds a tab.
constexpr char Separator = '\t';

std::size_t CharacterCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

template <typename Value>
std::string CellOf(const std::optional<Value>& value) {
  return value ? CellText(Json(*value)) : "-";
}

void SetMatch(Cells& cells, const SurveyMatch& match) {
  cells[4] = PrintableText(match.type);
  cells[5] = CellText(match.rid);
  cells[6] = CellText(match.portAddress);
  cells[7] = CellText(match.installed);
  cells[8] = CellText(match.version);
  cells[9] = CellText(match.image);
}

// The lines of one row that the other lacks stand between what both begin and end with.
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

class TableFormat : public SurveyFormat {
 public:
  explicit TableFormat(Output& out) : out_(out) { Widen(Names); }

  void AddRow(const SurveyRow& row) override {
    hasRows_ = true;
    Cells cells = {PrintableText(row.file), CellOf(row.board), CellOf(row.revision),
                   StatusText(row)};
    if (row.matches.empty()) Keep(cells);
    for (const auto& match : row.matches) {
      SetMatch(cells, match);
      Keep(cells);
      for (std::size_t i = 0; i < 4; ++i) cells[i].clear();
    }
    if (row.outcome == Outcome::Refused) spool_.Add("    " + PrintableText(row.reason));
    for (const auto& diagnostic : row.diagnostics) {
      spool_.Add("    " + DiagnosticText(diagnostic));
    }
  }

  void AddDifference(const SurveyDifference& difference) override {
    const auto& [expected, found] = difference;
    out_.Write(PrintableText((found == nullptr ? expected : found)->file) + ": " +
               NameOf(difference) + "\n");
    const auto before = expected == nullptr ? Lines() : DescribeLines(*expected);
    const auto after = found == nullptr ? Lines() : DescribeLines(*found);
    const auto [begin, expectedEnd, foundEnd] = FindChange(before, after);
    for (auto i = begin; i < expectedEnd; ++i) out_.Write("  - " + before[i] + "\n");
    for (auto i = begin; i < foundEnd; ++i) out_.Write("  + " + after[i] + "\n");
  }

  void Finish() override {
    if (!hasRows_) return;
    WriteCells(Names);
    spool_.ForEach([&](std::string_view line) {
      if (!line.starts_with(Separator)) return out_.Write(std::string(line) + "\n");
      Cells cells;
      for (auto& cell : cells) {
        line.remove_prefix(1);
        cell = line.substr(0, line.find(Separator));
        line.remove_prefix(cell.size());
      }
      WriteCells(cells);
    });
  }

  std::string Error() const override { return spool_.Error(); }

 private:
  void Widen(const Cells& cells) {
    for (std::size_t i = 0; i < ColumnCount; ++i) {
      widths_[i] = std::max(widths_[i], CharacterCount(cells[i]));
    }
  }

  void Keep(const Cells& cells) {
    Widen(cells);
    std::string line;
    for (const auto& cell : cells) line += Separator + cell;
    spool_.Add(line);
  }

  void WriteCells(const Cells& cells) {
    std::string line;
    for (std::size_t i = 0; i < ColumnCount; ++i) {
      line += cells[i];
      line.append(widths_[i] + 2 - CharacterCount(cells[i]), ' ');
    }
    line.resize(line.find_last_not_of(' ') + 1);
    out_.Write(line + "\n");
  }

  Output& out_;
  RowSpool spool_;
  std::array<std::size_t, ColumnCount> widths_ = {};
  bool hasRows_ = false;
};

}  // namespace

std::unique_ptr<SurveyFormat> MakeTableFormat(Output& out) {
  return std::make_unique<TableFormat>(out);
}

}  // namespace fernwick::lab
