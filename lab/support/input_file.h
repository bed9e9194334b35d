#pragma once

#include <string>

#include "lab/support/messages.h"
#include "value/result.h"

namespace fernwick::lab {

/// Reads the file that an operand of a verb names, or standard input to its end where the operand
/// is "-". Both are limited to MaxFileSize.
Result<std::string, LabError> ReadInput(const std::string& operand);

/// The name of the operand in messages: "standard input" for "-".
std::string InputName(const std::string& operand);

}  // namespace fernwick::lab
