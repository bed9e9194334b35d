#pragma once

namespace fernwick::testing {

/// While it exists, what goes to the system log also goes to standard error: after "log: ", a line
/// a message. One at a time.
class SystemLogOnStandardError {
 public:
  SystemLogOnStandardError();
  ~SystemLogOnStandardError();
  SystemLogOnStandardError(const SystemLogOnStandardError&) = delete;
  SystemLogOnStandardError& operator=(const SystemLogOnStandardError&) = delete;
};

}  // namespace fernwick::testing
