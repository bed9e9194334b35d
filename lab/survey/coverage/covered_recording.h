#pragma once

#include <cstddef>
#include <optional>

#include "lab/support/json_values.h"
#include "lab/support/messages.h"

namespace fernwick::lab {

/// What a recording is for the coverage of a payload.
enum class RecordingUse {
  Counted,
  NoConfiguration,  // its board has none that can be used
  UnknownBoard,     // the payload has no directory for its board
  Bypassed,         // by a switch of the computer
  AbnormalEnd,      // of its run, whose pairs are not counted
  Refused,
};

inline constexpr std::size_t RecordingUseCount = 6;

/// A recording that was counted, or why it was not.
struct CoveredRecording {
  RecordingUse use = RecordingUse::Refused;
  LabError refusal = {{}, LabStatus::Done};  // of a refused one
};

/// The row of a recording in the result of a shard: {"use":"counted"}, or, of a refused one, with
/// the members "message" and "status".
Json ToJson(const CoveredRecording& recording);

/// The recording of such a row; empty when it is none.
std::optional<CoveredRecording> CoveredRecordingOf(const Json& row);

}  // namespace fernwick::lab
