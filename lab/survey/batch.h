#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/survey/selection.h"
#include "platform/console.h"
#include "value/result.h"

namespace fernwick::lab {

/// The options of every verb that goes over many recordings.
struct BatchOptions {
  std::vector<std::string> paths;
  std::size_t jobs;
  SelectionLimits limits = {};
  std::optional<std::string> shard = {};  // as it was given; limits.shard is what it means
};

/// Adds them to a verb's command line: RECORDING|DIRECTORY|-... and -j N, by default a thread for
/// each processor. Parsing the line fills `options`, which must outlive it.
void AddBatchOptions(CommandLine& line, BatchOptions& options);

/// Adds --shard K/N to a verb's command line.
void AddShardOption(CommandLine& line, BatchOptions& options);

/// Reads what was given for --shard. Returns what is wrong with it; empty when nothing is.
std::string ReadShard(BatchOptions& options);

/// How the recordings are selected, for the help.
extern const char SelectionHelp[];

/// Whether `PAYLOAD/Fernwick` is there. Prints an error when it is not.
bool IsPayload(const std::string& payload);

/// What prints the result of one computer on the console, or why there is none, as a lack of memory
/// or of permission says nothing about the computer.
using BatchResult = Result<std::function<void()>, LabError>;

/// Processes one computer, on any thread.
using BatchWork = std::function<BatchResult(Selected selected)>;

/// What was selected, when everything was processed.
struct BatchSummary {
  std::size_t rows = 0;       // of this shard
  std::size_t computers = 0;  // of all shards
  std::string names;          // a hash of their names
};

/// Processes everything that is selected, on several threads, and prints the results on `console`,
/// one after the other in the order of the selection. Returns LabStatus::Done, or the status after
/// a line on standard error: nothing was selected, or a computer without a result or a failure of
/// `console`, which end everything. A shard may be empty if the others are not. On a terminal,
/// standard error shows the progress. Fills `summary`, which may be null.
int RunBatch(const BatchOptions& options, const BatchWork& work, Console& console,
             BatchSummary* summary = nullptr);

}  // namespace fernwick::lab
