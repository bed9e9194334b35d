#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/survey/selection.h"
#include "platform/console.h"

namespace fernwick::lab {

/// The options of every verb that goes over many recordings.
struct BatchOptions {
  std::vector<std::string> paths;
  std::size_t jobs;
};

/// Adds them to a verb's command line: RECORDING|DIRECTORY|-... and -j N, by default a thread for
/// each processor. Parsing the line fills `options`, which must outlive it.
void AddBatchOptions(CommandLine& line, BatchOptions& options);

/// How the recordings are selected, for the help.
extern const char SelectionHelp[];

/// Whether `PAYLOAD/Fernwick` is there. Prints an error when it is not.
bool IsPayload(const std::string& payload);

/// Processes one computer, on any thread. Returns what prints its result on the console.
using BatchWork = std::function<std::function<void()>(const Selected& selected)>;

/// Processes everything that is selected, on several threads, and prints the results on `console`,
/// one after the other in the order of the selection. Returns LabStatus::Done, or the status after
/// a line on standard error: nothing was selected, or `console` failed, which ends everything. On a
/// terminal, standard error shows the progress.
int RunBatch(const BatchOptions& options, const BatchWork& work, Console& console);

}  // namespace fernwick::lab
