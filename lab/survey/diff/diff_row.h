#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {

/// What is different for a computer with the new payload.
enum class ChangeKind {
  GainsPlan,
  LosesPlan,
  GainsMatch,
  LosesMatch,
  Image,
  Version,
  Order,
  Priority,
  NvramToSet,
  NvramToClear,
  Options,
  ImageBytes,
  ImageMissing,
  ImageNoLongerMissing,
  UtilityBytes,
  UtilityMissing,
  UtilityNoLongerMissing,
  EndsAbnormally,
  NoLongerEndsAbnormally,
  MalformedInBoth,  // the configuration: a note, with the fault of each
};

inline constexpr std::size_t ChangeKindCount = 20;

/// "gains plan", "NVRAM to set", "image no longer missing", "malformed configuration in both", ...
std::string_view NameOf(ChangeKind kind);

/// One way in which two payloads treat a computer differently.
struct DiffChange {
  ChangeKind kind;
  std::string match = {};  // the match as people name it; empty for the whole plan
  Json before = {};        // null where there is nothing
  Json after = {};
  std::vector<std::string> reasons = {};  // why the other side lacks the match or the plan
};

/// One computer between two payloads.
struct DiffRow {
  std::string file;
  std::string refusal = {};      // of its recording; empty when there is none
  std::string abnormalEnd = {};  // with both payloads; empty when there is none
  std::optional<std::string> board = {};
  int revision = 0;
  std::vector<DiffChange> changes = {};
  std::vector<DiffChange> notes = {};  // what is the same with both payloads but needs attention
};

/// Whether there is anything to report of the computer.
bool IsReported(const DiffRow& row);

/// All keys are always there, in the same order.
Json ToJson(const DiffChange& change);
Json ToJson(const DiffRow& row);

/// A change as lines for people, each with its line feed and safe to show: the change itself, then
/// the reasons, each after `indentation`.
std::string DescribeChange(const DiffChange& change, const std::string& indentation);

/// A changed, refused or abnormal row, or one with notes, as lines for people, each with its line
/// feed and safe to show.
std::string DescribeRow(const DiffRow& row);

}  // namespace fernwick::lab
