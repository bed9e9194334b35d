#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/expectation.h"
#include "lab/survey/format.h"
#include "lab/survey/run.h"
#include "lab/survey/totals.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Runs the tool over every recorded computer and prints a row for each: its board, the status, "
    "every match, every diagnostic. A run that ends abnormally and a recording that is refused are "
    "rows like any other.";

std::string Footer() {
  return std::string(SelectionHelp) +
         "\nThe order is that of the selection, whatever the number of jobs. The totals, with the "
         "count of\neach diagnostic over all computers, stand below the table, and on standard "
         "error for every other\nformat.\n\n"
         "Status: 0 every computer has its row, 1 some rows differ from those of --expect.\n\n"
         "Example:\n"
         "  fernwick-lab survey -p payload --format ndjson computers/ > saved.ndjson\n"
         "  fernwick-lab survey -p payload --expect saved.ndjson computers/\n";
}

struct SurveyOptions {
  std::string payload;
  bool bypassVersion = false;
  BatchOptions batch;
  std::string format = "table";
  std::optional<std::string> expectation;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], SurveyOptions& options) {
  CommandLine line = {.verb = "survey",
                      .description = Description,
                      .footer = Footer(),
                      .arguments = {
                          {.name = "-p,--payload",
                           .target = &options.payload,
                           .help = "the payload directory",
                           .least = 1,
                           .valueName = "PAYLOAD"},
                          {.name = "--bypassVersion",
                           .target = &options.bypassVersion,
                           .help = "as the tool's own"},
                          {.name = "--format",
                           .target = &options.format,
                           .help = "table, ndjson, csv or junit",
                           .valueName = "FORMAT",
                           .choices = {"table", "ndjson", "csv", "junit"}},
                          {.name = "--expect",
                           .target = &options.expectation,
                           .help = "print the differences from a survey saved as ndjson",
                           .valueName = "FILE"},
                      }};
  AddBatchOptions(line, options.batch);
  return ParseCommandLine(line, argumentCount, arguments);
}

std::unique_ptr<SurveyFormat> MakeFormat(const SurveyOptions& options, Console& console) {
  const bool isComparison = options.expectation.has_value();
  if (options.format == "ndjson") return MakeNdjsonFormat(console);
  if (options.format == "csv") return MakeCsvFormat(console, isComparison);
  if (options.format == "junit") return MakeJunitFormat(console);
  return MakeTableFormat(console, isComparison);
}

// A survey on its way into a format, compared with what is expected of it, if anything is.
class SurveyReport {
 public:
  SurveyReport(SurveyFormat& format, SurveyExpectation* expectation)
      : format_(format), expectation_(expectation) {}

  // The text to Add with the row. May be called on any thread.
  std::string TextOf(const SurveyRow& row) const {
    return expectation_ == nullptr ? format_.RowText(row) : std::string();
  }

  void Add(const SurveyRow& row, const std::string& text) {
    totals_.Add(row);
    if (expectation_ == nullptr) return format_.Add(text);
    const auto expected = expectation_->TakeFor(row);
    if (!expected) return Differ({nullptr, &row}, additional_);
    if (!AreSame(*expected, row)) return Differ({&*expected, &row}, changed_);
    format_.Add(format_.ExpectedText(row));
  }

  void Finish() {
    if (expectation_ == nullptr) {
      return format_.Finish(totals_.Computers(),
                            totals_.Count(Outcome::Refused) + totals_.Count(Outcome::AbnormalEnd));
    }
    expectation_->ForEachLeft([this](const SurveyRow& row) { Differ({&row, nullptr}, missing_); });
    format_.Finish(totals_.Computers() + missing_, changed_ + additional_ + missing_);
  }

  std::string Totals() const {
    if (expectation_ == nullptr) return Describe(totals_);
    return Describe(totals_) + "not as expected: " + std::to_string(changed_) + " changed, " +
           std::to_string(additional_) + " additional, " + std::to_string(missing_) + " missing\n";
  }

  int Status() const { return changed_ + additional_ + missing_ == 0 ? 0 : 1; }

 private:
  void Differ(const SurveyDifference& difference, std::size_t& count) {
    ++count;
    format_.Add(format_.DifferenceText(difference));
  }

  SurveyFormat& format_;
  SurveyExpectation* expectation_;
  SurveyTotals totals_;
  std::size_t changed_ = 0;
  std::size_t additional_ = 0;
  std::size_t missing_ = 0;
};

int RunSurvey(const SurveyOptions& options, SurveyExpectation* expectation) {
  ProcessConsole console;
  const auto format = MakeFormat(options, console);
  SurveyReport report(*format, expectation);
  const auto toolOptions = ToolOptions(options.payload, options.bypassVersion);
  const auto work = [&](const Selected& selected) -> std::function<void()> {
    auto row = SurveyComputer(selected, toolOptions);
    auto text = report.TextOf(row);
    return [&report, row = std::move(row), text = std::move(text)] { report.Add(row, text); };
  };
  const int status = RunBatch(options.batch, work, console);
  if (status != LabStatus::Done) return status;
  report.Finish();
  const bool isTable = options.format == "table";
  if (isTable) console.Write(report.Totals());
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!isTable) console.WriteError(report.Totals());
  return report.Status();
}

}  // namespace

VerbEnd Survey(int argumentCount, char* const arguments[]) {
  SurveyOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.payload)) return LabStatus::UnreadableInput;
  if (!options.expectation) return RunSurvey(options, nullptr);
  SurveyExpectation expectation;
  const auto error = expectation.Load(*options.expectation);
  return error ? PrintError(*options.expectation, *error) : RunSurvey(options, &expectation);
}

}  // namespace fernwick::lab
