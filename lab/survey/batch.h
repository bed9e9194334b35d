#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "lab/support/command_line.h"
#include "lab/survey/worker_pool.h"
#include "platform/output.h"

namespace fernwick::lab {

/// What every verb takes that goes over many recordings.
struct BatchOptions {
  std::vector<std::string> paths;
  std::size_t jobs;
};

/// Adds them to a verb's command line: RECORDING|DIRECTORY|-... and -j N, by default a process for
/// each processor. Parsing the line fills `options`, which has to outlive it.
void AddBatchOptions(CommandLine& line, BatchOptions& options);

/// Says how the recordings are selected, for the help.
extern const char SelectionHelp[];

/// Whether the payload can be used at all: a `PAYLOAD/Fernwick` is there. Says so when it is not.
bool IsPayload(const std::string& payload);

/// Works on all that is selected and hands it to `take`, in order, which may print on `out` and
/// returns an error that ends everything, empty when there is none. Returns LabStatus::Done, or the
/// status after a line on standard error: nothing was selected, `out` or `take` failed, or there
/// was no process to be had. On a terminal, standard error shows how far it has come.
int RunBatch(const BatchOptions& options, const Work& work, Output& out,
             const std::function<std::string(const WorkResult&)>& take);

}  // namespace fernwick::lab
