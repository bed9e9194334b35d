#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "lab/lint/payload.h"
#include "lab/lint/policy.h"
#include "lab/recordings/recording_file.h"
#include "lab/report/page.h"
#include "lab/report/reported_computer.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/coverage/coverage_output.h"
#include "lab/survey/coverage/payload_boards.h"
#include "lab/survey/selected.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Writes an HTML page about what a payload does for recorded computers, for those who decide "
    "about its release: the computers by class, the versions before and after the updates, what "
    "keeps computers from an update, which never settle or are stuck, what the recordings cover, "
    "what lint finds and, with --old, what changes.";

constexpr char ReportFooter[] =
    "\n"
    "The page is one file without scripts that loads nothing. It has at most 2 MB: lists have\n"
    "their first items and the command that prints all, such as survey, settle, coverage, lint\n"
    "and diff. It is the same for any number of jobs, and has no date.\n"
    "\n"
    "-p is the payload that is judged, as for survey; diff names the old one first instead.\n"
    "\n"
    "Status, after the page is written: 65 or 66 when a RECORDING that is named on the command\n"
    "line, or a configuration, is malformed or cannot be read; otherwise 0.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab report -p payload-2 --old payload-1 -o report.html computers/\n";

struct ReportArguments {
  ReportedPayloads payloads;
  std::string out;
  bool replaces = false;
  std::string title = "Firmware release report";
  BatchOptions batch;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], ReportArguments& into) {
  CommandLine line = {
      .verb = "report",
      .description = Description,
      .footer = SelectionHelp + std::string(ReportFooter),
      .arguments = {
          PayloadArgument(into.payloads.payload),
          {.name = "--old",
           .target = &into.payloads.old,
           .help = "the payload that it is compared with",
           .valueName = "PAYLOAD"},
          {.name = "-o,--output",
           .target = &into.out,
           .help = "the page; - is standard output",
           .minCount = 1,
           .valueName = "FILE"},
          {.name = "--force", .target = &into.replaces, .help = "replace FILE where it exists"},
          {.name = "--title",
           .target = &into.title,
           .help = "the title (default: Firmware release report)"},
      }};
  AddBatchOptions(line, into.batch);
  return ParseCommandLine(line, argumentCount, arguments);
}

// Returns LabStatus::Done or the status of a configuration that could not be read, and whether
// something could be looked at; otherwise an error was printed.
std::pair<int, bool> LintInto(const std::string& payload, LintSection& section) {
  LintPolicy policy;
  if (const int status = ReadSettings(payload, policy); status != LabStatus::Done) {
    return {status, false};
  }
  const auto add = [&](Finding finding) {
    finding.severity = policy.SeverityOf(*finding.rule);
    section.Add(finding);
  };
  const auto isReported = [&](const FindingIdentity& identity) {
    return !policy.Ignores(*identity.rule);
  };
  const auto linting = LintPayload(payload, {}, add, isReported);
  if (!linting.error.empty()) PrintError(linting.error);
  return {linting.status, linting.error.empty()};
}

int WritePage(const ReportArguments& arguments, const std::string& page) {
  if (arguments.out == "-") return PrintResult(page);
  const auto ifExists = arguments.replaces ? IfExists::Replace : IfExists::Refuse;
  const auto error = WriteOutputFile(arguments.out, page, ifExists);
  return error.empty() ? LabStatus::Done
                       : PrintError(arguments.out, {{error}, LabStatus::OutputLost});
}

// Adds everything that is selected. Returns as RunBatch. Of each named recording that is refused,
// an error is printed.
int ReportAll(const ReportArguments& arguments, ComputerReporter& reporter, ReportPage& page,
              FirstRefusal& refusal, Console& console) {
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    auto reported = reporter.Report(std::move(selected));
    if (!reported) return reported.Error();
    const std::function<void()> add = [&, isNamed, computer = *std::move(reported)] {
      const auto& row = computer.row;
      if (isNamed && row.outcome == Outcome::Refused) {
        PrintError(row.file + ": " + row.reason);
        refusal.Add(isNamed, *row.status);
      }
      page.Add(computer);
    };
    return add;
  };
  return RunBatch(arguments.batch, work, console);
}

int RunReport(const ReportArguments& arguments) {
  const auto& [payload, old] = arguments.payloads;
  const auto options = CoverageToolOptions(payload, false);
  if (!options) return LabStatus::UnreadableInput;
  const auto payloads =
      old ? std::optional(Payloads{ToolOptions(*old, false), *options}) : std::nullopt;
  const auto boards = BoardsOf(*options->personalitiesDirectory);
  if (!boards) return PrintError(boards.Error());
  StringConsole console;
  ReportPage page(arguments.payloads, arguments.title, console);
  const auto [lintStatus, isLinted] = LintInto(payload, page.Lint());
  if (!isLinted) return lintStatus;
  CoveredPayload covered(*options, *boards);
  ComputerReporter reporter(*options, payloads, covered);
  FirstRefusal refusal;
  const int failure = ReportAll(arguments, reporter, page, refusal, console);
  if (failure != LabStatus::Done) return failure;
  CoverageTotals totals;
  totals.recordings = page.Uses();
  const int coverageStatus = covered.Print(page.Coverage(), totals);
  if (coverageStatus == LabStatus::OutOfResources) return coverageStatus;
  if (const int lost = WritePage(arguments, page.Markup()); lost != LabStatus::Done) return lost;
  if (refusal.Status() != LabStatus::Done) return refusal.Status();
  return lintStatus != LabStatus::Done ? lintStatus : coverageStatus;
}

}  // namespace

VerbEnd ReportVerb(int argumentCount, char* const arguments[]) {
  ReportArguments parsed;
  if (const auto status = Parse(argumentCount, arguments, parsed)) return *status;
  const auto ifExists = parsed.replaces ? IfExists::Replace : IfExists::Refuse;
  if (const int status = CheckOutput(parsed.out, ifExists); status != LabStatus::Done)
    return status;
  const auto& [payload, old] = parsed.payloads;
  if (!IsPayload(payload) || (old && !IsPayload(*old))) return LabStatus::UnreadableInput;
  return RunReport(parsed);
}

}  // namespace fernwick::lab
