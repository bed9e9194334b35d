#include "fuzz/text_form.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::fuzz {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::List;

TEST(TextForm, WritesStringsDataAndContainers) {
  const Dictionary value =
      Dict({{"a b", List({"c", Bytes("\x0F\xBD"), Array()})}, {"d", Dictionary()}});
  EXPECT_TRUE(FitsTextForm(value));
  EXPECT_EQ(WriteTextForm(value), "{ \"a b\" = ( \"c\",\n<0fbd>,\n( ),\n);\n\"d\" = { };\n}");
}

TEST(TextForm, EscapesWhatIsNotPlainAscii) {
  EXPECT_EQ(WriteTextForm("a\t\"\\~\x7F\u00E9\u0100\uFFFD\U0001F600"),
            "\"a\\011\\042\\134~\\177\\351\\U0100\\Ufffd\\Ud83d\\Ude00\"");
}

TEST(TextForm, WritesEverythingElseAsText) {
  const Array value = List({-1, 0.5, true, false, testing::DateOf("2026-11-20T00:00:00Z")});
  EXPECT_EQ(WriteTextForm(value), "( \"-1\",\n\"0.5\",\nYES,\nNO,\n\"2026-11-20T00:00:00Z\",\n)");
  for (const auto& element : value) {
    EXPECT_FALSE(FitsTextForm(element));
    EXPECT_FALSE(FitsTextForm(List({"a", element})));
    EXPECT_FALSE(FitsTextForm(Dict({{"a", element}})));
  }
}

}  // namespace
}  // namespace fernwick::fuzz
