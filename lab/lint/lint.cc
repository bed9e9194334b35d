#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lab/lint/baseline.h"
#include "lab/lint/payload.h"
#include "lab/lint/policy.h"
#include "lab/lint/report.h"
#include "lab/lint/rules/rule_texts.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/output_file.h"
#include "lab/support/words.h"
#include "lab/verbs.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Looks for mistakes in the configurations of a payload, of all its boards or of those named: "
    "what can never match, what does not mean what it seems to, what the plan will lack.";

constexpr char Footer[] =
    "The file .fernwick-lint.json in PAYLOAD, if there is one, has the same settings as --ignore\n"
    "and --severity, which override it:\n"
    "  {\"ignore\": [\"unread-key\"], \"severity\": {\"no-priority\": \"error\"}}\n"
    "\n"
    "A finding of --baseline is recognised when lines and other personalities were added, removed\n"
    "or moved. --update-baseline writes the file again, whole or not at all, and creates it.\n"
    "\n"
    "Exit status: 0 nothing found of the severity of --fail-level, or --update-baseline; 1\n"
    "something found; 65 a configuration is not a property list, or a file of settings or a\n"
    "baseline is not well formed; 66 something cannot be read (the other boards are linted all\n"
    "the same).\n"
    "\n"
    "Example:\n"
    "  fernwick-lab lint payload Zed-42 --fail-level warning\n"
    "  fernwick-lab lint --explain shadowed-personality\n";

struct LintOptions {
  std::optional<std::string> payload;
  std::vector<std::string> boards;
  std::string format = "text";
  std::string failLevel = "error";
  std::optional<std::string> explained;
  bool list = false;
  std::vector<std::string> ignored;
  std::vector<std::string> severities;
  std::optional<std::string> baseline;
  bool updatesBaseline = false;
};

CommandLine Declare(LintOptions& options) {
  return {.verb = "lint",
          .description = Description,
          .footer = Footer,
          .arguments = {
              {.name = "PAYLOAD",
               .target = &options.payload,
               .help = "the payload directory, which contains Fernwick/"},
              {.name = "BOARD",
               .target = &options.boards,
               .help = "names of directories in Fernwick/; none: all"},
              {.name = "--format",
               .target = &options.format,
               .help = "how to print: text, json or sarif (SARIF 2.1.0)",
               .choices = {"text", "json", "sarif"}},
              {.name = "--fail-level",
               .target = &options.failLevel,
               .help = "status 1 from this severity on: error, warning or note",
               .choices = {"error", "warning", "note"}},
              {.name = "--ignore",
               .target = &options.ignored,
               .help = "do not report findings of this ID; may be repeated",
               .valueName = "ID"},
              {.name = "--severity",
               .target = &options.severities,
               .help = "report findings of this ID as error, warning or note; may be repeated",
               .valueName = "ID=LEVEL"},
              {.name = "--baseline",
               .target = &options.baseline,
               .help = "report only findings that are not in this file",
               .valueName = "FILE"},
              {.name = "--update-baseline",
               .target = &options.updatesBaseline,
               .help = "save all findings as the file of --baseline"},
              {.name = "--explain",
               .target = &options.explained,
               .help = "print why a finding of this ID matters and how to fix it",
               .valueName = "ID"},
              {.name = "--list", .target = &options.list, .help = "list all IDs"},
          }};
}

int Refuse(const std::string& message) {
  PrintError(message);
  return LabStatus::BadUsage;
}

int Explain(const std::string& id) {
  const auto* rule = FindLintRule(id);
  if (rule != nullptr) return PrintResult(ExplainLintRule(*rule));
  return Refuse("there is no finding \"" + id + "\"; see fernwick-lab lint --list");
}

std::unique_ptr<LintFormat> MakeFormat(const std::string& format, Console& console) {
  if (format == "json") return MakeLintJson(console);
  if (format == "sarif") return MakeLintSarif(console);
  return MakeLintText(console);
}

// What is wrong with the options together; empty when nothing is.
std::string UsageError(const LintOptions& options) {
  if (options.payload.has_value() + options.explained.has_value() + options.list != 1) {
    return "exactly one of PAYLOAD, --explain and --list is needed; see fernwick-lab lint --help";
  }
  if (!options.updatesBaseline) return "";
  if (!options.baseline) return "--update-baseline needs --baseline FILE";
  return options.boards.empty() ? "" : "--update-baseline needs all boards, so it excludes BOARD";
}

// The status of a file that cannot be used, after a message; Done when both can be.
int Load(const LintOptions& options, LintPolicy& policy, Baseline& baseline) {
  const int status = ReadSettings(*options.payload, policy);
  if (status != LabStatus::Done) return status;
  if (!options.baseline || (options.updatesBaseline && !PathExists(*options.baseline))) {
    return LabStatus::Done;
  }
  const auto error = baseline.Read(*options.baseline);
  return error ? PrintError(*options.baseline, *error) : LabStatus::Done;
}

int Run(const LintOptions& options, const LintPolicy& policy, Baseline& baseline) {
  ProcessConsole console;
  const auto format = MakeFormat(options.format, console);
  LintTotals totals;
  bool fails = false;
  const auto isReported = [&](const FindingIdentity& identity) {
    return !policy.Ignores(*identity.rule) && baseline.IsNew(identity);
  };
  const auto report = [&](Finding finding) {
    finding.severity = policy.SeverityOf(*finding.rule);
    fails = fails || finding.severity >= SeverityNamed(options.failLevel);
    Count(finding, totals);
    format->Add(finding);
  };
  const auto linting = LintPayload(*options.payload, options.boards, report, isReported);
  if (!linting.error.empty()) {
    PrintError(linting.error);
    return linting.status;
  }
  totals.boards = linting.boards;
  totals.known = baseline.Known();
  format->Finish(totals);
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (options.updatesBaseline) {
    const int lost = SaveFile(*options.baseline, baseline.Text(),
                              Counted(baseline.Found(), "finding", "findings"));
    if (lost != LabStatus::Done) return lost;
  }
  if (linting.status != LabStatus::Done) return linting.status;
  return fails && !options.updatesBaseline ? LabStatus::Negative : LabStatus::Done;
}

}  // namespace

VerbEnd LintVerb(int argumentCount, char* const arguments[]) {
  LintOptions options;
  const auto line = Declare(options);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  if (const auto error = UsageError(options); !error.empty()) return Refuse(error);
  if (options.list) return PrintResult(ListLintRules());
  if (options.explained) return Explain(*options.explained);
  LintPolicy policy;
  if (const auto error = policy.Read(options.ignored, options.severities)) return Refuse(*error);
  Baseline baseline(options.updatesBaseline);
  const int status = Load(options, policy, baseline);
  return status == LabStatus::Done ? Run(options, policy, baseline) : status;
}

}  // namespace fernwick::lab
