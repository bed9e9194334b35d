#include "lab/command_line.h"

#include <gtest/gtest.h>

#include <string>

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

// Of a verb that takes a recording and a flag. The line is what stands behind the verb.
Parsed Parse(const testing::CommandLine& line) {
  Parsed parsed;
  CLI::App app("Shows one.", "fernwick-lab show");
  app.add_option("RECORDING", parsed.recording)->required();
  app.add_flag("--json", parsed.json);
  testing::StandardErrorCapture errors;
  parsed.status = ParseCommandLine(app, line.Count() - 1, line.Vector() + 1);
  parsed.standardError = errors.TakeText();
  return parsed;
}

TEST(CommandLine, BindsWhatItHolds) {
  const auto parsed = Parse({"--json", "a b"});
  EXPECT_EQ(parsed.status, std::nullopt);
  EXPECT_EQ(parsed.recording, "a b");
  EXPECT_TRUE(parsed.json);
  EXPECT_EQ(parsed.standardError, "");
}

TEST(CommandLine, ThatLacksAnOperandIsToldInOneLine) {
  const auto parsed = Parse({});
  EXPECT_EQ(parsed.status, 64);
  EXPECT_EQ(parsed.standardError,
            "fernwick-lab: RECORDING is required; see fernwick-lab show --help\n");
}

TEST(CommandLine, WithAnUnknownOptionIsToldInOneLineThatIsSafeToShow) {
  const auto parsed = Parse({"x", "--\x1B[31m"});
  EXPECT_EQ(parsed.status, 64);
  EXPECT_EQ(parsed.standardError,
            "fernwick-lab: The following argument was not expected: --\\033[31m; see fernwick-lab "
            "show --help\n");
}

TEST(CommandLine, BehindTwoDashesHoldsOperandsAlone) {
  EXPECT_EQ(Parse({"--", "--json"}).recording, "--json");
}

}  // namespace
}  // namespace fernwick::lab
