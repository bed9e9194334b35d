#pragma once

#include <unistd.h>

#include <string>

#include "testing/redirection.h"

namespace fernwick::testing {

/// Everything that reaches standard error, diagnostics and system log alike, from its construction
/// to TakeText. One at a time.
class StandardErrorCapture {
 public:
  /// Ends the capture. Returns everything that was written.
  std::string TakeText() {
    redirection_.End();
    return redirection_.Text();
  }

 private:
  Redirection redirection_{STDERR_FILENO};
};

}  // namespace fernwick::testing
