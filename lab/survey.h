#pragma once

namespace fernwick::lab {

/// The verb `survey`: the tool's whole run over every selected computer, a row for each.
/// `arguments` are those behind the verb. Returns the process's exit status.
int Survey(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
