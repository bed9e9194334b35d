#pragma once

#include <gtest/gtest.h>

#include <vector>

namespace fernwick::testing {

/// Contains `value` to being equal to a copy of itself and to none of the others, which differ from
/// it in one member each.
template <typename T>
void ExpectDistinct(const T& value, const std::vector<T>& others) {
  EXPECT_TRUE(value == T(value));
  for (std::size_t i = 0; i < others.size(); ++i) EXPECT_FALSE(value == others[i]) << i;
}

}  // namespace fernwick::testing
