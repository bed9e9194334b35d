#pragma once

#include "lab/explanation.h"
#include "lab/text_sink.h"

namespace fernwick::lab {

/// Prints the whole explanation as a JSON document. Personalities are numbered from 1; pairs stand
/// in the order of the file.
void PrintExplanationJson(const Explanation& explanation, const TextSink& sink);

}  // namespace fernwick::lab
