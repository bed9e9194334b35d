#pragma once

namespace fernwick::lab {

/// The verb `lint`. `arguments` are those behind the verb. Returns the process's exit status: 0
/// when nothing was found that is as grave as --fail-level, 1 when something was, or a LabStatus.
int Lint(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
