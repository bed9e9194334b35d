#pragma once

#include <ostream>
#include <string>

namespace fernwick::testing {

/// A row of a table whose rows are tests of their own, and what its test is called.
template <typename Row>
struct Named {
  std::string name;
  Row row;

  friend void PrintTo(const Named& named, std::ostream* out) { *out << named.name; }
};

/// Names the tests of INSTANTIATE_TEST_SUITE_P after the rows.
inline constexpr auto RowName = [](const auto& info) { return info.param.name; };

}  // namespace fernwick::testing
