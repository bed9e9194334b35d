#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

#include "personality/requirements.h"
#include "testing/test_console.h"

namespace fernwick {

/// The form in which a failed comparison prints it.
inline void PrintTo(const Verdict& verdict, std::ostream* out) {
  *out << (verdict.failure ? "fails, reason " + std::to_string(static_cast<int>(*verdict.failure))
                           : "is met")
       << ", diagnostic " << ::testing::PrintToString(verdict.diagnostic);
}

}  // namespace fernwick

namespace fernwick::testing {

/// What a requirement check returned, and all that it wrote to standard error.
struct CheckResult {
  bool applies;
  std::string diagnostics;

  friend bool operator==(const CheckResult&, const CheckResult&) = default;
};

/// The form in which a failed comparison prints it.
inline void PrintTo(const CheckResult& result, std::ostream* out) {
  *out << (result.applies ? "applies, writes " : "does not apply, writes ")
       << ::testing::PrintToString(result.diagnostics);
}

/// The two results, each with the expected standard error.
inline CheckResult Applies(std::string diagnostics = {}) {
  return {true, std::move(diagnostics)};
}

inline CheckResult DoesNotApply(std::string diagnostics = {}) {
  return {false, std::move(diagnostics)};
}

/// Calls one of the checks.
template <typename Check>
CheckResult ResultOf(Check check, Dictionary personality, const RequirementContext& context) {
  TestConsole console;
  const bool applies = check(personality, context, console);
  return {applies, console.Error()};
}

}  // namespace fernwick::testing
