#include "value/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/inputs/corruption.h"

namespace fernwick {
namespace {

using testing::Repeated;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Nan = std::numeric_limits<double>::quiet_NaN();

struct IntegerRow {
  const char* text;
  Integer integer;
};

TEST(ParseInteger, AcceptsAnOptionalSignAndDecimalOrHexadecimalDigits) {
  const IntegerRow rows[] = {
      {"0", 0},
      {"-0", 0},
      {"+0", 0},
      {"7", 7},
      {"+7", 7},
      {"-7", -7},
      {"007", 7},
      {"0x0", 0},
      {"0xff", 255},
      {"0xFf", 255},
      {"-0x10", -16},
      {"+0x10", 16},
      {"0x00000000000000000001", 1},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"9223372036854775808", std::uint64_t{1} << 63},
      {"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
      {"0xFFFFFFFFFFFFFFFF", std::numeric_limits<std::uint64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"-0x8000000000000000", std::numeric_limits<std::int64_t>::min()},
  };
  for (const auto& [text, integer] : rows) EXPECT_EQ(ParseInteger(text), integer) << text;
}

TEST(ParseInteger, RejectsAnythingElse) {
  const std::string rows[] = {
      "",
      "+",
      "-",
      "0x",
      "-0x",
      "x10",
      "0X10",
      "0x0x1",
      "--1",
      "+-1",
      "-+1",
      "- 1",
      " 1",
      "1 ",
      "\n1",
      "1\n",
      "1,000",
      "1_000",
      "1.0",
      "1.",
      "1e3",
      "12a",
      "0xg",
      "0x-1",
      "0b1",
      "ff",
      "\xEF\xBC\x91",  // a digit, but not an ASCII one
      "\xE2\x88\x92"
      "1",  // a minus, but not the ASCII one
      {"1\0", 2},
      "18446744073709551616",  // one beyond the bounds
      "0x10000000000000000",
      "-9223372036854775809",
      "-0x8000000000000001",
      "-18446744073709551615",
      "99999999999999999999999999999999",
  };
  for (const auto& text : rows) {
    EXPECT_EQ(ParseInteger(text), std::nullopt) << ::testing::PrintToString(text);
  }
}

struct RealRow {
  std::string text;
  double real;
};

TEST(ParseReal, AcceptsADecimalNumber) {
  const RealRow rows[] = {
      {"0", 0},
      {"3", 3},
      {"+3", 3},
      {"-3", -3},
      {"003", 3},
      {".5", 0.5},
      {"5.", 5},
      {"-.5", -0.5},
      {"5.e1", 50},
      {"1e5", 1e5},
      {"1E5", 1e5},
      {"1e+5", 1e5},
      {"1e-5", 1e-5},
      {"1e05", 1e5},
      {"41.050000000999994", 41.050000000999994},
      {"9007199254740993", 9007199254740992.0},  // rounded once, to the nearest
      {"18446744073709551616", 18446744073709551616.0},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
      {"0e999999", 0},
      {"0." + Repeated("0", 400) + "1e400", 0.1},
      {"1" + Repeated("0", 400) + "e-400", 1},
  };
  for (const auto& [text, real] : rows) EXPECT_EQ(ParseReal(text), real) << text;
}

TEST(ParseReal, KeepsTheSignOfZero) {
  EXPECT_TRUE(std::signbit(*ParseReal("-0")));
  EXPECT_TRUE(std::signbit(*ParseReal("-0.0")));
  EXPECT_FALSE(std::signbit(*ParseReal("+0")));
}

TEST(ParseReal, AcceptsInfinityInEitherCaseWithAnOptionalSign) {
  for (const char* text : {"inf", "INF", "Inf", "+inf", "infinity", "Infinity", "+INFINITY"}) {
    EXPECT_EQ(ParseReal(text), Infinity) << text;
  }
  for (const char* text : {"-inf", "-INF", "-infinity", "-iNfInItY"}) {
    EXPECT_EQ(ParseReal(text), -Infinity) << text;
  }
}

TEST(ParseReal, AcceptsNanInEitherCaseWithAnOptionalSign) {
  for (const char* text : {"nan", "NaN", "NAN", "+nan", "-nan"}) {
    ASSERT_TRUE(ParseReal(text).has_value()) << text;
    EXPECT_TRUE(std::isnan(*ParseReal(text))) << text;
  }
}

TEST(ParseReal, RejectsAnythingElse) {
  const std::string rows[] = {
      "",      "+",      "-",    ".",   "-.",    "e5",    ".e5",      "1e",        "1e+",  "1e5.0",
      "1.2.3", "1,5",    "--1",  "+-1", "-+1",   "- 1",   " 1",       "1 ",        "\t1",  "1\n",
      "0x10",  "0x1p3",  "1f",   "1d",  "infin", "in",    "infinit",  "infinityx", "inf ", " inf",
      "--inf", "nan(1)", "nanx", "n",   "na",    "1e5e5", {"1\0", 2},
  };
  for (const auto& text : rows) {
    EXPECT_EQ(ParseReal(text), std::nullopt) << ::testing::PrintToString(text);
  }
}

TEST(ParseReal, RejectsANumberBeyondTheRangeOfADouble) {
  for (const std::string text : {"1e309", "-1e309", "1.7976931348623159e308", "1e999999999999",
                                 "1e-400", "-1e-400", "2e-324", "1e-999999999999"}) {
    EXPECT_EQ(ParseReal(text), std::nullopt) << text;
  }
  EXPECT_EQ(ParseReal("1" + Repeated("0", 309)), std::nullopt);
}

TEST(FormatInteger, SpellsBase10) {
  EXPECT_EQ(FormatInteger(0), "0");
  EXPECT_EQ(FormatInteger(-7), "-7");
  EXPECT_EQ(FormatInteger(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(FormatInteger(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

struct FormattedRow {
  double real;
  const char* text;
};

const FormattedRow FormattedRows[] = {
    {3, "3"},
    {-3, "-3"},
    {0, "0"},
    {-0.0, "-0"},
    {0.1, "0.1"},
    {1e5, "1e+05"},
    {12345, "12345"},
    {100001, "100001"},
    {0.001, "0.001"},
    {0.0001, "1e-04"},
    {41.050000000999994, "41.050000000999994"},
    {1e22, "1e+22"},
    {9007199254740992.0, "9007199254740992"},
    {5e-324, "5e-324"},
    {1.7976931348623157e308, "1.7976931348623157e+308"},
    {-2.2250738585072014e-308, "-2.2250738585072014e-308"},
    {Infinity, "inf"},
    {-Infinity, "-inf"},
};

TEST(FormatReal, IsTheShortestTextThatReadsBack) {
  for (const auto& [real, text] : FormattedRows) {
    EXPECT_EQ(FormatReal(real), text);
    EXPECT_EQ(ParseReal(text), real);
  }
}

TEST(FormatReal, SpellsNanWithItsSign) {
  EXPECT_EQ(FormatReal(Nan), "nan");
  EXPECT_EQ(FormatReal(-Nan), "-nan");
}

}  // namespace
}  // namespace fernwick
