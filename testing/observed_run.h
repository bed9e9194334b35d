#pragma once

#include <string>
#include <vector>

#include "testing/capture.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"

namespace fernwick::testing {

/// All that can be seen of a run from outside.
struct ObservedRun {
  int status;
  std::vector<std::string> flushes;
  std::string standardError;
  std::vector<std::string> calls;  // of the registry

  friend bool operator==(const ObservedRun&, const ObservedRun&) = default;
};

/// Calls `run`, from a Registry& and a std::FILE* to an exit status, over the computer.
template <typename Run>
ObservedRun Observe(const Computer& computer, Run run) {
  StreamCapture capture;
  StandardErrorCapture errors;
  LoggingRegistry registry(computer.Recorded());
  const int status = run(registry, capture.Stream());
  return {status, capture.Flushes(), errors.TakeText(), registry.Calls()};
}

}  // namespace fernwick::testing
