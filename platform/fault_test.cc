#include "platform/fault.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

TEST(Fault, IsDescribedInALineForTheSystemLog) {
  EXPECT_STREQ(Describe(Fault::MissingUid), "a Thunderbolt controller has no UID");
  EXPECT_STREQ(Describe(Fault::BareSwitch), "a boot argument is a switch name without a value");
}

}  // namespace
}  // namespace fernwick
