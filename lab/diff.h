#pragma once

namespace fernwick::lab {

/// The verb `diff`: which computers two payloads treat differently, how and why. `arguments` are
/// those behind the verb. Returns the process's exit status.
int Diff(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
