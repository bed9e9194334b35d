#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/property_values.h"
#include "value/parse_fault.h"

namespace fernwick::testing {

/// An input and the value that a reader makes of it.
struct AcceptedRow {
  std::string input;
  PropertyValue value;
};

/// An input and the whole error that a reader gives for it.
struct RejectedRow {
  std::string input;
  std::string error;
};

/// As much of an input as is of use in a failure's trace.
inline std::string TraceOf(const std::string& input) {
  return ::testing::PrintToString(input.substr(0, 200));
}

/// Holds `parse`, from the input to a ParseOutcome, to the value of every row.
template <typename Parse>
void ExpectAccepted(Parse parse, const std::vector<AcceptedRow>& rows) {
  for (const auto& [input, value] : rows) {
    SCOPED_TRACE(TraceOf(input));
    const ParseOutcome outcome = parse(input);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.value, value);
  }
}

/// Holds `parse` to the error of every row, and to giving no value beside it.
template <typename Parse>
void ExpectRejected(Parse parse, const std::vector<RejectedRow>& rows) {
  for (const auto& [input, error] : rows) {
    SCOPED_TRACE(TraceOf(input));
    const ParseOutcome outcome = parse(input);
    EXPECT_EQ(outcome.error, error);
    EXPECT_FALSE(outcome.value.has_value());
  }
}

}  // namespace fernwick::testing
