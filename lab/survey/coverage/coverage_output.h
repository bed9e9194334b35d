#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "lab/survey/coverage/covered_payload.h"
#include "platform/console.h"

namespace fernwick::lab {

/// What a coverage prints, and what its status depends on.
struct CoverageOutput {
  std::string format = "text";                // or "json"
  std::optional<std::size_t> threshold = {};  // in tenths of a percent
  bool isShard = false;  // then nothing is printed but what is printed while adding recordings
};

/// The tool's options for the payload. Empty, after a line on standard error, where the tool
/// accepts no payload of that name; the status for that is LabStatus::UnreadableInput.
std::optional<Options> CoverageToolOptions(const std::string& payload, bool bypassVersion);

/// Counts a recording, and prints why it is refused. `isNamed` as in Selected.
using AddCovered = std::function<void(const CoveredRecording& recording, bool isNamed)>;

/// Counts all recordings, in their order, with their pairs in the payload. Returns LabStatus::Done,
/// or the status after a line on standard error, which ends the coverage.
using AddAllCovered =
    std::function<int(const AddCovered& add, CoveredPayload& payload, Console& console)>;

/// Prints what these recordings exercise of a payload. Returns the exit status.
int PrintCoverage(const Options& options, const CoverageOutput& output,
                  const AddAllCovered& addAll);

}  // namespace fernwick::lab
