#include "platform/platform_log.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "testing/property_values.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::List;
using testing::TestConsole;

constexpr std::optional<std::string_view> AbsentText;
constexpr const PropertyValue* AbsentValue = nullptr;

/// What a value is formatted as by "%@".
std::string TextOf(const PropertyValue& value) {
  return FormatLogMessage("%@", {&value});
}

TEST(FormatLogMessage, WithoutDirectivesIsTheFormat) {
  EXPECT_EQ(FormatLogMessage("no firmware", {}), "no firmware");
  EXPECT_EQ(FormatLogMessage("", {}), "");
}

TEST(FormatLogMessage, AStringIsItsText) {
  EXPECT_EQ(TextOf("Zed-42"), "Zed-42");
  EXPECT_EQ(TextOf(""), "");
  EXPECT_EQ(TextOf("a \"b\"\\\n\t\u00E9\u65E5"), "a \"b\"\\\n\t\u00E9\u65E5");
}

TEST(FormatLogMessage, AnAbsentValueIsNull) {
  EXPECT_EQ(FormatLogMessage("%@", {AbsentValue}), "(null)");
}

TEST(FormatLogMessage, ATextIsItself) {
  EXPECT_EQ(FormatLogMessage("%@", {std::string_view("Zed-42")}), "Zed-42");
  EXPECT_EQ(FormatLogMessage("%@", {std::string_view()}), "");
}

TEST(FormatLogMessage, AnAbsentTextIsNull) {
  EXPECT_EQ(FormatLogMessage("%@", {AbsentText}), "(null)");
}

TEST(FormatLogMessage, AnotherKindIsItsDump) {
  EXPECT_EQ(TextOf(42), "42");
  EXPECT_EQ(TextOf(-1), "-1");
  EXPECT_EQ(TextOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(TextOf(23.1), "23.1");
  EXPECT_EQ(TextOf(3.0), "3");
  EXPECT_EQ(TextOf(true), "true");
  EXPECT_EQ(TextOf(false), "false");
  EXPECT_EQ(TextOf(Bytes("Zed-42")), "<5a65642d 3432>");
  EXPECT_EQ(TextOf(Date{0}), "1970-01-01T00:00:00Z");
  EXPECT_EQ(TextOf(Array()), "()");
  EXPECT_EQ(TextOf(Dictionary()), "{}");
  EXPECT_EQ(TextOf(List({"a", 1})), "(\n    \"a\",\n    1\n)");
  EXPECT_EQ(TextOf(Dict({{"a", "b"}})), "{\n    \"a\" = \"b\";\n}");
}

TEST(FormatLogMessage, ANumberIsDecimal) {
  EXPECT_EQ(FormatLogMessage("%lu", {0ul}), "0");
  EXPECT_EQ(FormatLogMessage("%lu", {200ul}), "200");
  EXPECT_EQ(FormatLogMessage("%lu", {std::numeric_limits<unsigned long>::max()}),
            "18446744073709551615");
}

TEST(FormatLogMessage, UsesItsArgumentsInTheirOrder) {
  const PropertyValue type = "USBC";
  EXPECT_EQ(FormatLogMessage("%@ of %@, code %lu: %@!",
                             {&type, std::string_view("Zed-42"), 100ul, AbsentValue}),
            "USBC of Zed-42, code 100: (null)!");
  EXPECT_EQ(FormatLogMessage("%lu%lu%@", {1ul, 2ul, std::string_view("3")}), "123");
}

TEST(FormatLogMessage, DirectivesInAnArgumentAreText) {
  const PropertyValue value = "%lu%s";
  EXPECT_EQ(FormatLogMessage("%@ %@", {std::string_view("%@ %lu 100% %n"), &value}),
            "%@ %lu 100% %n %lu%s");
}

TEST(FormatLogMessage, OtherPercentSignsAreText) {
  EXPECT_EQ(FormatLogMessage("100% %% %d %l %s %", {}), "100% %% %d %l %s %");
  EXPECT_EQ(FormatLogMessage("%%@", {std::string_view("a")}), "%a");
}

TEST(FormatLogMessage, ADirectiveWithoutArgumentStays) {
  EXPECT_EQ(FormatLogMessage("%@ and %@, %lu", {std::string_view("a")}), "a and %@, %lu");
}

/// What a line of the system log puts on standard error.
std::string Logged(std::string_view format, std::initializer_list<LogArgument> arguments = {}) {
  TestConsole console;
  PlatformLog(console, format, arguments);
  EXPECT_EQ(console.Messages(), std::vector{FormatLogMessage(format, arguments)});
  return console.Error();
}

TEST(PlatformLog, ReachesStandardErrorAsOneLineUnderTheToolsName) {
  EXPECT_EQ(
      Logged("Error reading plist: No files to support boardID: %@", {std::string_view("Zed-42")}),
      "fernwick: Error reading plist: No files to support boardID: Zed-42\n");
}

TEST(PlatformLog, FormatsValueAndNumber) {
  const PropertyValue value = List({"a", true});
  EXPECT_EQ(Logged("%@ with code %lu", {&value, 100ul}),
            "fernwick: (\n    \"a\",\n    true\n) with code 100\n");
}

TEST(PlatformLog, OfNothingIsALineAllTheSame) {
  EXPECT_EQ(Logged(""), "fernwick: \n");
}

TEST(PlatformLog, PercentSignsOfTheMessageAreText) {
  EXPECT_EQ(Logged("%s %n %m 100% %@", {std::string_view("%s%n%m%d%")}),
            "fernwick: %s %n %m 100% %s%n%m%d%\n");
}

TEST(PlatformLog, KeepsALongMessageWhole) {
  const std::string text(100'000, 'x');
  EXPECT_EQ(Logged("%@", {std::string_view(text)}), "fernwick: " + text + "\n");
}

TEST(PlatformLog, KeepsTheOrderOfItsLines) {
  TestConsole console;
  PlatformLog(console, "first");
  PlatformLog(console, "second %@", {AbsentText});
  EXPECT_EQ(console.Error(), "fernwick: first\nfernwick: second (null)\n");
}

}  // namespace
}  // namespace fernwick
