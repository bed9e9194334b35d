#include "lab/support/messages.h"

#include <gtest/gtest.h>

#include <cerrno>

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

TEST(PrintableText, EscapesWhatChangesTheDirectionOrTheLinesOfAText) {
  EXPECT_EQ(PrintableText("a\u202Ab\u202Ec\u2066d\u2069e\u2028f\u2029g"),
            "a\\u202ab\\u202ec\\u2066d\\u2069e\\u2028f\\u2029g");
  EXPECT_EQ(PrintableText("\u2027\u202F\u2065\u206A"), "\u2027\u202F\u2065\u206A");
}

TEST(PrintableLines, KeepsLineFeedsAndTabs) {
  EXPECT_EQ(PrintableLines("a\n\tb\x1B\u202E\n"), "a\n\tb\\033\\u202e\n");
}

TEST(UnreadableStatus, IsThatOfALackOnlyForMemoryAndDescriptors) {
  for (const int error : {EMFILE, ENFILE, ENOMEM}) {
    EXPECT_EQ(UnreadableStatus({.message = "", .systemError = error}), LabStatus::OutOfResources);
  }
  for (const int error : {0, EACCES, ENOENT, EIO}) {
    EXPECT_EQ(UnreadableStatus({.message = "", .systemError = error}), LabStatus::UnreadableInput);
  }
}

TEST(PathFailure, NamesThePath) {
  const auto failure = PathFailure("/p", EACCES);
  EXPECT_EQ(failure.error.message, "/p: Permission denied");
  EXPECT_EQ(failure.status, LabStatus::UnreadableInput);
}

}  // namespace
}  // namespace fernwick::lab
