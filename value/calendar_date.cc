#include "value/calendar_date.h"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "value/unicode/ascii.h"

namespace fernwick {
namespace {

namespace chrono = std::chrono;

constexpr std::string_view Pattern = "0000-00-00T00:00:00Z";  // 0 is any digit

constexpr std::int64_t SecondsAt(chrono::year_month_day day) {
  return chrono::duration_cast<chrono::seconds>(chrono::sys_days(day).time_since_epoch()).count();
}

constexpr std::int64_t Start2001 = SecondsAt(chrono::year(2001) / 1 / 1);
constexpr std::int64_t FirstSecond = SecondsAt(chrono::year(1) / 1 / 1);
constexpr std::int64_t EndOfYears = SecondsAt(chrono::year(10000) / 1 / 1);

bool FitsPattern(std::string_view text) {
  if (text.size() != Pattern.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (Pattern[i] == '0' ? !IsDecimalDigit(text[i]) : text[i] != Pattern[i]) return false;
  }
  return true;
}

// REQUIRES: digits alone.
int NumberOf(std::string_view digits) {
  int number = 0;
  for (const char digit : digits) number = number * 10 + (digit - '0');
  return number;
}

}  // namespace

std::optional<Date> ParseDate(std::string_view text) {
  if (!FitsPattern(text)) return std::nullopt;
  const auto field = [&](std::size_t at, std::size_t length) {
    return NumberOf(text.substr(at, length));
  };
  const chrono::year_month_day day{chrono::year(field(0, 4)),
                                   chrono::month(static_cast<unsigned>(field(5, 2))),
                                   chrono::day(static_cast<unsigned>(field(8, 2)))};
  const int hour = field(11, 2);
  const int minute = field(14, 2);
  const int second = field(17, 2);
  if (!day.ok() || field(0, 4) == 0 || hour > 23 || minute > 59 || second > 59) {
    return std::nullopt;
  }
  const int secondOfDay = (hour * 60 + minute) * 60 + second;
  return Date{SecondsAt(day) + secondOfDay};
}

std::string FormatDate(Date date) {
  const chrono::sys_seconds point{chrono::seconds(date.seconds)};
  const auto midnight = chrono::floor<chrono::days>(point);
  const chrono::year_month_day day{midnight};
  const chrono::hh_mm_ss<chrono::seconds> time{point - midnight};
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

std::optional<Date> DateFromSecondsSince2001(double seconds) {
  const double whole = std::floor(seconds);
  const bool inRange = whole >= static_cast<double>(FirstSecond - Start2001) &&
                       whole < static_cast<double>(EndOfYears - Start2001);
  if (!inRange) return std::nullopt;  // NaN too
  return Date{Start2001 + static_cast<std::int64_t>(whole)};
}

double SecondsSince2001(Date date) {
  return static_cast<double>(date.seconds - Start2001);
}

}  // namespace fernwick
