#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/batch.h"
#include "lab/survey/diff/diff_computer.h"
#include "lab/survey/diff/diff_format.h"
#include "lab/survey/diff/file_changes.h"
#include "lab/survey/selected.h"
#include "lab/verbs.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Prints how two payloads differ for recorded computers: which gain a plan or a match or lose "
    "it, and by which requirements of which personality, where image, version, order, priority or "
    "NVRAM change, and which planned image files have other bytes or are missing.";

constexpr char Footer[] =
    "\n"
    "Personalities of both payloads are compared by what they accept (silicon, RID, address,\n"
    "UUID, model), whatever their order and images.\n"
    "\n"
    "Status, after all computers: 65 or 66 when a RECORDING that is named on the command line\n"
    "is refused or cannot be read, 0 no computer changes, 1 some do. A run that ends abnormally\n"
    "with both payloads is reported and is no change.\n"
    "\n"
    "Example:\n"
    "  fernwick-lab diff -p payload-1 -p payload-2 computers/\n";

struct DiffOptions {
  std::vector<std::string> payloads;
  BatchOptions batch;
  bool bypassVersion = false;
  bool listsEach = false;
  std::string format = "text";
  bool asJson = false;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], DiffOptions& options) {
  CommandLine line = {
      .verb = "diff",
      .description = Description,
      .footer = SelectionHelp + std::string(Footer),
      .arguments = {
          {.name = "-p,--payload",
           .target = &options.payloads,
           .help = "the old payload, and again the new one",
           .minCount = 1,
           .valueName = "PAYLOAD"},
          BypassVersionArgument(options.bypassVersion, "as the tool's own, with both payloads"),
          {.name = "--each",
           .target = &options.listsEach,
           .help = "list every computer instead of groups of equal changes"},
          {.name = "--format",
           .target = &options.format,
           .help = "text, json, csv or junit",
           .valueName = "FORMAT",
           .choices = {"text", "json", "csv", "junit"}},
          {.name = "--json", .target = &options.asJson, .help = "the same as --format json"},
      }};
  AddBatchOptions(line, options.batch);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return status;
  if (options.payloads.size() == 2) return std::nullopt;
  PrintError("two payloads are needed, -p OLD -p NEW; see fernwick-lab diff --help");
  return LabStatus::BadUsage;
}

std::unique_ptr<DiffFormat> MakeFormat(const DiffOptions& options, Console& console) {
  if (options.asJson || options.format == "json") return MakeDiffJson(console);
  if (options.format == "csv") return MakeDiffCsv(console);
  if (options.format == "junit") return MakeDiffJunit(console);
  return options.listsEach ? MakeDiffList(console) : MakeDiffGroups(console);
}

int RunDiff(const DiffOptions& options) {
  const Payloads payloads = {ToolOptions(options.payloads[0], options.bypassVersion),
                             ToolOptions(options.payloads[1], options.bypassVersion)};
  ProcessConsole console;
  const auto format = MakeFormat(options, console);
  DiffTotals totals;
  PayloadFiles files;
  FirstRefusal refusal;
  const auto work = [&](Selected selected) -> BatchResult {
    const bool isNamed = selected.isNamed;
    auto result = DiffComputer(std::move(selected), payloads, files);
    if (!result) return result.Error();
    const std::function<void()> print = [&, isNamed, compared = *std::move(result)] {
      refusal.Add(isNamed, compared.refusal);
      totals.Add(compared.row);
      format->Add(compared.row);
    };
    return print;
  };
  const int status = RunBatch(options.batch, work, console);
  if (status != LabStatus::Done) return status;
  format->Finish(totals);
  if (const int lost = FinishOutput(console); lost != LabStatus::Done) return lost;
  if (!format->ShowsTotals()) console.WriteError(Describe(totals));
  if (refusal.Status() != LabStatus::Done) return refusal.Status();
  return totals.changed == 0 ? LabStatus::Done : LabStatus::Negative;
}

}  // namespace

VerbEnd DiffVerb(int argumentCount, char* const arguments[]) {
  DiffOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!std::ranges::all_of(options.payloads, IsPayload)) return LabStatus::UnreadableInput;
  return RunDiff(options);
}

}  // namespace fernwick::lab
