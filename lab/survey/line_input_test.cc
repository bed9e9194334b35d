#include "lab/survey/line_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "testing/inputs/corruption.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

std::vector<std::string> LinesOf(const std::string& text) {
  const testing::TemporaryDirectory directory;
  const int file = open(directory.Write("lines", text).c_str(), O_RDONLY);
  LineInput input(file);
  std::vector<std::string> lines;
  while (auto line = input.Next()) lines.push_back(*std::move(line));
  EXPECT_FALSE(input.IsWaiting());
  EXPECT_EQ(input.Error(), "");
  close(file);
  return lines;
}

using Lines = std::vector<std::string>;

TEST(LineInput, GivesEveryLineThatIsNotEmpty) {
  EXPECT_EQ(LinesOf("a\n\nb b\r\n\n c"), (Lines{"a", "b b\r", " c"}));
  EXPECT_EQ(LinesOf("a\n"), Lines{"a"});
  EXPECT_EQ(LinesOf("\n\n"), Lines{});
  EXPECT_EQ(LinesOf(""), Lines{});
}

TEST(LineInput, ReadsLinesOfAnyLengthInAnyNumber) {
  const std::string large(200'000, 'x');
  EXPECT_EQ(LinesOf(large + "\ny\n" + large), (Lines{large, "y", large}));
  EXPECT_EQ(LinesOf(testing::Repeated("line\n", 50'000)).size(), 50'000u);
}

TEST(LineInput, TellsWhyItCannotRead) {
  const int file = open("/dev/null", O_WRONLY);
  LineInput input(file);
  EXPECT_EQ(input.Next(), std::nullopt);
  EXPECT_FALSE(input.IsWaiting());
  EXPECT_EQ(input.Error(), "Bad file descriptor");
  close(file);
}

}  // namespace
}  // namespace fernwick::lab
