#pragma once

#include <vector>

#include "lab/support/tool_run.h"
#include "lab/survey/diff/diff_row.h"

namespace fernwick::lab {

/// In what the runs over the same computer with two payloads differ: whether there is a plan, which
/// controllers have a match (with the requirements that keep one from the other side), the image
/// and version of those that have one on both sides, their order, and what the plans say of
/// priority, NVRAM and options. REQUIRES: neither ended with a fault.
std::vector<DiffChange> FindChanges(const ToolRun& before, const ToolRun& after);

}  // namespace fernwick::lab
