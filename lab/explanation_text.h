#pragma once

#include <string>

#include "lab/explanation.h"

namespace fernwick::lab {

/// The explanation for people. Nothing that a file holds reaches the terminal raw; `emphasise` sets
/// headings and outcomes in bold.
std::string ExplanationText(const Explanation& explanation, bool emphasise);

}  // namespace fernwick::lab
