#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
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
  SurveyedTool tool;
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
                           .target = &options.tool.payload,
                           .help = "the payload directory",
                           .least = 1,
                           .valueName = "PAYLOAD"},
                          {.name = "--bypassVersion",
                           .target = &options.tool.bypassVersion,
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

std::unique_ptr<SurveyFormat> MakeFormat(const SurveyOptions& options, Output& out) {
  if (options.format == "ndjson") return MakeNdjsonFormat(out);
  if (options.format == "csv") return MakeCsvFormat(out, options.expectation.has_value());
  if (options.format == "junit") return MakeJunitFormat(out);
  return MakeTableFormat(out);
}

// A survey on its way into a format, held against what is expected of it, if anything is.
class SurveyReport {
 public:
  SurveyReport(SurveyFormat& format, SurveyExpectation* expectation)
      : format_(format), expectation_(expectation) {}

  void Add(const SurveyRow& row) {
    totals_.Add(row);
    if (expectation_ == nullptr) return format_.AddRow(row);
    const auto expected = expectation_->TakeFor(row);
    if (!expected) return Differ({nullptr, &row}, additional_);
    if (!AreSame(*expected, row)) return Differ({&*expected, &row}, changed_);
    format_.AddExpected(row);
  }

  void Finish() {
    if (expectation_ != nullptr) {
      expectation_->ForEachLeft([this](const SurveyRow& row) {
        Differ({&row, nullptr}, missing_);
      });
    }
    format_.Finish();
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
    format_.AddDifference(difference);
  }

  SurveyFormat& format_;
  SurveyExpectation* expectation_;
  SurveyTotals totals_;
  std::size_t changed_ = 0;
  std::size_t additional_ = 0;
  std::size_t missing_ = 0;
};

int RunSurvey(const SurveyOptions& options, SurveyExpectation* expectation) {
  Output out(stdout);
  const auto format = MakeFormat(options, out);
  SurveyReport report(*format, expectation);
  const auto work = [&](const std::string& path, const Note& note) {
    return PrintJsonRow(ToJson(SurveyRecording(path, options.tool, note)));
  };
  const int status = RunBatch(options.batch, work, out, [&](const WorkResult& result) {
    report.Add(RowOf(result));
    return format->Error();
  });
  if (status != LabStatus::Done) return status;
  report.Finish();
  if (!format->Error().empty()) {
    PrintError(format->Error());
    return LabStatus::OutputLost;
  }
  const bool isTable = options.format == "table";
  if (isTable) out.Write(report.Totals());
  if (const int lost = FinishOutput(out); lost != LabStatus::Done) return lost;
  if (!isTable) std::fputs(report.Totals().c_str(), stderr);
  return report.Status();
}

}  // namespace

int Survey(int argumentCount, char* const arguments[]) {
  SurveyOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!IsPayload(options.tool.payload)) return LabStatus::UnreadableInput;
  if (!options.expectation) return RunSurvey(options, nullptr);
  SurveyExpectation expectation;
  int status = LabStatus::Done;
  const auto error = expectation.Load(*options.expectation, status);
  if (error.empty()) return RunSurvey(options, &expectation);
  PrintError(error);
  return status;
}

}  // namespace fernwick::lab
