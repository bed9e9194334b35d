#pragma once

#include <string>

#include "lab/survey/totals.h"

namespace fernwick::lab {

/// The computers by class: a picture, and what each class means.
std::string ClassSectionMarkup(const SurveyTotals& totals);

}  // namespace fernwick::lab
