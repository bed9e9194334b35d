#pragma once

#include "lab/explanation.h"
#include "lab/text_sink.h"

namespace fernwick::lab {

/// Prints the explanation for people. Nothing that a file holds reaches the terminal raw;
/// `emphasise` sets headings and outcomes in bold.
void PrintExplanationText(const Explanation& explanation, bool emphasise, const TextSink& sink);

}  // namespace fernwick::lab
