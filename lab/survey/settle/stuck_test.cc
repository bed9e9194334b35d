// What needs no run; settle_computer_test.cc has the others.

#include "lab/survey/settle/stuck.h"

#include <gtest/gtest.h>

#include "lab/support/configuration_file.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

TEST(Locate, KnowsNothingOfAFileThatHasChanged) {
  testing::TemporaryDirectory directory;
  const auto path = directory.Write("Config.plist", "<dict/>");
  const auto file = *LoadConfiguration(path);
  static constexpr Requirement Maximum = {.key = "Existing Max Version", .hardwareKey = "Version"};
  StuckController stuck = {.controller = 1,
                           .type = "USBC",
                           .personality = 0,
                           .offered = 1,
                           .installed = {},
                           .requirements = {{{&Maximum, FailureReason::Unequal, {}, {}}, {}}}};
  Locate(stuck, "Zed-1", {}, &file);
  EXPECT_FALSE(stuck.requirements[0].origin);
  Locate(stuck, "Zed-1", {}, nullptr);
  EXPECT_FALSE(stuck.requirements[0].origin);
}

}  // namespace
}  // namespace fernwick::lab
