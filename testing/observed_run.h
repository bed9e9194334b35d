#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/fault.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/test_console.h"

namespace fernwick::testing {

/// Everything observable about a run.
struct ObservedRun {
  int status;
  std::optional<Fault> fault;
  std::vector<std::string> flushes;
  std::string standardError;
  std::vector<std::string> calls;  // of the registry

  friend bool operator==(const ObservedRun&, const ObservedRun&) = default;
};

/// Calls `run`, from a Registry& and a Console& to a RunResult, over the computer.
template <typename Run>
ObservedRun Observe(const Computer& computer, Run run) {
  TestConsole console;
  LoggingRegistry registry(computer.Recorded());
  const auto result = run(registry, console);
  return {result.status, result.fault, console.Flushes(), console.Error(), registry.Calls()};
}

}  // namespace fernwick::testing
