#pragma once

#include <string_view>

#include "platform/output.h"

namespace fernwick::lab {

/// Prints "fernwick-lab: MESSAGE" as one line on standard error. What a file may have put into the
/// message reaches no terminal raw: control characters are shown as octal escapes.
void PrintError(std::string_view message);

/// Prints a whole result on standard output. Returns the exit status: LabStatus::Done, or
/// LabStatus::OutputLost after a line on standard error when it could not be written.
int PrintResult(std::string_view text);

/// Flushes what was printed. Returns as PrintResult.
int FinishOutput(Output& out);

}  // namespace fernwick::lab
