#include "lab/what_if/changes.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

std::string ErrorOf(const WhatIfArguments& arguments) {
  const auto changes = ParseChanges(arguments);
  return changes ? "no error" : Describe(changes.Error());
}

std::string PropertyError(const std::string& text) {
  return ErrorOf({.properties = {text}, .personalities = {}});
}

std::string PersonalityError(const std::string& text) {
  return ErrorOf({.properties = {}, .personalities = {text}});
}

TEST(ParseChanges, WithoutOptionsIsEmpty) {
  const auto changes = ParseChanges({});
  ASSERT_TRUE(changes);
  EXPECT_TRUE(changes->Texts().empty());
  EXPECT_FALSE(changes->boardRevision);
}

TEST(ParseChanges, SplitsAPropertyAtTheFirstEqualsAndTheColonBeforeIt) {
  const auto changes = ParseChanges(
      {.properties = {"hpm0:Version=1", "IOService:/a:b/c:boot-args=x=1:2", "options:boot-args="},
       .personalities = {}});
  ASSERT_TRUE(changes);
  ASSERT_EQ(changes->properties.size(), 3u);
  EXPECT_EQ(changes->properties[0].entry, "hpm0");
  EXPECT_EQ(changes->properties[0].property, "Version");
  EXPECT_EQ(changes->properties[0].value->value, PropertyValue(1));
  EXPECT_EQ(changes->properties[1].entry, "IOService:/a:b/c");
  EXPECT_EQ(changes->properties[1].property, "boot-args");
  EXPECT_EQ(changes->properties[1].value->value, PropertyValue("x=1:2"));
  EXPECT_EQ(changes->properties[2].entry, "options");
  EXPECT_FALSE(changes->properties[2].value);
}

TEST(ParseChanges, RefusesAPropertyOfAnotherForm) {
  for (const char* text :
       {"", "hpm0", "hpm0:Version", "=1", ":=1", ":Version=1", "hpm0:=1", "a=b:c"}) {
    EXPECT_EQ(PropertyError(text),
              "--set " + std::string(text) + ": it is not of the form ENTRY:PROPERTY=VALUE");
  }
  EXPECT_EQ(PropertyError("hpm0:Version=(1,)"), "--set an element of the list is missing");
  EXPECT_TRUE(PropertyError("\xFF:Version=1").starts_with("--set "));
  EXPECT_TRUE(PropertyError("hpm0:\xFF=1").starts_with("--set "));
}

TEST(ParseChanges, SplitsAPersonality) {
  const auto changes = ParseChanges(
      {.properties = {}, .personalities = {"USBC:12:SetNVRAM=(a:b=c)", "LegacyUSBC:1:a:b="}});
  ASSERT_TRUE(changes);
  ASSERT_EQ(changes->personalities.size(), 2u);
  EXPECT_EQ(changes->personalities[0].type, "USBC");
  EXPECT_EQ(changes->personalities[0].number, 12u);
  EXPECT_EQ(changes->personalities[0].key, "SetNVRAM");
  EXPECT_EQ(changes->personalities[1].key, "a:b");
  EXPECT_FALSE(changes->personalities[1].value);
}

TEST(ParseChanges, ReadsTheBoardBeforeAType) {
  const auto changes =
      ParseChanges({.properties = {}, .personalities = {"Zed-1/a/USBC:1:b/c=2", "USBC:1:d/e=2"}});
  ASSERT_TRUE(changes);
  EXPECT_EQ(changes->personalities[0].board, "Zed-1/a");
  EXPECT_EQ(changes->personalities[0].type, "USBC");
  EXPECT_EQ(changes->personalities[1].board, "");
  EXPECT_TRUE(changes->SetsKey("USBC", 1, "b/c"));
  EXPECT_TRUE(changes->SetsKey("USBC", 1, "b/c", "Zed-1/a"));
  EXPECT_FALSE(changes->SetsKey("USBC", 1, "b/c", "Zed-1"));
  EXPECT_TRUE(changes->SetsKey("USBC", 1, "d/e", "Zed-1"));
}

TEST(ParseChanges, NamesTheChangesOfAComputer) {
  const auto changes = ParseChanges(
      {.properties = {"a:b=1"}, .personalities = {"USBC:1:a=1", "USBC:2:a=1"}, .boardRevision = 3});
  ASSERT_TRUE(changes);
  EXPECT_EQ(
      changes->TextsOf({false, true}),
      (std::vector<std::string>{"--set a:b=1", "--personality USBC:2:a=1", "--board-revision 3"}));
  EXPECT_EQ(changes->TextsOf({}), (std::vector<std::string>{"--set a:b=1", "--board-revision 3"}));
}

TEST(ParseChanges, RefusesAPersonalityOfAnotherForm) {
  for (const char* text :
       {"", "USBC", "USBC:1", "USBC:1:Version", "USBC:Version=1", "USBC=1", "USBC:1:=1",
        "USBC:0:Version=1", "USBC:x:Version=1", "USBC::Version=1", "USBC:1234567890:Version=1"}) {
    EXPECT_EQ(PersonalityError(text), "--personality " + std::string(text) +
                                          ": it is not of the form [BOARD/]TYPE:N:KEY=VALUE");
  }
  EXPECT_EQ(PersonalityError("usbc:1:Version=1"),
            "--personality usbc:1:Version=1: \"usbc\" is not one of LegacyThunderbolt, "
            "Thunderbolt, LegacyUSBC, USBC");
  EXPECT_EQ(PersonalityError("USBC:1:Version=((1))"),
            "--personality a list in a list can only be written in XML");
  EXPECT_TRUE(PersonalityError("USBC:1:\xFF=1").starts_with("--personality "));
}

TEST(ParseChanges, KeepsTheTextsInTheOrderInWhichTheyApply) {
  const auto changes = ParseChanges(
      {.properties = {"a:b=1"}, .personalities = {"USBC:1:Version=2"}, .boardRevision = 7});
  ASSERT_TRUE(changes);
  EXPECT_EQ(changes->Texts(),
            (std::vector<std::string>{"--set a:b=1", "--personality USBC:1:Version=2",
                                      "--board-revision 7"}));
  EXPECT_EQ(changes->boardRevision, "\x07");
}

TEST(Changes, SetAKeyThatGetsAValue) {
  const auto changes =
      ParseChanges({.properties = {}, .personalities = {"USBC:1:Version=2", "USBC:2:Version="}});
  ASSERT_TRUE(changes);
  EXPECT_TRUE(changes->SetsKey("USBC", 1, "Version"));
  EXPECT_FALSE(changes->SetsKey("USBC", 2, "Version"));
  EXPECT_FALSE(changes->SetsKey("USBC", 1, "RID"));
  EXPECT_FALSE(changes->SetsKey("Thunderbolt", 1, "Version"));
}

}  // namespace
}  // namespace fernwick::lab
