#include "value/calendar_date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace fernwick {
namespace {

constexpr double LastSecondSince2001 = 252423993599.0;   // 9999-12-31T23:59:59Z
constexpr double FirstSecondSince2001 = -63113904000.0;  // 0001-01-01T00:00:00Z

struct DateRow {
  const char* text;
  std::int64_t seconds;
};

const DateRow DateRows[] = {
    {"1970-01-01T00:00:00Z", 0},
    {"1969-12-31T23:59:59Z", -1},
    {"1970-01-01T00:00:59Z", 59},
    {"1970-01-01T00:59:00Z", 3540},
    {"1970-01-01T23:00:00Z", 82800},
    {"2001-01-01T00:00:00Z", 978307200},
    {"2026-11-20T00:00:00Z", 1795132800},
    {"2024-02-29T12:34:56Z", 1709210096},
    {"2000-02-29T00:00:00Z", 951782400},
    {"1900-02-28T23:59:59Z", -2203891201},
    {"1900-03-01T00:00:00Z", -2203891200},
    {"2038-01-19T03:14:08Z", 2147483648},
    {"0001-01-01T00:00:00Z", -62135596800},
    {"0999-07-04T01:02:03Z", -30625858677},
    {"9999-12-31T23:59:59Z", 253402300799},
};

TEST(CalendarDate, ReadsRealDays) {
  for (const auto& [text, seconds] : DateRows) {
    const auto date = ParseDate(text);
    ASSERT_TRUE(date.has_value()) << text;
    EXPECT_EQ(date->seconds, seconds) << text;
  }
}

TEST(CalendarDate, IsWrittenAsItIsRead) {
  for (const auto& [text, seconds] : DateRows) EXPECT_EQ(FormatDate(Date{seconds}), text);
}

TEST(CalendarDate, RejectsAnythingElse) {
  const char* const rows[] = {
      "",
      "2026-11-20",
      "2026-11-20T00:00:00",
      "2026-11-20T00:00:00z",
      "2026-11-20t00:00:00Z",
      "2026-11-20 00:00:00Z",
      "2026-11-20T00:00:00.5Z",
      "2026-11-20T00:00:00+00:00",
      "2026/11/20T00:00:00Z",
      "26-11-20T00:00:00Z",
      "02026-11-20T00:00:00Z",
      "2026-1-20T00:00:00Z",
      "+026-11-20T00:00:00Z",
      "-001-11-20T00:00:00Z",
      " 2026-11-20T00:00:00Z",
      "2026-11-20T00:00:00Z ",
      "2026-11-20T 0:00:00Z",
      "0000-01-01T00:00:00Z",
      "2026-00-20T00:00:00Z",
      "2026-13-20T00:00:00Z",
      "2026-11-00T00:00:00Z",
      "2026-11-31T00:00:00Z",
      "2026-12-32T00:00:00Z",
      "2023-02-29T00:00:00Z",
      "1900-02-29T00:00:00Z",
      "2100-02-29T00:00:00Z",
      "2000-02-30T00:00:00Z",
      "2026-11-20T24:00:00Z",
      "2026-11-20T00:60:00Z",
      "2026-11-20T23:59:60Z",
  };
  for (const auto* text : rows) EXPECT_EQ(ParseDate(text), std::nullopt) << text;
}

TEST(CalendarDate, SecondsSince2001CountFromThere) {
  EXPECT_EQ(DateFromSecondsSince2001(0), ParseDate("2001-01-01T00:00:00Z"));
  EXPECT_EQ(DateFromSecondsSince2001(-1), ParseDate("2000-12-31T23:59:59Z"));
  EXPECT_EQ(DateFromSecondsSince2001(816825600), ParseDate("2026-11-20T00:00:00Z"));
}

TEST(CalendarDate, SecondsSince2001AreCutToWholeOnes) {
  EXPECT_EQ(DateFromSecondsSince2001(0.999), ParseDate("2001-01-01T00:00:00Z"));
  EXPECT_EQ(DateFromSecondsSince2001(-0.0), ParseDate("2001-01-01T00:00:00Z"));
  EXPECT_EQ(DateFromSecondsSince2001(-0.001), ParseDate("2000-12-31T23:59:59Z"));
  EXPECT_EQ(DateFromSecondsSince2001(5e-324), ParseDate("2001-01-01T00:00:00Z"));
}

TEST(CalendarDate, SecondsSince2001EndWithTheYears1And9999) {
  EXPECT_EQ(DateFromSecondsSince2001(FirstSecondSince2001), ParseDate("0001-01-01T00:00:00Z"));
  EXPECT_EQ(DateFromSecondsSince2001(LastSecondSince2001), ParseDate("9999-12-31T23:59:59Z"));
  EXPECT_EQ(DateFromSecondsSince2001(LastSecondSince2001 + 0.5), ParseDate("9999-12-31T23:59:59Z"));
  EXPECT_EQ(DateFromSecondsSince2001(FirstSecondSince2001 - 0.5), std::nullopt);
  EXPECT_EQ(DateFromSecondsSince2001(LastSecondSince2001 + 1), std::nullopt);
}

TEST(CalendarDate, SecondsSince2001BeyondEveryCalendarAreNoDate) {
  for (const double seconds :
       {1e300, -1e300, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(DateFromSecondsSince2001(seconds), std::nullopt) << seconds;
  }
}

TEST(SecondsSince2001, AreThoseThatTheDateIsMadeFrom) {
  EXPECT_EQ(SecondsSince2001(Date{978307200}), 0);
  for (const double seconds : {-63113904000.0, -1.0, 1.0, 252423993599.0}) {
    EXPECT_EQ(SecondsSince2001(*DateFromSecondsSince2001(seconds)), seconds);
  }
}

}  // namespace
}  // namespace fernwick
