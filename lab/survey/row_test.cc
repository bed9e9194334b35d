#include "lab/survey/row.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

// A row with a value for every key, in JSON.
constexpr char Full[] =
    R"({"file":"a","outcome":"plan","class":"no controllers","status":0,"reason":"r","board":"Zed-1","revision":255,)"
    R"("matches":[{"type":"USBC","rid":18446744073709551615,"portAddress":-1,"installed":1.5,)"
    R"("version":{"real":"nan"},"image":"x\u0000","imageMissing":true}],"nearestMiss":)"
    R"({"controller":"IOService:/p","type":"USBC","personality":3,"key":"RID","text":"wants 1"},)"
    R"("diagnostics":[{"text":"** t","count":2}],)"
    R"("plan":{"priority":2147483647,"setNVRAM":{"a":{"data":"5a"}},"clearNVRAM":["b"],)"
    R"("options":"-noreset"}})"
    "\n";

std::string Without(std::string text, const std::string& part) {
  return text.erase(text.find(part), part.size());
}

TEST(SurveyRow, IsTheSameAfterPassingThroughJson) {
  const auto row = ParseSurveyRow(Full);
  ASSERT_TRUE(row.has_value());
  EXPECT_EQ(PrintJsonRow(ToJson(*row)), Full);
}

TEST(SurveyRow, OfNothingHasEveryKey) {
  EXPECT_EQ(
      PrintJsonRow(ToJson(SurveyRow{.file = "a"})),
      "{\"file\":\"a\",\"outcome\":\"no plan\",\"class\":null,\"status\":null,\"reason\":null,"
      "\"board\":null,\"revision\":null,\"matches\":[],\"nearestMiss\":null,\"diagnostics\":[],"
      "\"plan\":null}\n");
}

TEST(SurveyRow, HasANameForEveryOutcome) {
  for (const auto outcome : {Outcome::Plan, Outcome::NoPlan, Outcome::Bypassed, Outcome::Refused,
                             Outcome::AbnormalEnd}) {
    const auto json = PrintJsonRow(ToJson(SurveyRow{.file = "a", .outcome = outcome}));
    ASSERT_TRUE(ParseSurveyRow(json).has_value()) << json;
    EXPECT_EQ(ParseSurveyRow(json)->outcome, outcome);
  }
}

TEST(SurveyRow, OfWhichAKeyIsMissingIsNone) {
  for (const char* part :
       {"\"file\":\"a\",", "\"outcome\":\"plan\",", "\"status\":0,", "\"reason\":\"r\",",
        "\"board\":\"Zed-1\",", "\"revision\":255,", "\"type\":\"USBC\",", "\"portAddress\":-1,",
        "\"installed\":1.5,", "\"version\":{\"real\":\"nan\"},", "\"text\":\"** t\",",
        "\"controller\":\"IOService:/p\",", "\"personality\":3,", "\"key\":\"RID\",",
        "\"priority\":2147483647,", "\"clearNVRAM\":[\"b\"],"}) {
    EXPECT_FALSE(ParseSurveyRow(Without(Full, part)).has_value()) << part;
  }
}

TEST(SurveyRow, OfAnEarlierVersionLacksThePlanAndWhetherImagesAreThere) {
  const auto plan = std::string(Full).substr(std::string(Full).find(",\"plan\""));
  const auto row = ParseSurveyRow(Without(Without(Full, ",\"imageMissing\":true"), plan) + "}");
  ASSERT_TRUE(row.has_value());
  EXPECT_FALSE(row->matches[0].isImageMissing);
  EXPECT_FALSE(row->plan.has_value());
}

TEST(SurveyRow, OfAnEarlierVersionLacksTheClassAndTheNearestMiss) {
  const std::string full = Full;
  const auto begin = full.find("\"nearestMiss\"");
  auto former = full;
  former.erase(begin, full.find("\"diagnostics\"") - begin);
  const auto row = ParseSurveyRow(Without(former, "\"class\":\"no controllers\","));
  ASSERT_TRUE(row.has_value());
  EXPECT_FALSE(row->computerClass.has_value());
  EXPECT_FALSE(row->miss.has_value());
}

TEST(SurveyRow, HasANameForEveryClass) {
  for (std::size_t i = 0; i < ClassCount; ++i) {
    const SurveyRow row{.file = "a", .computerClass = static_cast<ComputerClass>(i)};
    const auto parsed = ParseSurveyRow(PrintJsonRow(ToJson(row)));
    ASSERT_TRUE(parsed.has_value());
    EXPECT_EQ(parsed->computerClass, row.computerClass);
  }
}

TEST(SurveyRow, MayContainBracketsInText) {
  const auto json = PrintJsonRow(ToJson(SurveyRow{.file = "\"\\" + std::string(5000, '[')}));
  EXPECT_TRUE(ParseSurveyRow(json).has_value());
}

TEST(SurveyRow, OfAnotherShapeIsNone) {
  for (
      const char* json :
      {"", "{", "[]", "{}", "null", "1", "{\"file\":1}", "\xFF",
       R"({"file":"a","outcome":"x","status":null,"reason":null,"board":null,"revision":null,"matches":[],"diagnostics":[]})",
       R"({"file":"a","outcome":"plan","status":1.5,"reason":null,"board":null,"revision":null,"matches":[],"diagnostics":[]})",
       R"({"file":"a","outcome":"plan","status":0,"reason":null,"board":null,"revision":null,"matches":{},"diagnostics":[]})",
       R"({"file":"a","outcome":"plan","status":0,"reason":null,"board":null,"revision":null,"matches":[],"diagnostics":[{"text":"t","count":-1}]})",
       R"({"file":"a","outcome":"plan","class":"x","status":0,"reason":null,"board":null,"revision":null,"matches":[],"diagnostics":[]})"}) {
    EXPECT_FALSE(ParseSurveyRow(json).has_value()) << json;
  }
}

}  // namespace
}  // namespace fernwick::lab
