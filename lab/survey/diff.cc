#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lab/recordings/recording_file.h"
#include "lab/support/command_line.h"
#include "lab/support/isolation.h"
#include "lab/support/json_stream.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/batch.h"
#include "lab/survey/payload_diff.h"
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

PayloadRun RunWith(const std::string& payload, const Recording& recording) {
  PayloadRun run;
  RecordedRegistry registry(recording);
  run.run = RunCaptured(registry, {"-p", payload}, &run.recorder);
  return run;
}

// What is noted in front of each run: a row that ends abnormally with that payload.
constexpr char WithOld[] = "old";
constexpr char WithNew[] = "new";

DiffRow DiffRecording(const std::string& path, const std::vector<std::string>& payloads,
                      const Note& note) {
  const auto file = LoadRecording(path);
  if (!file.recording) return {.file = path, .refusal = file.error.substr(path.size() + 2)};
  RecordedRegistry registry(*file.recording);
  const auto board = ReadBoardIdentity(registry);
  DiffRow row{.file = path, .board = board.boardIdString, .revision = board.boardRevision};
  const auto run = [&](const char* phase, const std::string& payload) {
    row.abnormalEnd = phase;
    note(PrintJsonRow(ToJson(row)));
    return RunWith(payload, *file.recording);
  };
  const auto before = run(WithOld, payloads[0]);
  const auto after = run(WithNew, payloads[1]);
  row.abnormalEnd.clear();
  row.changes = FindChanges(before, after);
  return row;
}

bool EndsAbnormally(const std::string& path, const std::string& payload) {
  return SignalThatEnds([&] {
           const auto file = LoadRecording(path);
           if (file.recording) RunWith(payload, *file.recording);
         }) != 0;
}

// A computer that ends abnormally with the old payload is tried with the new one by itself.
DiffRow AbnormalRow(const WorkResult& result, const std::vector<std::string>& payloads) {
  if (result.note.empty()) return {.file = result.path, .abnormalEnd = result.end};
  auto row = ParseDiffRow(result.note);
  const auto phase = std::exchange(row.abnormalEnd, {});
  if (phase == WithNew) {
    row.changes = {{"ends abnormally", {}, {}, result.end}};
  } else if (EndsAbnormally(result.path, payloads[1])) {
    row.abnormalEnd = result.end;
  } else {
    row.changes = {{"no longer ends abnormally", {}, result.end, {}}};
  }
  return row;
}

DiffRow RowOf(const WorkResult& result, const std::vector<std::string>& payloads) {
  if (!result.refusal.empty()) return {.file = result.path, .refusal = result.refusal};
  auto row = result.answer ? ParseDiffRow(*result.answer) : AbnormalRow(result, payloads);
  row.file = result.path;
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

// The rows that are to be told, as they come.
class DiffReport {
 public:
  DiffReport(Output& out, bool asJson)
      : out_(out), asJson_(asJson), stream_([&out](std::string_view text) { out.Write(text); }) {}

  void Add(const DiffRow& row) {
    totals_.Add(row);
    if (row.refusal.empty() && row.abnormalEnd.empty() && row.changes.empty()) return;
    if (!asJson_) return out_.Write(DescribeRow(row));
    Begin();
    stream_.Add(ToJson(row));
  }

  void Finish() {
    if (!asJson_) return out_.Write(totals_.Text());
    Begin();
    stream_.End();
    stream_.AddMembers({{"totals", totals_.AsJson()}});
    stream_.End();
  }

  int Status() const { return totals_.changed == 0 ? 0 : 1; }

 private:
  // Not before there is something to tell: an error leaves standard output empty.
  void Begin() {
    if (hasBegun_) return;
    stream_.Begin('{');
    stream_.Begin("computers", '[');
    hasBegun_ = true;
  }

  Output& out_;
  bool asJson_;
  JsonStream stream_;
  bool hasBegun_ = false;
  DiffTotals totals_;
};

}  // namespace

int Diff(int argumentCount, char* const arguments[]) {
  DiffOptions options;
  if (const auto status = Parse(argumentCount, arguments, options)) return *status;
  if (!std::ranges::all_of(options.payloads, IsPayload)) return LabStatus::UnreadableInput;
  Output out(stdout);
  DiffReport report(out, options.asJson);
  const auto work = [&](const std::string& path, const Note& note) {
    return PrintJsonRow(ToJson(DiffRecording(path, options.payloads, note)));
  };
  const int status = RunBatch(options.batch, work, out, [&](const WorkResult& result) {
    report.Add(RowOf(result, options.payloads));
    return std::string();
  });
  if (status != LabStatus::Done) return status;
  report.Finish();
  const int lost = FinishOutput(out);
  return lost != LabStatus::Done ? lost : report.Status();
}

}  // namespace fernwick::lab
