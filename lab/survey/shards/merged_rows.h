#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <queue>
#include <string>
#include <utility>
#include <vector>

#include "lab/survey/shards/shard_result.h"

namespace fernwick::lab {

/// The rows of all shards of one run in the order of the selection: a merge of sorted files by
/// index, of which one row each is in memory.
class MergedRows {
 public:
  /// Opens the results and checks that they are all shards of one run, each once. An error says
  /// which is missing, doubled or of another run.
  static Result<MergedRows, LabError> Open(const std::vector<std::string>& paths);

  /// The header of the first result; the others differ in the shard alone.
  const ShardHeader& Header() const { return results_.front().Header(); }

  /// Is called with the totals of every shard, one at a time, while rows are read; returns whether
  /// they are as they should be. To be set before the first Next.
  std::function<bool(const Json& totals)> addTotals = [](const Json&) { return true; };

  /// The next row; empty at the end. A computer without a row is an error, and so are results
  /// of different selections.
  Result<std::optional<ShardRow>, LabError> Next();

 private:
  // The index of the next row of a result, and the index of the result; the smallest first.
  using Position = std::pair<std::size_t, std::size_t>;

  std::optional<LabError> Begin();
  std::optional<LabError> Advance(std::size_t result);
  std::optional<LabError> CheckEnd() const;

  std::vector<ShardResult> results_;
  std::vector<std::optional<ShardRow>> rows_;  // the next row of each
  std::priority_queue<Position, std::vector<Position>, std::greater<>> order_;
  std::size_t count_ = 0;  // of the rows that Next returned
  bool hasBegun_ = false;
};

}  // namespace fernwick::lab
