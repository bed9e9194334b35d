#include <string>

#include "lab/survey/csv_cells.h"
#include "lab/survey/diff/diff_format.h"

namespace fernwick::lab {
namespace {

std::string Joined(const std::vector<std::string>& reasons) {
  std::string text;
  for (const auto& reason : reasons) text += (text.empty() ? "" : "; ") + reason;
  return text;
}

class DiffCsv : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    if (!row.refusal.empty()) AddLine(row, {"refused", "", "", "", CsvText(row.refusal)});
    if (!row.abnormalEnd.empty()) {
      AddLine(row, {"ends abnormally with both", "", "", "", CsvText(row.abnormalEnd)});
    }
    for (const auto* list : {&row.notes, &row.changes}) {
      for (const auto& change : *list) {
        AddLine(row,
                {std::string(NameOf(change.kind)), CsvText(change.match), CsvValue(change.before),
                 CsvValue(change.after), CsvText(Joined(change.reasons))});
      }
    }
  }

  void Finish(const DiffTotals&) override { AddNames(); }

 private:
  void AddNames() {
    if (hasNames_) return;
    hasNames_ = true;
    Out().Write(
        CsvLine({"file", "board", "revision", "change", "match", "before", "after", "reasons"}));
  }

  void AddLine(const DiffRow& row, const CsvCells& cells) {
    AddNames();
    CsvCells line = {CsvText(row.file), CsvValue(row.board),
                     row.refusal.empty() ? std::to_string(row.revision) : ""};
    line.insert(line.end(), cells.begin(), cells.end());
    Out().Write(CsvLine(line));
  }

  bool hasNames_ = false;
};

}  // namespace

std::unique_ptr<DiffFormat> MakeDiffCsv(Console& console) {
  return std::make_unique<DiffCsv>(console);
}

}  // namespace fernwick::lab
