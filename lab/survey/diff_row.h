#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// One way in which two payloads treat a computer differently.
struct DiffChange {
  std::string kind;        // such as "gains match" or "version"
  std::string match = {};  // of which match, as people name it; empty for the whole plan
  Json before = {};        // null where there is nothing
  Json after = {};
  std::vector<std::string> reasons = {};  // what keeps the match or plan away from the other side
};

/// One computer between two payloads.
struct DiffRow {
  std::string file;
  std::string refusal = {};      // of its recording; empty when there is none
  std::string abnormalEnd = {};  // the same with both payloads; empty when there is none
  std::optional<std::string> board = {};
  int revision = 0;
  std::vector<DiffChange> changes = {};
};

/// All keys are always there, in the same order.
Json ToJson(const DiffRow& row);

/// A changed, refused or abnormal row as lines for people, each with its line feed and safe to
/// show.
std::string DescribeRow(const DiffRow& row);

}  // namespace fernwick::lab
