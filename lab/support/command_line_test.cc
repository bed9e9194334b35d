#include "lab/support/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/capture.h"
#include "testing/command_line.h"

namespace fernwick::lab {
namespace {

struct Parsed {
  std::optional<int> status;
  std::string recording;
  bool json = false;
  std::string standardError;
};

// Parses the line of a verb with a recording and a flag. The line is what follows the verb.
Parsed Parse(const testing::CommandLine& line) {
  Parsed parsed;
  const CommandLine show = {
      .verb = "show",
      .description = "Shows one.",
      .footer = "",
      .arguments = {
          {.name = "RECORDING", .target = &parsed.recording, .help = "the one", .minCount = 1},
          {.name = "--json", .target = &parsed.json, .help = "print JSON"},
      }};
  testing::StandardErrorCapture errors;
  parsed.status = ParseCommandLine(show, line.Count() - 1, line.Vector() + 1);
  parsed.standardError = errors.TakeText();
  return parsed;
}

TEST(CommandLine, BindsItsArguments) {
  const auto parsed = Parse({"--json", "a b"});
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_EQ(parsed.recording, "a b");
  EXPECT_TRUE(parsed.json);
  EXPECT_EQ(parsed.standardError, "");
}

TEST(CommandLine, WithoutANeededOperandIsRefusedInOneLine) {
  const auto parsed = Parse({});
  EXPECT_EQ(parsed.status, 64);
  EXPECT_EQ(parsed.standardError,
            "fernwick-lab: RECORDING is required; see fernwick-lab show --help\n");
}

// Parses the line of a verb with an operand or an option instead of it.
Parsed ParseEither(const testing::CommandLine& line) {
  Parsed parsed;
  const CommandLine show = {
      .verb = "show",
      .description = "Shows one.",
      .footer = "",
      .arguments = {
          {.name = "RECORDING", .target = &parsed.recording, .help = "the one"},
          {.name = "--host", .target = &parsed.json, .help = "this one", .replaces = "RECORDING"},
      }};
  testing::StandardErrorCapture errors;
  parsed.status = ParseCommandLine(show, line.Count() - 1, line.Vector() + 1);
  parsed.standardError = errors.TakeText();
  return parsed;
}

TEST(CommandLine, NeedsAnOperandOrTheOptionThatReplacesIt) {
  EXPECT_EQ(ParseEither({"--host"}).status, std::nullopt);
  EXPECT_EQ(ParseEither({"one"}).status, std::nullopt);
  const auto neither = ParseEither({});
  EXPECT_EQ(neither.status, 64);
  EXPECT_EQ(neither.standardError,
            "fernwick-lab: RECORDING or --host is required; see fernwick-lab show --help\n");
  const auto both = ParseEither({"one", "--host"});
  EXPECT_EQ(both.status, 64);
  EXPECT_EQ(both.standardError,
            "fernwick-lab: --host is used in place of RECORDING; see fernwick-lab show --help\n");
}

TEST(CommandLine, WithAnUnknownOptionIsRefusedInOneLineThatIsSafeToShow) {
  const auto parsed = Parse({"x", "--\x1B[31m"});
  EXPECT_EQ(parsed.status, 64);
  EXPECT_EQ(parsed.standardError,
            "fernwick-lab: there is no option \"--\\033[31m\"; see fernwick-lab show --help\n");
}

TEST(CommandLine, WithAMistypedOptionNamesItBeforeWhatIsMissing) {
  const std::string refusal =
      "fernwick-lab: there is no option \"--jsno\" (did you mean \"--json\"?); see fernwick-lab "
      "show --help\n";
  EXPECT_EQ(Parse({"--jsno"}).standardError, refusal);
  EXPECT_EQ(Parse({"x", "--jsno=1"}).standardError, refusal);
  EXPECT_EQ(Parse({"x", "-j"}).standardError,
            "fernwick-lab: there is no option \"-j\"; see fernwick-lab show --help\n");
}

TEST(CommandLine, WithAnOperandTooManyIsRefused) {
  EXPECT_EQ(Parse({"x", "y"}).standardError,
            "fernwick-lab: the operand \"y\" is not expected; see fernwick-lab show --help\n");
  EXPECT_EQ(Parse({"x", "--", "--jsno"}).standardError,
            "fernwick-lab: the operand \"--jsno\" is not expected; see fernwick-lab show --help\n");
}

TEST(CommandLine, AfterTwoDashesContainsOnlyOperands) {
  EXPECT_EQ(Parse({"--", "--json"}).recording, "--json");
}

struct ParsedMany {
  std::optional<int> status;
  std::vector<std::string> recordings;
  std::vector<std::string> keys;
  std::optional<std::string> plane;
  std::string format = "text";
  std::size_t jobs = 4;
  std::optional<std::size_t> share;
  std::string standardError;
};

// Parses the line of a verb with at least two recordings and an option of every kind with a value.
ParsedMany ParseMany(const testing::CommandLine& line) {
  ParsedMany parsed;
  const CommandLine many = {
      .verb = "many",
      .description = "",
      .footer = "",
      .arguments = {
          {.name = "RECORDING", .target = &parsed.recordings, .help = "", .minCount = 2},
          {.name = "--key", .target = &parsed.keys, .help = ""},
          {.name = "--plane", .target = &parsed.plane, .help = ""},
          {.name = "--format", .target = &parsed.format, .help = "", .choices = {"text", "json"}},
          {.name = "-j,--jobs", .target = BoundedNumber{&parsed.jobs, 1, 8}, .help = ""},
          {.name = "--share", .target = Percentage{&parsed.share}, .help = ""},
      }};
  testing::StandardErrorCapture errors;
  parsed.status = ParseCommandLine(many, line.Count() - 1, line.Vector() + 1);
  parsed.standardError = errors.TakeText();
  return parsed;
}

TEST(CommandLine, LeavesTheTargetsOfAbsentArgumentsUnchanged) {
  const auto parsed = ParseMany({"a", "b"});
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_EQ(parsed.recordings, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(parsed.keys, std::vector<std::string>{});
  EXPECT_EQ(parsed.plane, std::nullopt);
  EXPECT_EQ(parsed.format, "text");
  EXPECT_EQ(parsed.jobs, 4u);
  EXPECT_EQ(parsed.share, std::nullopt);
}

TEST(CommandLine, HasPercentagesInTenths) {
  const auto shareOf = [](const std::string& text) {
    const auto parsed = ParseMany({"a", "b", ("--share=" + text).c_str()});
    EXPECT_EQ(parsed.status, std::nullopt) << parsed.standardError;
    return parsed.share;
  };
  EXPECT_EQ(shareOf("0"), 0u);
  EXPECT_EQ(shareOf("0.0"), 0u);
  EXPECT_EQ(shareOf("7"), 70u);
  EXPECT_EQ(shareOf("99.5"), 995u);
  EXPECT_EQ(shareOf("100"), 1000u);
  EXPECT_EQ(shareOf("100.0"), 1000u);
  for (const std::string text : {"",    ".",    ".5",   "5.",    "100.1",
                                 "101", "1000", "0000", "99.55", "-1",
                                 "+1",  "1e1",  "99,5", "nan",   " 5",
                                 "5 ",  "5%",   "99.x", "9.9.9", "99999999999999999999"}) {
    const auto parsed = ParseMany({"a", "b", "--share", text.c_str()});
    EXPECT_EQ(parsed.status, 64) << text;
    EXPECT_EQ(parsed.standardError,
              "fernwick-lab: --share: \"" + text +
                  "\" is not a number from 0 to 100 with at most one decimal; see fernwick-lab "
                  "many --help\n");
  }
}

TEST(CommandLine, BindsOneValueToEachOccurrenceOfAnOption) {
  const auto parsed = ParseMany(
      {"--key", "x", "a", "--key", "y", "b", "--plane", "p", "c", "--format", "json", "-j8"});
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_EQ(parsed.recordings, (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(parsed.keys, (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(parsed.plane, "p");
  EXPECT_EQ(parsed.format, "json");
  EXPECT_EQ(parsed.jobs, 8u);
}

TEST(CommandLine, WithAValueThatIsNotAcceptedIsRefused) {
  const auto refusal = [](const testing::CommandLine& line) {
    const auto parsed = ParseMany(line);
    EXPECT_EQ(parsed.status, 64);
    return parsed.standardError;
  };
  const std::string help = "; see fernwick-lab many --help\n";
  EXPECT_EQ(refusal({"a", "b", "--format", "xml"}),
            "fernwick-lab: --format: \"xml\" is not one of text, json" + help);
  for (const std::string jobs :
       {"0", "9", "", "x", "1x", "-1", "+1", " 1", "0x1", "99999999999999999999"}) {
    EXPECT_EQ(refusal({"a", "b", "--jobs", jobs.c_str()}),
              "fernwick-lab: --jobs: \"" + jobs + "\" is not a number from 1 to 8" + help);
  }
  EXPECT_EQ(refusal({"a", "b", "-j1", "-j2"}), "fernwick-lab: --jobs can be used once" + help);
  EXPECT_EQ(refusal({"a", "b", "--plane", "p", "--plane=q"}),
            "fernwick-lab: --plane can be used once" + help);
  EXPECT_EQ(refusal({"a", "b", "--plane"}),
            "fernwick-lab: --plane: 1 required TEXT missing" + help);
  EXPECT_EQ(refusal({"a"}), "fernwick-lab: RECORDING: At least 2 required but received 1" + help);
}

TEST(CommandLine, WithAMistypedOptionNamesItBeforeAWrongValue) {
  for (const auto& line : {testing::CommandLine{"a", "--plnae", "p", "--format", "xml"},
                           testing::CommandLine{"-j0", "a", "b", "--plnae=p"},
                           testing::CommandLine{"--share", "--plnae", "--plnae"},
                           testing::CommandLine{"--plane", "p", "--plane", "q", "--plnae"}}) {
    EXPECT_EQ(ParseMany(line).standardError,
              "fernwick-lab: there is no option \"--plnae\" (did you mean \"--plane\"?); see "
              "fernwick-lab many --help\n");
  }
}

TEST(CommandLine, HasListsOfWords) {
  using Words = std::vector<std::string_view>;
  EXPECT_EQ(WordsOf("a,b c,d"), (Words{"a", "b c", "d"}));
  EXPECT_EQ(WordsOf("a"), Words{"a"});
  EXPECT_EQ(WordsOf(""), Words{""});
  EXPECT_EQ(WordsOf(",a,"), (Words{"", "a", ""}));
}

}  // namespace
}  // namespace fernwick::lab
