#include "fuzz/packed_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fernwick::fuzz {
namespace {

using Words = std::vector<std::string>;

TEST(PackedRun, IsALineTheRecordingAZeroByteAndTheConfiguration) {
  const std::string input("-v -p @\na\nb\0c\0d\n", 16);
  const auto run = Unpack(input);
  EXPECT_EQ(run.options, "-v -p @");
  EXPECT_EQ(run.recording, "a\nb");
  EXPECT_EQ(run.configuration, std::string("c\0d\n", 4));
  EXPECT_EQ(Pack(run), input);
}

TEST(PackedRun, WhatIsMissingIsEmpty) {
  const auto run = Unpack("-v");
  EXPECT_EQ(run.options, "-v");
  EXPECT_EQ(run.recording, "");
  EXPECT_EQ(run.configuration, "");
}

TEST(PackedRun, SplitsTheCommandLineAtEveryBlank) {
  EXPECT_EQ(WordsOf("", "/p"), Words());
  EXPECT_EQ(WordsOf("-v  -p a\tb", "/p"), Words({"-v", "", "-p", "a\tb"}));
}

TEST(PackedRun, ReplacesTheFirstSignOfAWordByThePayload) {
  EXPECT_EQ(WordsOf("-p @ --payload=@/ @@", "/p"), Words({"-p", "/p", "--payload=/p/", "/p@"}));
}

TEST(PackedRun, AWordEndsAtAZeroByte) {
  EXPECT_EQ(WordsOf(std::string_view("-p\0x -v", 7), "/p"), Words({"-p", "-v"}));
}

}  // namespace
}  // namespace fernwick::fuzz
