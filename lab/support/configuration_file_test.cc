#include "lab/support/configuration_file.h"

#include <gtest/gtest.h>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/temporary_directory.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

ConfigurationLoading Load(std::string_view bytes) {
  const testing::TemporaryDirectory directory;
  return LoadConfiguration(directory.Write("Config.plist", bytes));
}

constexpr char Xml[] =
    "<plist>\r\n<dict>\r <key>\xC3\xA4</key><true/>\n\n <key>USBC</key>\n<array><dict/></array>\n"
    "</dict></plist>";

TEST(ConfigurationFile, NamesPlacesByLineAndColumn) {
  const auto file = *Load(Xml).file;
  EXPECT_EQ(Describe(file.PlaceOf(file.Root().offset)), "2:1");
  const auto* key = FindKey(file.Root(), "USBC");
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(Describe(file.PlaceOf(key->offset)), "5:2");
  EXPECT_EQ(Describe(file.PlaceOf(key->value.offset)), "6:1");
  EXPECT_EQ(Describe(file.PlaceOf(FindElement(key->value, 0)->offset)), "6:8");
  EXPECT_EQ(Describe(file.PlaceOf(FindKey(file.Root(), "\xC3\xA4")->value.offset)), "3:14");
}

TEST(ConfigurationFile, NamesEveryPlaceAsAFaultThereWouldBeNamed) {
  const auto file = *Load(Xml).file;
  const std::string_view text = Xml;
  for (std::size_t offset = 0; offset <= text.size(); ++offset) {
    const auto expected = PositionAt(text, offset);
    const auto found = file.PlaceOf(offset);
    EXPECT_EQ(found.line, expected.line) << offset;
    EXPECT_EQ(found.column, expected.column) << offset;
  }
}

TEST(ConfigurationFile, NamesEveryPlaceInALongLineAsAFaultThereWouldBeNamed) {
  // Wide characters stand where a count from the middle of the line may begin.
  const auto text =
      "<dict>\r\n<key>" + testing::Repeated("a\xE2\x82\xAC", 1500) + "</key>\r\n<true/></dict>";
  const auto file = *Load(text).file;
  for (std::size_t offset = 0; offset <= text.size(); offset += 7) {
    const auto expected = PositionAt(text, offset);
    const auto found = file.PlaceOf(offset);
    EXPECT_EQ(found.line, expected.line) << offset;
    EXPECT_EQ(found.column, expected.column) << offset;
  }
}

TEST(ConfigurationFile, NamesPlacesInABinaryFileByTheirByte) {
  const auto file = *Load(testing::BinaryFile({testing::ArrayObject({1}), "\x09"})).file;
  EXPECT_EQ(Describe(file.PlaceOf(FindElement(file.Root(), 0)->offset)), "byte 10");
}

TEST(ConfigurationFile, FindsTheLastOfAKeyThatOccursTwice) {
  const auto file = *Load("{ a = b; a = c; }").file;
  EXPECT_EQ(Describe(file.PlaceOf(FindKey(file.Root(), "a")->offset)), "1:10");
}

TEST(ConfigurationFile, FindsNothingThatIsNotThere) {
  const auto file = *Load("( x )").file;
  EXPECT_EQ(FindKey(file.Root(), "x"), nullptr);
  EXPECT_EQ(FindElement(file.Root(), 1), nullptr);
}

TEST(ConfigurationFile, ThatIsNoPropertyListIsToldWithThePlace) {
  const auto loading = Load("<plist><dict></plist>");
  EXPECT_FALSE(loading.file.has_value());
  EXPECT_EQ(loading.status, 65);
  EXPECT_EQ(loading.error, "line 1, column 14: </plist> found where </dict> was expected");
}

TEST(ConfigurationFile, ThatCannotBeReadIsTold) {
  const auto loading = LoadConfiguration("/nowhere/Config.plist");
  EXPECT_EQ(loading.status, 66);
  EXPECT_EQ(loading.error, "No such file or directory");
}

}  // namespace
}  // namespace fernwick::lab
