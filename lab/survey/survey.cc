#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "lab/support/tool_run.h"
#include "lab/support/words.h"
#include "lab/survey/batch.h"
#include "lab/survey/expectation.h"
#include "lab/survey/format.h"
#include "lab/survey/run.h"
#include "lab/survey/survey_report.h"
#include "lab/verbs.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Runs the tool over every recorded computer and prints a row for each: its board, the status, "
    "its class, every match, every diagnostic. A run that ends abnormally and a recording that is "
    "refused are rows like any other.";

std::string Footer() {
  return std::string(SelectionHelp) +
         "\nThe order is that of the selection, whatever the number of jobs. The totals, with the "
         "count of\neach diagnostic over all computers, follow the table, and are on standard "
         "error for every other\nformat. ndjson has the whole plan of each computer.\n\n"
         "CLASS is planned, current (the installed versions are not older), blocked (the nearest\n"
         "personality is for the controller, but not for its version or the board's revision, or\n"
         "a match names no image), unmatched, no-controllers, unknown-board, no-configuration,\n"
         "bypassed, fault or refused; abnormal means fault, and no-plan current to\n"
         "no-configuration. It is the class of the whole computer: a planned one may have\n"
         "controllers without a match. Without a plan there is the pair that is nearest to a\n"
         "match, and the first requirement that it fails.\n\n"
         "The paths of the rows in the file of --expect are relative to that file; - is standard\n"
         "input. --update writes the file again, whole or not at all, and creates it.\n\n"
         "Status, after all rows: 65 or 66 when a RECORDING that is named on the command line is\n"
         "refused or cannot be read (with --expect: no such status); 1 when a computer is of a\n"
         "class of --fail-on or, without --update, a row differs from that of --expect; otherwise\n"
         "0.\n\n"
         "Example:\n"
         "  fernwick-lab survey -p payload --expect saved.ndjson --update computers/\n"
         "  fernwick-lab survey -p payload --expect saved.ndjson computers/\n";
}

struct SurveyOptions {
  std::string payload;
  bool bypassVersion = false;
  BatchOptions batch;
  std::string format = "table";
  bool isWide = false;
  std::size_t maxMebibytes = 64;
  std::optional<std::string> expectation;
  bool updates = false;
  std::optional<std::string> failOnList;
  std::vector<ComputerClass> failOn = {};
};

// Reads "refused,blocked". Returns the word that is not one of them; empty when all are.
std::optional<std::string> ParseFailOn(std::string_view list, std::vector<ComputerClass>& classes) {
  for (;;) {
    const auto word = list.substr(0, list.find(','));
    const auto meant = ClassesOfWord(word);
    if (meant.empty()) return std::string(word);
    classes.insert(classes.end(), meant.begin(), meant.end());
    if (word.size() == list.size()) return std::nullopt;
    list.remove_prefix(word.size() + 1);
  }
}

std::vector<Argument> Arguments(SurveyOptions& options) {
  return {
      {.name = "-p,--payload",
       .target = &options.payload,
       .help = "the payload directory",
       .least = 1,
       .valueName = "PAYLOAD"},
      {.name = "--bypassVersion", .target = &options.bypassVersion, .help = "as the tool's own"},
      {.name = "--format",
       .target = &options.format,
       .help = "table, ndjson, csv or junit",
       .valueName = "FORMAT",
       .choices = {"table", "ndjson", "csv", "junit"}},
      {.name = "--wide",
       .target = &options.isWide,
       .help = "do not limit the columns of the table to 60 characters"},
      {.name = "--max-size",
       .target = BoundedNumber{&options.maxMebibytes, 1, MaxFileSize >> 20},
       .help = "refuse a recording of more than so many MiB (default: 64)",
       .valueName = "MIB"},
      {.name = "--expect",
       .target = &options.expectation,
       .help = "print the differences from a survey saved as ndjson",
       .valueName = "FILE"},
      {.name = "--update",
       .target = &options.updates,
       .help = "save this survey as the file of --expect"},
      {.name = "--fail-on",
       .target = &options.failOnList,
       .help = "status 1 when a computer is of any of these classes",
       .valueName = "CLASS,..."},
  };
}

