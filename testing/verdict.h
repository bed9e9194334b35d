#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

#include "testing/capture.h"

namespace fernwick::testing {

/// What a requirement check answered, and all that it wrote to standard error meanwhile.
struct Verdict {
  bool applies;
  std::string diagnostics;

  friend bool operator==(const Verdict&, const Verdict&) = default;
};

/// How a failed comparison shows it.
inline void PrintTo(const Verdict& verdict, std::ostream* out) {
  *out << (verdict.applies ? "applies, writes " : "does not apply, writes ")
       << ::testing::PrintToString(verdict.diagnostics);
}

/// The two verdicts, each with what is to be on standard error.
inline Verdict Applies(std::string diagnostics = {}) {
  return {true, std::move(diagnostics)};
}

inline Verdict DoesNotApply(std::string diagnostics = {}) {
  return {false, std::move(diagnostics)};
}

/// Calls `check` with the arguments, without a recorder.
template <typename Check, typename... Arguments>
Verdict VerdictOf(Check check, const Arguments&... arguments) {
  StandardErrorCapture standardError;
  const bool applies = check(arguments..., nullptr);
  return {applies, standardError.TakeText()};
}

}  // namespace fernwick::testing
