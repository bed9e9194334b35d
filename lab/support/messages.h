#pragma once

#include <string>
#include <string_view>

#include "platform/console.h"
#include "value/result.h"

namespace fernwick::lab {

/// The exit statuses of the lab itself. The tool uses none of those of a verb that cannot start.
namespace LabStatus {
inline constexpr int Done = 0;
inline constexpr int BadUsage = 64;
inline constexpr int MalformedInput = 65;   // a recording or payload that is not well formed
inline constexpr int UnreadableInput = 66;  // one that cannot be read
inline constexpr int OutOfMemory = 71;
inline constexpr int OutputLost = 74;  // a result could not be written
}  // namespace LabStatus

/// Why an input cannot be used, and the exit status for that.
struct LabError {
  Error error;
  int status;  // LabStatus
};

/// The status for an input that the operating system refused to open or read: OutOfMemory for a
/// lack of memory or descriptors, which any input would meet, otherwise UnreadableInput.
int UnreadableStatus(const Error& error);

/// The error of a path that could not be looked at, "PATH: MESSAGE", from an errno.
LabError PathFailure(const std::string& path, int systemError);

/// A text from a file or a path as a terminal may show it: control characters, and bytes that are
/// not UTF-8, as octal escapes.
std::string PrintableText(std::string_view text);

/// Prints "fernwick-lab: MESSAGE" as one line on standard error. Control
/// characters, which may come from a file, are printed as octal escapes.
void PrintError(std::string_view message);

/// The same with "PATH: what is wrong" as the message. Returns the exit status.
int PrintError(const std::string& path, const LabError& error);

/// Prints a whole result on standard output. Returns the exit status: LabStatus::Done, or
/// LabStatus::OutputLost after a line on standard error when it could not be written.
int PrintResult(std::string_view text);

/// Flushes what was printed. Returns as PrintResult.
int FinishOutput(Console& console);

}  // namespace fernwick::lab
