#include "lab/survey/progress.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include "testing/capture.h"

namespace fernwick::lab {
namespace {

using std::chrono::milliseconds;

TEST(ProgressText, HasTheRateAndTheTimeLeft) {
  EXPECT_EQ(ProgressText(100, 1000, milliseconds(2000)), "100 of 1000, 50 a second, 0:18 left");
  EXPECT_EQ(ProgressText(1, 100, milliseconds(1000)), "1 of 100, 1 a second, 1:39 left");
  EXPECT_EQ(ProgressText(100, 100, milliseconds(1500)), "100 of 100, 66 a second, 0:00 left");
}

TEST(ProgressText, WithoutATotalHasTheRateAlone) {
  EXPECT_EQ(ProgressText(100, std::nullopt, milliseconds(2000)), "100, 50 a second");
}

TEST(ProgressText, HasNothingThatIsNotKnownYet) {
  EXPECT_EQ(ProgressText(0, 10, milliseconds(0)), "0 of 10");
  EXPECT_EQ(ProgressText(0, 10, milliseconds(5)), "0 of 10, 0 a second");
  EXPECT_EQ(ProgressText(11, 10, milliseconds(1000)), "11 of 10, 11 a second");
}

TEST(Progress, WritesNothingWhereThereIsNoTerminal) {
  testing::StandardErrorCapture errors;
  Progress progress(1);
  const auto begin = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - begin < milliseconds(250)) progress.Step();
  progress.Clear();
  EXPECT_EQ(errors.TakeText(), "");
}

TEST(Progress, ClearsItsLineOnATerminal) {
  int terminal = -1;
  int shown = -1;
  ASSERT_EQ(openpty(&terminal, &shown, nullptr, nullptr, nullptr), 0);
  const int saved = dup(STDERR_FILENO);
  dup2(shown, STDERR_FILENO);
  {
    Progress progress(std::nullopt);
    const auto begin = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - begin < milliseconds(250)) progress.Step();
  }
  dup2(saved, STDERR_FILENO);
  close(saved);
  close(shown);
  std::string text;
  for (char byte = 0; read(terminal, &byte, 1) == 1;) text.push_back(byte);
  close(terminal);
  EXPECT_TRUE(text.starts_with("\r")) << text;
  EXPECT_TRUE(text.ends_with(" a second\x1B[K\r\x1B[K")) << text;
}

}  // namespace
}  // namespace fernwick::lab
