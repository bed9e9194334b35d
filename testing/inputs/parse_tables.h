#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/property_values.h"
#include "value/result.h"

namespace fernwick::testing {

/// An input and the value that a reader returns for it.
struct AcceptedRow {
  std::string input;
  PropertyValue value;
};

/// An input and the error, as Describe spells it, that a reader returns for it.
struct RejectedRow {
  std::string input;
  std::string error;
};

/// The error as Describe spells it, or an empty text when there is a value.
template <typename T>
std::string ErrorOf(const Result<T>& result) {
  return result ? std::string() : Describe(result.Error());
}

/// The part of an input that is useful in a failure's trace.
inline std::string TraceOf(const std::string& input) {
  return ::testing::PrintToString(input.substr(0, 200));
}

/// Checks that `parse`, from the input to a Result<PropertyValue>, returns the value of every row.
template <typename Parse>
void ExpectAccepted(Parse parse, const std::vector<AcceptedRow>& rows) {
  for (const auto& [input, value] : rows) {
    SCOPED_TRACE(TraceOf(input));
    const Result<PropertyValue> result = parse(input);
    if (!result) {
      ADD_FAILURE() << Describe(result.Error());
    } else {
      EXPECT_EQ(*result, value);
    }
  }
}

/// Checks that `parse` returns the error of every row.
template <typename Parse>
void ExpectRejected(Parse parse, const std::vector<RejectedRow>& rows) {
  for (const auto& [input, error] : rows) {
    SCOPED_TRACE(TraceOf(input));
    const Result<PropertyValue> result = parse(input);
    if (result) {
      ADD_FAILURE() << "accepted: " << ::testing::PrintToString(*result);
    } else {
      EXPECT_EQ(Describe(result.Error()), error);
    }
  }
}

}  // namespace fernwick::testing
