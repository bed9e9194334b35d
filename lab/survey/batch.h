#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/support/messages.h"
#include "lab/survey/selection.h"
#include "platform/console.h"
#include "platform/file_system.h"
#include "value/result.h"

namespace fernwick::lab {

/// The options of every verb that goes over many recordings.
struct BatchOptions {
  std::vector<std::string> paths;
  std::size_t jobs;
  std::size_t maxSize = MaxFileSize;  // of a recording in an archive, in bytes
};

/// Adds them to a verb's command line: RECORDING|DIRECTORY|-... and -j N, by default a thread for
/// each processor. Parsing the line fills `options`, which must outlive it.
void AddBatchOptions(CommandLine& line, BatchOptions& options);

/// How the recordings are selected, for the help.
extern const char SelectionHelp[];

/// Whether `PAYLOAD/Fernwick` is there. Prints an error when it is not.
bool IsPayload(const std::string& payload);

/// What prints the result of one computer on the console, or why there is none, as a lack of memory
/// or of permission says nothing about the computer.
using BatchResult = Result<std::function<void()>, LabError>;

/// Processes one computer, on any thread.
using BatchWork = std::function<BatchResult(Selected selected)>;

/// Processes everything that is selected, on several threads, and prints the results on `console`,
/// one after the other in the order of the selection. Returns LabStatus::Done, or the status after
/// a line on standard error: nothing was selected, or a computer without a result or a failure of
/// `console`, which end everything. On a terminal, standard error shows the progress.
int RunBatch(const BatchOptions& options, const BatchWork& work, Console& console);

}  // namespace fernwick::lab
