#pragma once

#include <string>
#include <vector>

#include "driver/run_recorder.h"
#include "registry/registry.h"

namespace fernwick::lab {

/// How a run of the tool ended and all that it printed.
struct CapturedRun {
  int status;
  std::string standardOutput;
  std::string standardError;
};

/// Runs the tool, unchanged and in this process, over the registry. `toolArguments` is its command
/// line without its name. Nothing reaches this process's own streams. A run that ends abnormally
/// ends this process with it. The recorder may be null. REQUIRES: a temporary file can be made.
CapturedRun RunCaptured(Registry& registry, const std::vector<std::string>& toolArguments,
                        RunRecorder* recorder);

}  // namespace fernwick::lab
