#include "testing/inputs/value_domain.h"

#include <cstdint>
#include <limits>

#include "testing/property_values.h"

namespace fernwick::testing {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t TwoTo53 = std::int64_t{1} << 53;
constexpr std::int64_t MinSigned = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t TwoTo63 = std::uint64_t{1} << 63;
constexpr std::uint64_t MaxUnsigned = std::numeric_limits<std::uint64_t>::max();

std::vector<PropertyValue> Numbers() {
  return {false,       true,
          0,           1,
          2,           3,
          -1,          -2,
          0.0,         -0.0,
          0.5,         1.0,
          2.0,         2.0 - 1e-9,
          2.0 + 1e-9,  -2.0,
          TwoTo53 - 1, TwoTo53,
          TwoTo53 + 1, 9007199254740992.0,
          MinSigned,   -9223372036854775808.0,
          TwoTo63 - 1, TwoTo63,
          MaxUnsigned, 9223372036854775808.0,
          Infinity,    18446744073709551616.0,
          -Infinity,   NotANumber};
}

std::vector<PropertyValue> OtherKinds() {
  return {"",     "2", "b0A1", "B0A1", Bytes("2"), Bytes(""), Dictionary(), Dict({{"Value", 2}}),
          Date{2}};
}

std::vector<PropertyValue> Arrays() {
  return {Array(),
          List({2}),
          List({2.0}),
          List({3, 1}),
          List({"x", Dictionary(), 2}),
          NestedArrays(2, 2),
          List({true}),
          List({"2"}),
          List({"b0A1"}),
          List({5, "B0A1", Bytes("b0A1")}),
          List({5, "c2", "b0A1"}),
          List({NotANumber, Infinity}),
          List({TwoTo53 + 1, MaxUnsigned}),
          List({MinSigned, 9007199254740992.0})};
}

}  // namespace

std::vector<PropertyValue> ValueDomain() {
  auto domain = Numbers();
  for (const auto& part : {OtherKinds(), Arrays()}) {
    domain.insert(domain.end(), part.begin(), part.end());
  }
  return domain;
}

}  // namespace fernwick::testing
