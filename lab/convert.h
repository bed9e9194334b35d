#pragma once

namespace fernwick::lab {

/// The verb `convert`: the same recording in another serialisation, value for value. `arguments`
/// are those behind the verb. Returns the process's exit status.
int Convert(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
