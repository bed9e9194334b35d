// A k-way merge of sorted files with a heap: O(n log k) for n rows of k results, with one row of
// each result in memory.

#include "lab/survey/shards/merged_rows.h"

#include <map>

namespace fernwick::lab {
namespace {

LabError Differs(const ShardResult& result, const ShardResult& first, const std::string& what) {
  return {{result.Path() + ": its " + what + " is not that of " + first.Path()},
          LabStatus::MalformedInput};
}

// The name of an option that is not the same in both; empty when all are.
std::string DifferentOption(const Json& a, const Json& b) {
  for (const auto& [name, value] : a.items()) {
    const auto other = b.find(name);
    if (other == b.end() || *other != value) return name;
  }
  return a.size() == b.size() ? "" : "list of options";
}

std::optional<LabError> CheckSame(const ShardResult& result, const ShardResult& first) {
  const auto& header = result.Header();
  const auto& expected = first.Header();
  if (header.verb != expected.verb) return Differs(result, first, "verb");
  if (header.shard.count != expected.shard.count) return Differs(result, first, "number of shards");
  const auto option = DifferentOption(header.options, expected.options);
  if (!option.empty()) return Differs(result, first, option);
  return std::nullopt;
}

std::string ShardText(std::size_t number, std::size_t count) {
  return "shard " + std::to_string(number) + " of " + std::to_string(count);
}

// Each shard is there once.
std::optional<LabError> CheckAll(const std::vector<ShardResult>& results) {
  const auto count = results.front().Header().shard.count;
  std::map<std::size_t, const ShardResult*> byNumber;
  for (const auto& result : results) {
    const auto number = result.Header().shard.number;
    const auto [other, isNew] = byNumber.emplace(number, &result);
    if (isNew) continue;
    return LabError{{result.Path() + ": it is " + ShardText(number, count) + ", as is " +
                     other->second->Path()},
                    LabStatus::MalformedInput};
  }
  std::size_t missing = 1;
  while (byNumber.contains(missing)) ++missing;
  if (missing > count) return std::nullopt;
  const auto others = count - results.size() - 1;
  return LabError{{ShardText(missing, count) + " is missing" +
                   (others == 0 ? "" : ", and " + std::to_string(others) + " more")},
                  LabStatus::MalformedInput};
}

}  // namespace

Result<MergedRows, LabError> MergedRows::Open(const std::vector<std::string>& paths) {
  MergedRows rows;
  for (const auto& path : paths) {
    auto result = ShardResult::Open(path);
    if (!result) return result.Error();
    rows.results_.push_back(*std::move(result));
    if (auto error = CheckSame(rows.results_.back(), rows.results_.front())) return *error;
  }
  if (auto error = CheckAll(rows.results_)) return *error;
  return rows;
}

// Reads the next row of a result.
std::optional<LabError> MergedRows::Advance(std::size_t result) {
  auto row = results_[result].Next();
  if (!row) return row.Error();
  rows_[result] = *std::move(row);
  if (rows_[result]) {
    order_.emplace(rows_[result]->index, result);
  } else if (!addTotals(results_[result].TakeTotals())) {
    return LabError{{results_[result].Path() + ": its totals are not those of the payload"},
                    LabStatus::MalformedInput};
  }
  return std::nullopt;
}

// Reads the first row of each result.
std::optional<LabError> MergedRows::Begin() {
  hasBegun_ = true;
  rows_.resize(results_.size());
  for (std::size_t i = 0; i < results_.size(); ++i) {
    if (auto error = Advance(i)) return error;
  }
  return std::nullopt;
}

Result<std::optional<ShardRow>, LabError> MergedRows::Next() {
  if (!hasBegun_) {
    if (auto error = Begin()) return *error;
  }
  if (order_.empty()) {
    if (auto error = CheckEnd()) return *error;
    return std::optional<ShardRow>();
  }
  const auto [index, result] = order_.top();
  if (index != count_) {
    const auto what = index < count_ ? "has a row already" : "comes next but has none before it";
    const auto computer = index < count_ ? index : count_;
    return LabError{{results_[result].Path() + ": the computer of index " +
                     std::to_string(computer) + " " + what},
                    LabStatus::MalformedInput};
  }
  order_.pop();
  ++count_;
  auto row = std::move(rows_[result]);
  if (auto error = Advance(result)) return *error;
  return row;
}

std::optional<LabError> MergedRows::CheckEnd() const {
  const auto& first = results_.front();
  for (const auto& result : results_) {
    if (result.End().selection != first.End().selection ||
        result.End().computers != first.End().computers) {
      return Differs(result, first, "selection");
    }
  }
  if (count_ == first.End().computers) return std::nullopt;
  return LabError{{first.Path() + ": the last of " + std::to_string(first.End().computers) +
                   " computers have no row"},
                  LabStatus::MalformedInput};
}

}  // namespace fernwick::lab
