#pragma once

#include <functional>
#include <optional>
#include <string>

#include "lab/survey/selection.h"
#include "lab/survey/worker.h"

namespace fernwick::lab {

/// What became of one selected path: its refusal by the selection, an answer, or a worker's end.
struct WorkResult {
  std::string path;
  std::string refusal = {};  // empty when there is none
  std::optional<std::string> answer = {};
  std::string end = {};   // of the worker, as Worker::End; empty when it answered
  std::string note = {};  // the last one of a worker that ended
};

/// Takes the next result. Returns whether to go on.
using TakeResult = std::function<bool(const WorkResult&)>;

/// How a pool ended.
struct PoolEnd {
  bool complete;           // every path was taken
  std::string error = {};  // why no worker could be started; empty when that is not the reason
};

/// Works on every selected path in up to `jobs` processes and hands the results over in the order
/// of the selection. A process that ends abnormally costs the path that it was on and is replaced.
/// At most 64 results a job are kept back for one that comes before them; then the workers wait.
/// Returns with no process left. REQUIRES: jobs is at least 1; SIGPIPE is ignored.
PoolEnd WorkThrough(Selection& selection, const Work& work, std::size_t jobs,
                    const TakeResult& take);

}  // namespace fernwick::lab
