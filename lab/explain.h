#pragma once

namespace fernwick::lab {

/// The verb `explain`. `arguments` are those behind the verb, with a null behind the last. Returns
/// the process's exit status: LabStatus::Done whatever the run comes to, as long as it is
/// explained.
int ExplainVerb(int argumentCount, char* const arguments[]);

}  // namespace fernwick::lab
