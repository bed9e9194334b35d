#include "lab/support/isolation.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "testing/capture.h"

namespace fernwick::lab {
namespace {

TEST(SignalThatEnds, IsNoneForWorkThatComesToItsEnd) {
  EXPECT_EQ(SignalThatEnds([] {}), 0);
}

TEST(SignalThatEnds, IsThatOfTheProcess) {
  EXPECT_EQ(SignalThatEnds([] { std::abort(); }), SIGABRT);
}

TEST(SignalThatEnds, LetsNothingBePrintedNorChanged) {
  int changed = 0;
  testing::StandardErrorCapture errors;
  EXPECT_EQ(SignalThatEnds([&] {
              std::fputs("from the child", stderr);
              changed = 1;
            }),
            0);
  EXPECT_EQ(errors.TakeText(), "");
  EXPECT_EQ(changed, 0);
}

}  // namespace
}  // namespace fernwick::lab
