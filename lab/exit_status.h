#pragma once

namespace fernwick::lab {

/// The exit statuses of the lab itself. Those of a verb that cannot start are none of the tool's.
namespace LabStatus {
inline constexpr int Done = 0;
inline constexpr int BadUsage = 64;
inline constexpr int MalformedInput = 65;   // a recording or payload that is not well formed
inline constexpr int UnreadableInput = 66;  // one that cannot be read
inline constexpr int NoProcess = 71;        // none could be started
inline constexpr int OutputLost = 74;       // a result could not be written
}  // namespace LabStatus

}  // namespace fernwick::lab
