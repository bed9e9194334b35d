#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "lab/lint/payload.h"
#include "lab/lint/policy.h"
#include "lab/lint/report.h"
#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr int FoundSomething = 1;

constexpr char Description[] =
    "Looks for mistakes in the configurations of a payload, of all its boards or of those named: "
    "what can never match, what does not mean what it seems to, what the plan will lack.";

constexpr char Footer[] =
    "Exit status: 0 nothing found of the severity of --fail-level; 1 something found; 65 a\n"
    "configuration is no property list, 66 something cannot be read (the other boards are linted\n"
    "all the same).\n"
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
              {.name = "--explain",
               .target = &options.explained,
               .help = "print why a finding of this ID matters and how to fix it",
               .valueName = "ID"},
              {.name = "--list", .target = &options.list, .help = "list all IDs"},
          }};
}

int Explain(const std::string& id) {
  const auto* rule = FindLintRule(id);
  if (rule != nullptr) return PrintResult(ExplainLintRule(*rule));
  PrintError("there is no finding \"" + id + "\"; see fernwick-lab lint --list");
  return LabStatus::BadUsage;
}

std::string Rendered(const PayloadLinting& linting, const std::string& format) {
  if (format == "json") return LintAsJson(linting);
  if (format == "sarif") return LintAsSarif(linting);
  return LintAsText(linting);
}

}  // namespace

VerbEnd Lint(int argumentCount, char* const arguments[]) {
  LintOptions options;
  const auto line = Declare(options);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return *status;
  if (options.payload.has_value() + options.explained.has_value() + options.list != 1) {
    PrintError("one of PAYLOAD, --explain and --list is needed; see fernwick-lab lint --help");
    return LabStatus::BadUsage;
  }
  if (options.list) return PrintResult(ListLintRules());
  if (options.explained) return Explain(*options.explained);
  LintPolicy policy;
  if (const auto fault = policy.Read(options.ignored, options.severities)) {
    PrintError(*fault);
    return LabStatus::BadUsage;
  }
  auto linting = LintPayload(*options.payload, options.boards);
  if (!linting.error.empty()) {
    PrintError(linting.error);
    return linting.status;
  }
  policy.ApplyTo(linting.findings);
  const int printed = PrintResult(Rendered(linting, options.format));
  if (printed != LabStatus::Done) return printed;
  if (linting.status != LabStatus::Done) return linting.status;
  const bool fails = std::ranges::any_of(linting.findings, [&](const Finding& finding) {
    return finding.severity >= SeverityNamed(options.failLevel);
  });
  return fails ? FoundSomething : LabStatus::Done;
}

}  // namespace fernwick::lab
