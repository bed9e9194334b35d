#include "driver/options.h"

#include <getopt.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "testing/command_line.h"

namespace fernwick {
namespace {

using testing::CommandLine;

Options Parse(const CommandLine& line) {
  return ParseOptions(line.Count(), line.Vector());
}

void ExpectParsed(const CommandLine& line, const Options& expected,
                  const std::string& diagnostic = "") {
  const auto options = Parse(line);
  EXPECT_EQ(options.accepted, expected.accepted);
  EXPECT_EQ(options.verbose, expected.verbose);
  EXPECT_EQ(options.bypassVersionCheck, expected.bypassVersionCheck);
  EXPECT_EQ(options.personalitiesDirectory, expected.personalitiesDirectory);
  EXPECT_EQ(options.diagnostic, diagnostic);
}

TEST(ParseOptions, WithoutArgumentsAsksForNothing) {
  ExpectParsed({}, {});
}

TEST(ParseOptions, ShortAndLongForms) {
  ExpectParsed({"-v", "-p", "/a"}, {.verbose = true, .personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"--verbose", "--payload", "/a"},
               {.verbose = true, .personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"--payload=/a"}, {.personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"-vp/a"}, {.verbose = true, .personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"--bypassVersion"}, {.bypassVersionCheck = true});
}

TEST(ParseOptions, WhatIsLeftOfARejectedArgumentIsForgotten) {
  const CommandLine rejected = {"-zv"};  // which outlives the second, so that its "v" could be read
  EXPECT_FALSE(Parse(rejected).accepted);
  ExpectParsed({"-X"}, {});
}

TEST(ParseOptions, IgnoredOptionsHaveNoEffect) {
  ExpectParsed({"-X", "-s", "--preflight", "--subupdater", "-Xs"}, {});
}

TEST(ParseOptions, LastPayloadWins) {
  ExpectParsed({"-p", "/a", "-p", "/b"}, {.personalitiesDirectory = "/b/Fernwick/"});
}

TEST(ParseOptions, PayloadWithASlashDoublesIt) {
  ExpectParsed({"-p", "/a/"}, {.personalitiesDirectory = "/a//Fernwick/"});
}

TEST(ParseOptions, EmptyPayloadIsTheRoot) {
  ExpectParsed({"-p", ""}, {.personalitiesDirectory = "/Fernwick/"});
}

TEST(ParseOptions, PayloadThatIsNotUtf8IsAbsent) {
  ExpectParsed({"-p", "/a\xFF"}, {});
  ExpectParsed({"-p", "/a", "-p", "/b\xFF"}, {});
  ExpectParsed({"-p", "/b\xFF", "-p", "/a"}, {.personalitiesDirectory = "/a/Fernwick/"});
}

TEST(ParseOptions, ShortBIsUnknown) {
  ExpectParsed({"-b"}, {.accepted = false}, "fernwick: invalid option -- 'b'\n");
}

TEST(ParseOptions, PayloadNeedsItsArgument) {
  ExpectParsed({"-p"}, {.accepted = false}, "fernwick: option requires an argument -- 'p'\n");
}

TEST(ParseOptions, StopsAtTheFirstBadOption) {
  ExpectParsed({"-v", "--no", "-p", "/a"}, {.accepted = false, .verbose = true},
               "fernwick: unrecognized option '--no'\n");
  ExpectParsed({"--no", "-v"}, {.accepted = false}, "fernwick: unrecognized option '--no'\n");
}

TEST(ParseOptions, FlagAcceptsNoValue) {
  ExpectParsed({"--verbose=yes"}, {.accepted = false},
               "fernwick: option '--verbose' doesn't allow an argument\n");
}

TEST(ParseOptions, LongOptionsMayBeAbbreviatedWhereTheyAreUnambiguous) {
  ExpectParsed({"--bypass", "--verb"}, {.verbose = true, .bypassVersionCheck = true});
  ExpectParsed({"--p", "/a"}, {.accepted = false},
               "fernwick: option '--p' is ambiguous; possibilities: '--payload' '--preflight'\n");
}

TEST(ParseOptions, LongOptionsAreCaseSensitive) {
  ExpectParsed({"--bypassversion"}, {.accepted = false},
               "fernwick: unrecognized option '--bypassversion'\n");
}

TEST(ParseOptions, IgnoresOperandsAmongTheOptions) {
  ExpectParsed({"operand", "-v", "other"}, {.verbose = true});
}

TEST(ParseOptions, ParsesNothingAfterTheDoubleDash) {
  ExpectParsed({"--", "-v"}, {});
}

TEST(ParseOptions, LeavesTheCallersVectorAsItIs) {
  const CommandLine line{"operand", "-v"};
  Parse(line);
  EXPECT_STREQ(line.Vector()[1], "operand");
}

// The parser remembers its position between calls unless it is reset.
TEST(ParseOptions, CallsAreIndependent) {
  ExpectParsed({"-vXb", "-p", "/a"}, {.accepted = false, .verbose = true},
               "fernwick: invalid option -- 'b'\n");
  ExpectParsed({"-v", "-p", "/a"}, {.verbose = true, .personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"-X"}, {});
}

TEST(ParseOptions, WithoutEvenANameAsksForNothing) {
  char* const nothing[] = {nullptr};
  const auto options = ParseOptions(0, nothing);
  EXPECT_TRUE(options.accepted);
  EXPECT_FALSE(options.verbose);
  EXPECT_EQ(options.personalitiesDirectory, std::nullopt);
}

// Command lines that the C library's parser rejects, each for another reason.
const std::vector<std::vector<std::string>> RejectedLines = {
    {"-b"},
    {"-vXz"},
    {"-\xFF"},
    {"-p"},
    {"-vp"},
    {"--payload"},
    {"--no"},
    {"--no=\xFF\n%s"},
    {"--verbose=yes"},
    {"--verb=yes"},
    {"--p", "/a"},
    {"--bypassversion"},
    {"operand", "-v", "--", "-v", "-b"},
    {"-v", "operand", "-b", "--no"},
};

// Ends the process after the parser has rejected the line, like a program that leaves the
// diagnostics to it.
[[noreturn]] void ParseAndPrint(const CommandLine& line) {
  constexpr option longOptions[] = {
      {"verbose", no_argument, nullptr, 'v'},       {"payload", required_argument, nullptr, 'p'},
      {"preflight", no_argument, nullptr, 'X'},     {"subupdater", no_argument, nullptr, 's'},
      {"bypassVersion", no_argument, nullptr, 'b'}, {nullptr, 0, nullptr, 0},
  };
  optind = 0;
  int found = 0;
  while (found != -1 && found != '?') {
    found = getopt_long(line.Count(), line.Vector(), "vp:Xs", longOptions, nullptr);
  }
  std::_Exit(found == '?' ? 2 : 0);
}

TEST(ParseOptions, HasTheDiagnosticThatTheParserWouldPrint) {
  for (const auto& words : RejectedLines) {
    const CommandLine line(words);
    const auto options = Parse(line);
    EXPECT_EXIT(ParseAndPrint(line), ::testing::ExitedWithCode(options.accepted ? 0 : 2),
                ::testing::Eq(options.diagnostic))
        << words.front();
    EXPECT_EQ(options.accepted, words.back() == "-b" && words.front() == "operand")
        << words.front();
    EXPECT_EQ(options.diagnostic.empty(), options.accepted) << words.front();
  }
}

TEST(ParseOptions, PrintsNothingAndLeavesStandardErrorAsItWas) {
  const auto parseAndWrite = [](const CommandLine& line) {
    Parse(line);
    std::fputs("still here", stderr);
    std::fflush(stderr);
    std::_Exit(0);
  };
  for (const auto& words : RejectedLines) {
    EXPECT_EXIT(parseAndWrite(CommandLine(words)), ::testing::ExitedWithCode(0),
                ::testing::Eq("still here"))
        << words.front();
  }
  EXPECT_EXIT(parseAndWrite({"-v"}), ::testing::ExitedWithCode(0), ::testing::Eq("still here"));
  std::FILE* const before = stderr;
  Parse({"-b"});
  EXPECT_EQ(stderr, before);
}

}  // namespace
}  // namespace fernwick
