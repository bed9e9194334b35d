#pragma once

namespace fernwick::lab {

/// The verb `redact`: recordings without what identifies the computers, consistent across those
/// given together. `arguments` are those behind the verb. Returns the process's exit status.
int Redact(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
