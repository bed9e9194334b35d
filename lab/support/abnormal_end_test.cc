#include "lab/support/abnormal_end.h"

#include <gtest/gtest.h>

#include <csignal>

#include "platform/diagnostics.h"

namespace fernwick::lab {
namespace {

TEST(FaultThatEnds, IsNoneForWorkThatComesToItsEnd) {
  EXPECT_EQ(FaultThatEnds([] {}), std::nullopt);
}

TEST(FaultThatEnds, IsNamedAsTheToolNamesIt) {
  EXPECT_EQ(FaultThatEnds([] { EndAbnormally("a fault"); }), "a fault");
}

TEST(FaultThatEnds, IsTheSignalOfAnythingElse) {
  EXPECT_EQ(FaultThatEnds([] { std::raise(SIGKILL); }), "signal 9");
}

TEST(FaultThatEnds, LeavesThisProcessWithoutAnObserver) {
  FaultThatEnds([] { EndAbnormally("a fault"); });
  EXPECT_EQ(AbnormalEndObserver, nullptr);
}

}  // namespace
}  // namespace fernwick::lab
