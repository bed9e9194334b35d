#pragma once

#include <string>
#include <vector>

#include "driver/run_recorder.h"
#include "lab/support/captured_run.h"
#include "lab/survey/diff_row.h"

namespace fernwick::lab {

/// A run over a computer with one of the payloads.
struct PayloadRun {
  CapturedRun run;
  RunRecorder recorder;
};

/// In what the runs over the same computer with two payloads differ: whether there is a plan, which
/// controllers have a match (with the requirements that keep one from the other side), the image
/// and version of those that have one on both sides, their order, and what the plans say of
/// priority, NVRAM and options.
std::vector<DiffChange> FindChanges(const PayloadRun& before, const PayloadRun& after);

}  // namespace fernwick::lab
