#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lab/survey/computer_class.h"
#include "lab/survey/selected.h"
#include "lab/survey/survey_report.h"
#include "platform/console.h"

namespace fernwick::lab {

/// What a survey prints, and what its status depends on.
struct SurveyOutput {
  std::string format = "table";
  bool isWide = false;
  std::optional<std::string> expectation = {};
  bool updates = false;
  std::optional<std::string> failOnList = {};
  std::vector<ComputerClass> failOn = {};  // what the list means
};

/// Reads the list. Returns what is wrong with the options together; empty when nothing is.
std::string CheckSurveyOutput(SurveyOutput& output);

/// Adds all rows to the report, in their order, and those of refused recordings to `refusal`.
/// Returns LabStatus::Done, or the status after a line on standard error, which ends the survey.
using AddSurveyRows =
    std::function<int(SurveyReport& report, Console& console, FirstRefusal& refusal)>;

/// Prints a survey of these rows with its totals, compared with what is expected. Returns the exit
/// status.
int PrintSurvey(const SurveyOutput& output, const AddSurveyRows& addRows);

}  // namespace fernwick::lab
