#include "lab/messages.h"

#include <gtest/gtest.h>

#include "testing/capture.h"

namespace fernwick::lab {
namespace {

std::string Printed(std::string_view message) {
  testing::StandardErrorCapture errors;
  PrintError(message);
  return errors.TakeText();
}

TEST(PrintError, IsOneLineUnderTheProgramsName) {
  EXPECT_EQ(Printed("desk.plist: caf\u00E9"), "fernwick-lab: desk.plist: caf\u00E9\n");
}

TEST(PrintError, IsSafeToShow) {
  EXPECT_EQ(Printed("a\nb\x1B[31m\xFF"), "fernwick-lab: a\\012b\\033[31m\\377\n");
}

}  // namespace
}  // namespace fernwick::lab
