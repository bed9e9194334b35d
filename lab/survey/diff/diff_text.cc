// The texts of a comparison for people. Grouping is a hash join of the changes by their JSON: one
// look-up for each change, memory for each different one.

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/diff/diff_format.h"

namespace fernwick::lab {
namespace {

bool IsUnchanged(const DiffRow& row) {
  return row.refusal.empty() && row.abnormalEnd.empty() && row.changes.empty();
}

class DiffList : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    if (!IsUnchanged(row)) Out().Write(DescribeRow(row));
  }
  void Finish(const DiffTotals& totals) override { Out().Write(Describe(totals)); }
  bool ShowsTotals() const override { return true; }
};

class DiffGroups : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    if (row.changes.empty()) {
      if (!IsUnchanged(row)) Out().Write(DescribeRow(row));
      return;
    }
    const auto board = row.board.value_or("-");
    for (const auto& change : row.changes) {
      const auto key = PrintJsonRow({board, ToJson(change)});
      const auto [index, isNew] = indexes_.emplace(key, groups_.size());
      if (isNew) groups_.push_back({board, change});
      ++groups_[index->second].computers;
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

  std::unordered_map<std::string, std::size_t> indexes_;
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
