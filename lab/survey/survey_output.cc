#include "lab/survey/survey_output.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "lab/support/words.h"
#include "lab/survey/expectation.h"
#include "lab/survey/format.h"

namespace fernwick::lab {
namespace {

// Reads "refused,blocked". Returns what is wrong with a word; empty when all are classes.
std::string ParseFailOn(std::string_view list, std::vector<ComputerClass>& classes) {
  for (const auto word : WordsOf(list)) {
    const auto meant = ClassesOfWord(word);
    if (meant.empty()) {
      return "--fail-on: \"" + std::string(word) + "\" is not one of " + ClassWords();
    }
    classes.insert(classes.end(), meant.begin(), meant.end());
  }
  return "";
}

std::unique_ptr<SurveyFormat> MakeFormat(const SurveyOutput& output, Console& console) {
  const bool isComparison = output.expectation.has_value();
  if (output.format == "ndjson") return MakeNdjsonFormat(console);
  if (output.format == "csv") return MakeCsvFormat(console, isComparison);
  if (output.format == "junit") return MakeJunitFormat(console);
  return MakeTableFormat(console, isComparison, output.isWide);
}

// `refusal` is that of a FirstRefusal.
int StatusOf(const SurveyOutput& output, const SurveyReport& report, int refusal) {
  if (!output.expectation && refusal != LabStatus::Done) return refusal;
  const auto happened = [&](ComputerClass each) { return report.Count(each) > 0; };
  const bool fails = std::ranges::any_of(output.failOn, happened);
  const bool differs = !output.updates && report.HasDifferences();
  return fails || differs ? LabStatus::Negative : LabStatus::Done;
}

int Print(const SurveyOutput& output, SurveyExpectation* expectation,
          const AddSurveyRows& addRows) {
  ProcessConsole console;
  const auto format = MakeFormat(output, console);
  SurveyReport report(*format, expectation, output.updates);
  FirstRefusal refusal;
  const int status = addRows(report, console, refusal);
  if (status != LabStatus::Done) return status;
  report.Finish();
  const bool isTable = output.format == "table";
  if (isTable) console.Write(report.Totals());
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isTable) console.WriteError(report.Totals());
  if (output.updates) {
    const int lost = SaveFile(*output.expectation, report.SavedRows(),
                              Counted(report.Computers(), "row", "rows"));
    if (lost != LabStatus::Done) return lost;
  }
  return StatusOf(output, report, refusal.Status());
}

}  // namespace

std::string CheckSurveyOutput(SurveyOutput& output) {
  if (output.failOnList) {
    const auto error = ParseFailOn(*output.failOnList, output.failOn);
    if (!error.empty()) return error;
  }
  if (!output.updates) return "";
  if (!output.expectation) return "--update needs --expect FILE";
  return output.expectation == "-" ? "--update needs a file, not standard input" : "";
}

int PrintSurvey(const SurveyOutput& output, const AddSurveyRows& addRows) {
  if (!output.expectation) return Print(output, nullptr, addRows);
  SurveyExpectation expectation(*output.expectation);
  if (output.updates && !expectation.Exists()) return Print(output, &expectation, addRows);
  const auto error = expectation.Load();
  return error ? PrintError(*output.expectation, *error) : Print(output, &expectation, addRows);
}

}  // namespace fernwick::lab
