#pragma once

#include <string>
#include <string_view>

#include "platform/console.h"
#include "value/result.h"

namespace fernwick::lab {

/// The exit statuses of the lab itself. The tool never ends with 64 to 66.
namespace LabStatus {
inline constexpr int Done = 0;
// The verb did its work, with a result that a script has to notice: lint has findings, payloads
// differ for a computer, a survey has what --fail-on names, there is no sample or draft.
inline constexpr int Negative = 1;
inline constexpr int BadUsage = 64;
inline constexpr int MalformedInput = 65;   // a recording or payload that is not well formed
inline constexpr int UnreadableInput = 66;  // one that cannot be read
inline constexpr int OutOfResources = 71;   // memory or descriptors
inline constexpr int OutputLost = 74;       // a result could not be written
}  // namespace LabStatus

/// Why an input cannot be used, and the exit status for that.
struct LabError {
  Error error;
  int status;  // LabStatus
};

/// The status for an input that the operating system refused to open or read: OutOfResources for a
/// lack of memory or descriptors, which any input would meet, otherwise UnreadableInput.
int UnreadableStatus(const Error& error);

/// The error of a path that could not be looked at, "PATH: MESSAGE", from an errno.
LabError PathFailure(const std::string& path, int systemError);

/// Whether a terminal or an editor acts on the character instead of showing it: a control character
/// (U+0000 to U+001F, U+007F to U+009F), or one that changes the direction of a text (U+202A to
/// U+202E, U+2066 to U+2069) or its lines (U+2028, U+2029).
bool ActsOnText(char32_t character);

/// Appends "\u" and the code in four hexadecimal digits. REQUIRES: it is below 0x10000.
void AppendUnicodeEscape(std::string& text, char32_t code);

/// A text from a file or a path as a terminal may show it: control characters, and bytes that are
/// not UTF-8, as octal escapes, other characters that act on the text as "\u202e".
std::string PrintableText(std::string_view text);

/// As PrintableText, but for a text of whole lines in UTF-8: line feeds and tabs stay.
std::string PrintableLines(std::string_view text);

/// Prints "fernwick-lab: MESSAGE" as one line on standard error. Control characters, which may come
/// from a file, are printed as octal escapes.
void PrintError(std::string_view message);

/// The same with "PATH: what is wrong" as the message. Returns the exit status.
int PrintError(const std::string& path, const LabError& error);

/// The same of an error whose message is complete.
int PrintError(const LabError& error);

/// Prints a whole result on standard output. Returns the exit status: LabStatus::Done, or
/// LabStatus::OutputLost after a line on standard error when it could not be written.
int PrintResult(std::string_view text);

/// Flushes what was printed. Returns as PrintResult.
int FinishOutput(Console& console);

}  // namespace fernwick::lab
