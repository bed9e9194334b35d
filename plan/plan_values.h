#pragma once

#include <cstdint>
#include <vector>

#include "personality/match_record.h"

namespace fernwick {

/// What the plan collects over all matches besides the argument vector. It views what the matches
/// view. Many matches may have the same personality: their settings are collected as views, and
/// merged when all are known.
struct PlanValues {
  std::uint32_t lowestPriority = 0x7FFFFFFF;
  std::vector<Dictionary> settings;  // the "SetNVRAM" of the matches, in their order
  std::vector<Array> clearings;      // the "ClearNVRAM"
};

/// Keeps the smallest "Priority" of all matches, compared unsigned. A match without one counts as
/// 0, so it drives the plan's priority to 0; 0x7FFFFFFF and above never lower it.
void FoldPriority(const MatchRecord& match, PlanValues& plan);

/// Adds the match's "SetNVRAM" and "ClearNVRAM". Values of another shape than a dictionary and an
/// array are ignored.
void MergeNvram(const MatchRecord& match, PlanValues& plan);

/// The NVRAM variables to set. The value of a variable that an earlier match sets is replaced by
/// the later one's, in the earlier position. Costs n log n of the different dictionaries and the
/// number of matches.
Record NvramToSet(const PlanValues& plan);

/// The names of the NVRAM variables to clear; duplicates are kept.
std::vector<PropertyValue> NvramToClear(const PlanValues& plan);

}  // namespace fernwick
