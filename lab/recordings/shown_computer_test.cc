#include "lab/recordings/shown_computer.h"

#include <gtest/gtest.h>

#include "lab/support/json_values.h"
#include "testing/computer.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

std::string ShowAsText(const ShownComputer& computer, const std::optional<std::string>& wanted) {
  std::string text;
  PrintComputerText(computer, wanted, [&](std::string_view part) { text += part; });
  return text;
}

// As it is printed, without white space.
std::string ShowAsJson(const ShownComputer& computer, const std::optional<std::string>& wanted) {
  std::string text;
  PrintComputerJson(computer, wanted, [&](std::string_view part) { text += part; });
  const auto json = Json::parse(text);
  EXPECT_EQ(PrintJson(json), text);
  return PrintJsonRow(json);
}

testing::Computer SmallComputer() {
  testing::Computer computer;
  computer.SetBoard("Zed-2B", 3);
  const auto ridge = computer.AddThunderbolt("ridge", {{"UID", 0x15}});
  computer.AddService(ridge, "hpm0", "QuinceHPMDevice", {{"UUID", "a\nb"}});
  computer.AddService(ridge, "hpm1", "QuinceHPMDevice", {{"Address", 63}});
  return computer;
}

TEST(ShowAsText, IsATreeWithTheControllersMarkedAndTheirInventories) {
  const auto computer = SmallComputer();
  EXPECT_EQ(ShowAsText(Inspect(computer.Recorded()), "IOService"),
            "Board Zed-2B (0x2B), revision 3\n"
            "\n"
            "IOService:\n"
            "/\n"
            "  ridge  <IOThunderboltSwitch>  [Thunderbolt controller, not listed]\n"
            "        \"UID\" = 21\n"
            "    hpm0  <QuinceHPMDevice>  [USB-C port controller 1]\n"
            "          \"UUID\" = \"a\\nb\"\n"
            "    hpm1  <QuinceHPMDevice>  [USB-C port controller, not listed]\n"
            "          \"Address\" = 63\n"
            "\n"
            "Thunderbolt controllers as the tool sees them: none\n"
            "\n"
            "USB-C port controllers as the tool sees them:\n"
            "  1\n"
            "      \"Port UUID\" = \"a\\nb\"\n"
            "      \"RID\" = 5\n"
            "      \"Ridge UID\" = 21\n");
}

TEST(ShowAsText, ContainsEveryPlaneWhenNoneIsNamed) {
  testing::Computer computer;
  computer.Set(computer.Board(), "map", testing::Dict({{"a", 1}}));
  EXPECT_EQ(ShowAsText(Inspect(computer.Recorded()), std::nullopt),
            "Board (null) (0x0), revision 0\n"
            "\n"
            "IODeviceTree:\n"
            "/\n"
            "      \"map\" = {\n"
            "          \"a\" = 1;\n"
            "      }\n"
            "  options\n"
            "\n"
            "IOService:\n"
            "/\n"
            "\n"
            "Thunderbolt controllers as the tool sees them: none\n"
            "\n"
            "USB-C port controllers as the tool sees them: none\n");
}

TEST(ShowAsText, ReportsAnInventoryThatEndsTheRun) {
  testing::Computer computer;
  computer.AddThunderbolt("r\x1B", {{"Depth", 0}, {"Route String", 0}});
  EXPECT_EQ(ShowAsText(Inspect(computer.Recorded()), "IOService"),
            "Board (null) (0x0), revision 0\n"
            "\n"
            "IOService:\n"
            "/\n"
            "  r\\033  <IOThunderboltSwitch>  [Thunderbolt controller]\n"
            "        \"Depth\" = 0\n"
            "        \"Route String\" = 0\n"
            "\n"
            "Thunderbolt controllers as the tool sees them: reading them ends the run abnormally\n"
            "      (a Thunderbolt controller has no \"UID\")\n"
            "\n"
            "USB-C port controllers as the tool sees them: none\n");
}

TEST(ShowAsJson, ContainsTheSame) {
  const auto computer = SmallComputer();
  const auto json = ShowAsJson(Inspect(computer.Recorded()), "IOService");
  EXPECT_EQ(
      json,
      R"({"board":{"id":"Zed-2B","number":43,"revision":3},)"
      R"("planes":{"IOService":{"name":"","properties":{},"children":[)"
      R"({"name":"ridge","class":"IOThunderboltSwitch","controller":"Thunderbolt controller",)"
      R"("listed":null,"properties":{"UID":21},"children":[)"
      R"({"name":"hpm0","class":"QuinceHPMDevice","controller":"USB-C port controller","listed":1,)"
      R"("properties":{"UUID":"a\nb"},"children":[]},)"
      R"({"name":"hpm1","class":"QuinceHPMDevice","controller":"USB-C port controller",)"
      R"("listed":null,"properties":{"Address":63},"children":[]}]}]}},)"
      R"("thunderboltControllers":[],)"
      R"("portControllers":[{"Port UUID":"a\nb","RID":5,"Ridge UID":21}]})"
      "\n");
}

TEST(ShowAsJson, ReportsAnInventoryThatEndsTheRun) {
  testing::Computer computer;
  computer.AddThunderbolt("ridge", {{"Depth", 0}, {"Route String", 0}});
  const auto json = ShowAsJson(Inspect(computer.Recorded()), "none");
  EXPECT_EQ(json, R"({"board":{"id":null,"number":0,"revision":0},"planes":{},)"
                  R"("thunderboltControllers":{"endsRunAbnormally":true},"portControllers":[]})"
                  "\n");
}

// Neither the tree nor a value is indented without bound: 400 levels of four blanks would be 1600.
TEST(ShowAsText, HasABoundedIndentation) {
  testing::Computer computer;
  auto entry = computer.AddThunderbolt("ridge", {{"UID", 1}});
  for (int i = 0; i < 50; ++i) entry = computer.AddService(entry, "deep", "", {});
  computer.Set(entry, "nested", testing::NestedArrays(100, 1));
  const auto text = ShowAsText(Inspect(computer.Recorded()), "IOService");
  const std::string tree(64, ' ');
  EXPECT_NE(text.find("\n" + tree + "deep\n"), std::string::npos);
  EXPECT_EQ(text.find("\n" + tree + " deep\n"), std::string::npos);
  EXPECT_NE(text.find("\n" + tree + std::string(6 + 4 * 16, ' ') + "(\n"), std::string::npos);
  EXPECT_EQ(text.find(tree + std::string(6 + 4 * 16 + 1, ' ')), std::string::npos);
}

TEST(ShowAsText, EscapesWhatChangesTheDirectionOfAText) {
  testing::Computer computer;
  computer.Set(computer.Board(), "a\u202Eb", testing::List({"c\u2066d", 1}));
  const auto text = ShowAsText(Inspect(computer.Recorded()), "IODeviceTree");
  EXPECT_NE(text.find("      \"a\\u202eb\" = (\n          \"c\\u2066d\",\n          1\n      )\n"),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace fernwick::lab
