#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/json_stream.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/support/words.h"
#include "lab/survey/batch.h"
#include "lab/survey/payload_diff.h"
#include "lab/survey/run.h"
#include "lab/verbs.h"
#include "registry/board_identity.h"

namespace fernwick::lab {
namespace {

constexpr char Description[] =
    "Tells which recorded computers two payloads treat differently: which gain a plan or a match "
    "or "
    "lose it, and by which requirements, and where image, version, order, priority or NVRAM "
    "change.";

constexpr char Footer[] =
    "\nStatus: 0 no computer changes, 1 some do. A recording that is refused and a run that ends\n"
    "abnormally with both payloads are told and are no change.\n\n"
    "Example:\n  fernwick-lab diff -p payload-1 -p payload-2 computers/\n";

struct DiffOptions {
  std::vector<std::string> payloads;
  BatchOptions batch;
  bool asJson = false;
};

std::optional<int> Parse(int argumentCount, char* const arguments[], DiffOptions& options) {
  CommandLine line = {.verb = "diff",
                      .description = Description,
                      .footer = SelectionHelp + std::string(Footer),
                      .arguments = {
                          {.name = "-p,--payload",
                           .target = &options.payloads,
                           .help = "the old payload, and again the new one",
                           .least = 1,
                           .valueName = "PAYLOAD"},
                          {.name = "--json", .target = &options.asJson, .help = "print JSON"},
                      }};
  AddBatchOptions(line, options.batch);
  if (const auto status = ParseCommandLine(line, argumentCount, arguments)) return status;
  if (options.payloads.size() == 2) return std::nullopt;
  PrintError("two payloads are needed, -p OLD -p NEW; see fernwick-lab diff --help");
  return LabStatus::BadUsage;
}

// A run that ends abnormally with one of the payloads is a change, with both it is none.
void CompareRuns(const ToolRun& before, const ToolRun& after, DiffRow& row) {
  if (before.result.fault && after.result.fault) {
    row.abnormalEnd = AbnormalEndName;
  } else if (after.result.fault) {
    row.changes = {{"ends abnormally", {}, {}, AbnormalEndName}};
  } else if (before.result.fault) {
    row.changes = {{"no longer ends abnormally", {}, AbnormalEndName, {}}};
  } else {
    row.changes = FindChanges(before, after);
  }
}

DiffRow DiffComputer(const Selected& selected, const Options& before, const Options& after) {
  const auto& path = selected.path;
  if (!selected.error.empty()) return {.file = path, .refusal = selected.error};
  const auto recording = LoadRecording(path);
  if (!recording) return {.file = path, .refusal = Describe(recording.Error().error)};
  RecordedRegistry registry(*recording);
  const auto board = ReadBoardIdentity(registry);
  DiffRow row{.file = path, .board = board.boardIdString, .revision = board.boardRevision};
  CompareRuns(RunTool(*recording, before), RunTool(*recording, after), row);
  return row;
}

struct DiffTotals {
  std::size_t changed = 0;
  std::size_t unchanged = 0;
  std::size_t refused = 0;
  std::size_t abnormal = 0;
  std::size_t gained = 0;
  std::size_t lost = 0;

  void Add(const DiffRow& row) {
    const auto has = [&](std::string_view kind) {
      return std::ranges::find(row.changes, kind, &DiffChange::kind) != row.changes.end();
    };
    gained += has("gains plan");
    lost += has("loses plan");
    ++(!row.refusal.empty()       ? refused
       : !row.abnormalEnd.empty() ? abnormal
       : row.changes.empty()      ? unchanged
                                  : changed);
  }

  std::string Text() const {
    return Counted(changed + unchanged + refused + abnormal, "computer", "computers") + ": " +
           std::to_string(changed) + " changed (" + std::to_string(gained) + " gained a plan, " +
           std::to_string(lost) + " lost it), " + std::to_string(unchanged) + " unchanged, " +
           std::to_string(refused) + " refused, " + std::to_string(abnormal) +
           " ended abnormally\n";
  }

  Json AsJson() const {
    return {{"changed", changed},     {"gainedPlan", gained}, {"lostPlan", lost},
            {"unchanged", unchanged}, {"refused", refused},   {"endedAbnormally", abnormal}};
  }
};

// The rows of computers that change, are refused or end abnormally, as they come.
class DiffReport {
 public:
  DiffReport(Console& console, bool asJson)
      : console_(console),
        asJson_(asJson),
        stream_([&console](std::string_view text) { console.Write(text); }) {}

  void Add(const DiffRow& row) {
    totals_.Add(row);
    if (row.refusal.empty() && row.abnormalEnd.empty() && row.changes.empty()) return;
    if (!asJson_) return console_.Write(DescribeRow(row));
    Begin();
    stream_.Add(ToJson(row));
  }

  void Finish() {
    if (!asJson_) return console_.Write(totals_.Text());
    Begin();
    stream_.End();
    stream_.AddMembers({{"totals", totals_.AsJson()}});
    stream_.End();
  }

  int Status() const { return totals_.changed == 0 ? 0 : 1; }

 private:
  // Not before the first row: an error leaves standard output empty.
  void Begin() {
    if (hasBegun_) return;
    stream_.Begin('{');
    stream_.Begin("computers", '[');
    hasBegun_ = true;
  }

  Console& console_;
  bool asJson_;
  JsonStream stream_;
  bool hasBegun_ = false;
  DiffTotals totals_;
};

}  // namespace

VerbEnd Diff(int argumentCount, char* const arguments[]) {
  DiffOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!std::ranges::all_of(options.payloads, IsPayload)) return LabStatus::UnreadableInput;
  ProcessConsole console;
  DiffReport report(console, options.asJson);
  const auto before = ToolOptions(options.payloads[0], false);
  const auto after = ToolOptions(options.payloads[1], false);
  const auto work = [&](const Selected& selected) -> std::function<void()> {
    return [&report, row = DiffComputer(selected, before, after)] { report.Add(row); };
  };
  const int status = RunBatch(options.batch, work, console);
  if (status != LabStatus::Done) return status;
  report.Finish();
  const int lost = FinishOutput(console);
  return lost != LabStatus::Done ? lost : report.Status();
}

}  // namespace fernwick::lab
