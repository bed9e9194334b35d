// The texts of a comparison for people. Changes are grouped by their JSON, in a search tree: one
// look-up for each change, memory for each different one.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/diff/diff_format.h"

namespace fernwick::lab {
namespace {

class DiffList : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    if (IsReported(row)) Out().Write(DescribeRow(row));
  }
  void Finish(const DiffTotals& totals) override { Out().Write(Describe(totals)); }
  bool ShowsTotals() const override { return true; }
};

class DiffGroups : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    if (!row.refusal.empty() || !row.abnormalEnd.empty()) return Out().Write(DescribeRow(row));
    for (const auto* list : {&row.notes, &row.changes}) {
      for (const auto& change : *list) AddToGroup(row.board.value_or("-"), change);
    }
  }

  void Finish(const DiffTotals& totals) override {
    for (const auto& group : groups_) {
      Out().Write(Counted(group.computers, "computer", "computers") + " of " +
                  PrintableText(group.board) + ": " + DescribeChange(group.change, "  "));
    }
    Out().Write(Describe(totals));
  }

  bool ShowsTotals() const override { return true; }

 private:
  struct Group {
    std::string board;
    DiffChange change;
    std::size_t computers = 0;
  };

  void AddToGroup(const std::string& board, const DiffChange& change) {
    const auto key = PrintJsonRow({board, ToJson(change)});
    const auto [index, isNew] = indexes_.emplace(key, groups_.size());
    if (isNew) groups_.push_back({board, change});
    ++groups_[index->second].computers;
  }

  std::map<std::string, std::size_t> indexes_;  // a tree: payloads choose the keys
  std::vector<Group> groups_;
};

}  // namespace

std::unique_ptr<DiffFormat> MakeDiffGroups(Console& console) {
  return std::make_unique<DiffGroups>(console);
}

std::unique_ptr<DiffFormat> MakeDiffList(Console& console) {
  return std::make_unique<DiffList>(console);
}

}  // namespace fernwick::lab
