#include "driver/options.h"

#include <gtest/gtest.h>

#include "testing/capture.h"
#include "testing/command_line.h"

namespace fernwick {
namespace {

using testing::CommandLine;

struct Parsed {
  Options options;
  std::string standardError;
};

Parsed Parse(const CommandLine& line) {
  testing::StandardErrorCapture errors;
  auto options = ParseOptions(line.Count(), line.Vector());
  return {std::move(options), errors.TakeText()};
}

void ExpectParsed(const CommandLine& line, const Options& expected,
                  const std::string& standardError = "") {
  const auto parsed = Parse(line);
  EXPECT_EQ(parsed.options.accepted, expected.accepted);
  EXPECT_EQ(parsed.options.verbose, expected.verbose);
  EXPECT_EQ(parsed.options.bypassVersionCheck, expected.bypassVersionCheck);
  EXPECT_EQ(parsed.options.personalitiesDirectory, expected.personalitiesDirectory);
  EXPECT_EQ(parsed.standardError, standardError);
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
  EXPECT_FALSE(Parse(rejected).options.accepted);
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

TEST(ParseOptions, FlagTakesNoValue) {
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

TEST(ParseOptions, TakesNothingBehindTheDoubleDash) {
  ExpectParsed({"--", "-v"}, {});
}

TEST(ParseOptions, LeavesTheCallersVectorAsItIs) {
  const CommandLine line{"operand", "-v"};
  Parse(line);
  EXPECT_STREQ(line.Vector()[1], "operand");
}

// The parser keeps its place between calls unless it is told to forget it.
TEST(ParseOptions, SecondCallStartsAfresh) {
  ExpectParsed({"-vXb", "-p", "/a"}, {.accepted = false, .verbose = true},
               "fernwick: invalid option -- 'b'\n");
  ExpectParsed({"-v", "-p", "/a"}, {.verbose = true, .personalitiesDirectory = "/a/Fernwick/"});
  ExpectParsed({"-X"}, {});
}

}  // namespace
}  // namespace fernwick
