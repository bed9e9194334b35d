#pragma once

#include <cstdint>
#include <vector>

#include "personality/match_record.h"

namespace fernwick {

/// What the plan collects over all matches besides the argument vector. It views the matches.
struct PlanValues {
  std::uint32_t lowestPriority = 0x7FFFFFFF;
  Record nvramToSet;
  std::vector<PropertyValue> nvramToClear;  // duplicates are kept
};

/// Keeps the smallest "Priority" of all matches, compared unsigned. A match without one counts as
/// 0, so it drives the plan's priority to 0; 0x7FFFFFFF and above never lower it.
void FoldPriority(const MatchRecord& match, PlanValues& plan);

/// Adds the match's "SetNVRAM" and "ClearNVRAM". The value of a variable that an earlier match sets
/// is replaced by the later one's. Values of another shape than a dictionary and an array are
/// ignored.
void MergeNvram(const MatchRecord& match, PlanValues& plan);

}  // namespace fernwick
