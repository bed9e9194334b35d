#include "lab/survey/coverage/covered_recording.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "lab/support/json_reading.h"

namespace fernwick::lab {
namespace {

constexpr std::array<std::string_view, RecordingUseCount> UseNames = {
    "counted", "no configuration", "unknown board", "bypassed", "abnormal end", "refused"};

}  // namespace

Json ToJson(const CoveredRecording& recording) {
  Json row = {{"use", UseNames[static_cast<std::size_t>(recording.use)]}};
  if (recording.use != RecordingUse::Refused) return row;
  row["message"] = recording.refusal.error.message;
  row["status"] = recording.refusal.status;
  return row;
}

std::optional<CoveredRecording> CoveredRecordingOf(const Json& row) {
  const auto& name = MemberOf(row, "use");
  if (!name.is_string()) return std::nullopt;
  const auto* const use = std::ranges::find(UseNames, name.get<std::string>());
  if (use == UseNames.end()) return std::nullopt;
  CoveredRecording recording = {static_cast<RecordingUse>(use - UseNames.begin())};
  if (recording.use != RecordingUse::Refused) return recording;
  const auto& message = MemberOf(row, "message");
  const auto& status = MemberOf(row, "status");
  if (!message.is_string() || !status.is_number_integer()) return std::nullopt;
  recording.refusal = {{message.get<std::string>()}, status.get<int>()};
  return recording;
}

}  // namespace fernwick::lab
