#include "lab/support/configuration_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/inputs/corruption.h"
#include "testing/temporary_directory.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

Result<ConfigurationFile, LabError> Load(std::string_view bytes) {
  const testing::TemporaryDirectory directory;
  return LoadConfiguration(directory.Write("Config.plist", bytes));
}

constexpr char Xml[] =
    "<plist>\r\n<dict>\r <key>\xC3\xA4</key><true/>\n\n <key>USBC</key>\n<array><dict/></array>\n"
    "</dict></plist>";

TEST(ConfigurationFile, NamesLocationsByLineAndColumn) {
  const auto file = *Load(Xml);
  EXPECT_EQ(Describe(file.LocationOf(file.Root().offset)), "2:1");
  const auto* key = KeyLocations(&file.Root()).Find("USBC");
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(Describe(file.LocationOf(key->offset)), "5:2");
  EXPECT_EQ(Describe(file.LocationOf(key->value.offset)), "6:1");
  EXPECT_EQ(Describe(file.LocationOf(FindElement(key->value, 0)->offset)), "6:8");
  EXPECT_EQ(Describe(file.LocationOf(KeyLocations(&file.Root()).Find("\xC3\xA4")->value.offset)),
            "3:14");
}

TEST(LocationOfCandidate, IsThatOfAnElementOrOfTheOneDictionary) {
  const auto file = *Load("{ LegacyUSBC = {}; USBC = ( {}, {} ); }");
  const KeyLocations keys(&file.Root());
  const auto* usbc = keys.Find("USBC");
  EXPECT_EQ(LocationOfCandidate(usbc, Types::Usbc, 1), &usbc->value.Elements()[1]);
  EXPECT_EQ(LocationOfCandidate(usbc, Types::Usbc, 2), nullptr);
  const auto* single = keys.Find("LegacyUSBC");
  EXPECT_EQ(LocationOfCandidate(single, Types::LegacyUsbc, 0), &single->value);
  EXPECT_EQ(LocationOfCandidate(nullptr, Types::Usbc, 0), nullptr);
}

TEST(ConfigurationFile, NamesEveryLocationAsAnErrorThereWouldBe) {
  const auto file = *Load(Xml);
  const std::string_view text = Xml;
  for (std::size_t offset = 0; offset <= text.size(); ++offset) {
    const auto expected = PositionAt(text, offset);
    const auto found = file.LocationOf(offset);
    EXPECT_EQ(found.line, expected.line) << offset;
    EXPECT_EQ(found.column, expected.column) << offset;
  }
}

TEST(ConfigurationFile, NamesEveryLocationInALongLineAsAnErrorThereWouldBe) {
  // Wide characters are where a count from the middle of the line may begin.
  const auto text =
      "<dict>\r\n<key>" + testing::Repeated("a\xE2\x82\xAC", 1500) + "</key>\r\n<true/></dict>";
  const auto file = *Load(text);
  for (std::size_t offset = 0; offset <= text.size(); offset += 7) {
    const auto expected = PositionAt(text, offset);
    const auto found = file.LocationOf(offset);
    EXPECT_EQ(found.line, expected.line) << offset;
    EXPECT_EQ(found.column, expected.column) << offset;
  }
}

TEST(ConfigurationFile, NamesLocationsInABinaryFileByTheirByte) {
  const auto file = *Load(testing::BinaryFile({testing::ArrayObject({1}), "\x09"}));
  EXPECT_EQ(Describe(file.LocationOf(FindElement(file.Root(), 0)->offset)), "byte 10");
}

TEST(ConfigurationFile, KeepsWhatItHasWhenItIsMoved) {
  auto file = *Load(Xml);
  const auto moved = std::move(file);
  const auto& [key, value] = moved.Value().AsDictionary()->Entries()[1];
  EXPECT_EQ(key, "USBC");
  EXPECT_EQ(value.AsArray()->size(), 1u);
  EXPECT_EQ(Describe(moved.LocationOf(KeyLocations(&moved.Root()).Find("USBC")->offset)), "5:2");
}

TEST(ConfigurationFile, FindsTheLastOfAKeyThatOccursTwice) {
  const auto file = *Load("{ a = b; a = c; }");
  EXPECT_EQ(Describe(file.LocationOf(KeyLocations(&file.Root()).Find("a")->offset)), "1:10");
}

TEST(ConfigurationFile, FindsNothingThatIsNotThere) {
  const auto file = *Load("( x )");
  EXPECT_EQ(KeyLocations(&file.Root()).Find("x"), nullptr);
  EXPECT_EQ(FindElement(file.Root(), 1), nullptr);
}

TEST(ConfigurationFile, ThatIsNoPropertyListIsAnErrorWithItsLocation) {
  const auto loading = Load("<plist><dict></plist>");
  ASSERT_FALSE(loading);
  EXPECT_EQ(loading.Error().status, 65);
  EXPECT_EQ(loading.Error().error.location, (FileLocation{1, 14}));
  EXPECT_EQ(Describe(loading.Error().error),
            "line 1, column 14: </plist> found where </dict> was expected");
}

TEST(ConfigurationFile, ThatCannotBeReadIsAnError) {
  const auto loading = LoadConfiguration("/nowhere/Config.plist");
  ASSERT_FALSE(loading);
  EXPECT_EQ(loading.Error().status, 66);
  EXPECT_EQ(Describe(loading.Error().error), "No such file or directory");
}

TEST(BoardNamed, IsTheDirectoryThatIsOpened) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Path() + "/Fernwick/";
  std::filesystem::create_directories(path + "Zed-1/inner");
  std::filesystem::create_directories(directory.Path() + "/elsewhere/deep");
  std::filesystem::create_directory_symlink("../elsewhere/deep", path + "Zed-2");
  const auto named = [&](const std::string& identifier) { return BoardNamed(identifier, path); };
  for (const auto* identifier :
       {"Zed-1", "Zed-1/", "Zed-1//", "/Zed-1", "//Zed-1", "./Zed-1", "Zed-1/.", "Zed-1/inner/..",
        "../Fernwick/Zed-1", "Zed-2/../../Fernwick/Zed-1"}) {
    EXPECT_EQ(named(identifier), "Zed-1") << identifier;
  }
  for (const auto* identifier : {"", ".", "/", "/.", "./", "Zed-1/..", "../Fernwick"}) {
    EXPECT_EQ(named(identifier), ".") << identifier;
  }
  EXPECT_EQ(named("Zed-2/"), "Zed-2");
  EXPECT_EQ(named("Zed-1//inner"), "Zed-1/inner");
  EXPECT_EQ(named(".."), "..");
  EXPECT_EQ(named("Zed-2/.."), "../elsewhere");
  EXPECT_EQ(named("..."), "...");
}

}  // namespace
}  // namespace fernwick::lab