// What is wrong with the options together; empty when nothing is.
std::string Check(SurveyOptions& options) {
  options.batch.maxSize = options.maxMebibytes << 20;
  const auto word =
      options.failOnList ? ParseFailOn(*options.failOnList, options.failOn) : std::nullopt;
  if (word) return "--fail-on: \"" + *word + "\" is not one of " + ClassWords();
  const bool readsInput = options.expectation == "-";
  if (readsInput && std::ranges::find(options.batch.paths, "-") != options.batch.paths.end()) {
    return "standard input cannot be both the recordings and --expect";
  }
  if (!options.updates) return "";
  if (!options.expectation) return "--update needs --expect FILE";
  return readsInput ? "--update needs a file, not standard input" : "";
}

std::optional<int> Parse(int argumentCount, char* const arguments[], SurveyOptions& options) {
  CommandLine line = {.verb = "survey",
                      .description = Description,
                      .footer = Footer(),
                      .arguments = Arguments(options)};
  AddBatchOptions(line, options.batch);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return status;
  const auto error = Check(options);
  if (error.empty()) return std::nullopt;
  PrintError(error + "; see fernwick-lab survey --help");
  return LabStatus::BadUsage;
}

std::unique_ptr<SurveyFormat> MakeFormat(const SurveyOptions& options, Console& console) {
  const bool isComparison = options.expectation.has_value();
  if (options.format == "ndjson") return MakeNdjsonFormat(console);
  if (options.format == "csv") return MakeCsvFormat(console, isComparison);
  if (options.format == "junit") return MakeJunitFormat(console);
  return MakeTableFormat(console, isComparison, options.isWide);
}

// `refusal` is the status of the first named recording that was refused.
int StatusOf(const SurveyOptions& options, const SurveyReport& report, int refusal) {
  if (!options.expectation && refusal != LabStatus::Done) return refusal;
  const auto happened = [&](ComputerClass each) { return report.Count(each) > 0; };
  const bool fails = std::ranges::any_of(options.failOn, happened);
  return fails || (!options.updates && report.HasDifferences()) ? 1 : LabStatus::Done;
}

int RunSurvey(const SurveyOptions& options, SurveyExpectation* expectation) {
  ProcessConsole console;
  const auto format = MakeFormat(options, console);
  SurveyReport report(*format, expectation, options.updates);
  const auto toolOptions = ToolOptions(options.payload, options.bypassVersion);
  int refusal = LabStatus::Done;
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    auto surveyed = SurveyComputer(std::move(selected), toolOptions, options.batch.maxSize);
    if (!surveyed) return surveyed.Error();
    auto text = report.TextOf(*surveyed);
    const std::function<void()> print = [&, isNamed, row = *std::move(surveyed),
                                         text = std::move(text)] {
      if (isNamed && row.outcome == Outcome::Refused && refusal == LabStatus::Done) {
        refusal = row.status.value();
      }
      report.Add(row, text);
    };
    return print;
  };
  const int status = RunBatch(options.batch, work, console);
  if (status != LabStatus::Done) return status;
  report.Finish();
  const bool isTable = options.format == "table";
  if (isTable) console.Write(report.Totals());
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isTable) console.WriteError(report.Totals());
  if (options.updates) {
    const int lost = SaveFile(*options.expectation, report.SavedRows(),
                              Counted(report.Computers(), "row", "rows"));
    if (lost != LabStatus::Done) return lost;
  }
  return StatusOf(options, report, refusal);
}

}  // namespace

VerbEnd SurveyVerb(int argumentCount, char* const arguments[]) {
  SurveyOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  if (!options.expectation) return RunSurvey(options, nullptr);
  SurveyExpectation expectation(*options.expectation);
  if (options.updates && !expectation.Exists()) return RunSurvey(options, &expectation);
  const auto error = expectation.Load();
  return error ? PrintError(*options.expectation, *error) : RunSurvey(options, &expectation);
}

}  // namespace fernwick::lab
