#include "personality/bypass_flags.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

static_assert(sizeof(BypassUsbcUpdates) == 1 && sizeof(BypassVersionCheck) == 1);

const int UsbcUpdatesAtTheStart = BypassUsbcUpdates;
const int VersionCheckAtTheStart = BypassVersionCheck;

TEST(BypassFlags, AreClearWhenTheProgramStarts) {
  EXPECT_EQ(UsbcUpdatesAtTheStart, 0);
  EXPECT_EQ(VersionCheckAtTheStart, 0);
}

}  // namespace
}  // namespace fernwick
