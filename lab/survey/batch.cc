#include "lab/survey/batch.h"

#include <algorithm>
#include <optional>
#include <thread>
#include <utility>

#include "lab/support/messages.h"
#include "lab/survey/progress.h"
#include "lab/survey/workers.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxJobs = 1024;

}  // namespace

const char SelectionHelp[] =
    "A directory selects every *.registry.plist and every archive below it, by name; links to\n"
    "directories are not followed. An archive is a tar file, also one compressed by gzip, xz or\n"
    "zstd, or a zip file, and selects every *.registry.plist in it, in its order, as\n"
    "ARCHIVE:NAME. It is recognised by its suffix (.tar, .tar.gz, .tgz, .tar.xz, .txz,\n"
    ".tar.zst, .tzst, .zip) or, when it is named, by its contents. At most 1 GiB plus 1000\n"
    "times its size is unpacked of it.\n"
    "- reads paths from standard input, one a line or each followed by a NUL character.\n";

void AddBatchOptions(CommandLine& line, BatchOptions& options) {
  options.jobs = std::max(1u, std::thread::hardware_concurrency());
  line.arguments.push_back({.name = "RECORDING",
                            .target = &options.paths,
                            .help = "recorded computers, directories of them, or -",
                            .minCount = 1,
                            .valueName = ""});
  line.arguments.push_back({.name = "-j,--jobs",
                            .target = BoundedNumber{&options.jobs, 1, MaxJobs},
                            .help = "threads at once (default: one a processor)",
                            .valueName = "N"});
}

bool IsPayload(const std::string& payload) {
  const auto directory = AppendPathComponent(payload, "Fernwick");
  if (PathExists(AppendPathComponent(directory, "."))) return true;
  PrintError(directory + ": there is no such directory");
  return false;
}

void AddShardOption(CommandLine& line, BatchOptions& options) {
  line.arguments.push_back({.name = "--shard",
                            .target = &options.shard,
                            .help = "only the computers of shard K of N, for fernwick-lab merge",
                            .valueName = "K/N"});
}

std::string ReadShard(BatchOptions& options) {
  if (!options.shard) return "";
  options.limits.shard = ParseShard(*options.shard);
  return options.limits.shard ? "" : "--shard: \"" + *options.shard + "\" is not K/N, 1 <= K <= N";
}

int RunBatch(const BatchOptions& options, const BatchWork& work, Console& console,
             BatchSummary* summary) {
  Progress progress(Progress::IsShown() ? CountSelected(options.paths, options.limits)
                                        : std::nullopt);
  Selection selection(options.paths, options.limits);
  std::size_t rows = 0;
  std::optional<LabError> failure;
  WorkInOrder(selection, options.jobs, [&](Selected selected) -> Report {
    return [&, print = work(std::move(selected))] {
      ++rows;
      progress.Clear();
      if (!print) {
        failure = print.Error();
        return false;
      }
      (*print)();
      console.Flush();
      progress.Step();
      return console.OutputError() == 0;
    };
  });
  progress.Clear();
  if (console.OutputError() != 0) return FinishOutput(console);
  if (failure) return PrintError(*failure);
  if (summary != nullptr) *summary = {rows, selection.Count(), selection.NamesHash()};
  if (selection.Count() > 0) return LabStatus::Done;
  PrintError("there is no recording in what is selected");
  return LabStatus::UnreadableInput;
}

}  // namespace fernwick::lab
