#include "lab/support/messages.h"

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

TEST(PrintableText, KeepsWhatATerminalShows) {
  EXPECT_EQ(PrintableText("desk.plist: caf\u00E9 \U0001F600"), "desk.plist: caf\u00E9 \U0001F600");
  EXPECT_EQ(PrintableText(""), "");
}

TEST(PrintableText, EscapesControlCharacters) {
  EXPECT_EQ(PrintableText("a\nb\x1B[31m\x7F\u009B"), "a\\012b\\033[31m\\177\\233");
}

TEST(PrintableText, EscapesBytesThatAreNotUtf8) {
  EXPECT_EQ(PrintableText("a\xFF\xC3"), "a\\377\\303");
}

}  // namespace
}  // namespace fernwick::lab
