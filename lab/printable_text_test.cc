#include "lab/printable_text.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

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
