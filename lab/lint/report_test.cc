#include "lab/lint/report.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "lab/support/json_values.h"

namespace fernwick::lab {
namespace {

std::vector<Finding> Some() {
  const auto* kind = FindLintRule("wrong-kind");
  const auto* unused = FindLintRule("unused-file");
  return {
      {kind, "p q/Fernwick/Zed-42/Config.plist", FileLocation{12, 7, 0}, "it is \"x\"", 0xA},
      {kind, "p q/Fernwick/Zed-42/Config.plist", FileLocation{13, 7, 0}, "it is \"x\"", 0xA},
      {kind, "/p/Config.plist", FileLocation{0, 0, 812}, "2 more findings of this kind", 0xA, 2},
      {unused, "p/old\xFF\x1B:1.bin", std::nullopt, "nothing \x1Bnames it"}};
}

std::string Printed(std::unique_ptr<LintFormat> (*make)(Console&),
                    const std::vector<Finding>& findings, std::size_t boards, std::size_t known) {
  StringConsole console;
  const auto format = make(console);
  LintTotals totals = {.boards = boards, .known = known};
  for (const auto& finding : findings) {
    Count(finding, totals);
    format->Add(finding);
  }
  format->Finish(totals);
  console.Flush();
  return console.Output();
}

TEST(LintText, HasALineForEachAndCountsThem) {
  EXPECT_EQ(Printed(MakeLintText, Some(), 2, 0),
            "p q/Fernwick/Zed-42/Config.plist:12:7: error: it is \"x\" [wrong-kind]\n"
            "p q/Fernwick/Zed-42/Config.plist:13:7: error: it is \"x\" [wrong-kind]\n"
            "/p/Config.plist:byte 812: error: 2 more findings of this kind [wrong-kind]\n"
            "p/old\\377\\033:1.bin: note: nothing \\033names it [unused-file]\n"
            "2 boards: 4 errors, 0 warnings, 1 note\n");
  EXPECT_EQ(Printed(MakeLintText, {}, 0, 0), "0 boards: 0 errors, 0 warnings, 0 notes\n");
}

TEST(LintText, CountsWhatIsInTheBaseline) {
  EXPECT_EQ(Printed(MakeLintText, {}, 1, 1),
            "1 board: 0 errors, 0 warnings, 0 notes; 1 finding is in the baseline\n");
  EXPECT_EQ(Printed(MakeLintText, {}, 1, 2),
            "1 board: 0 errors, 0 warnings, 0 notes; 2 findings are in the baseline\n");
}

TEST(LintJson, HasAnObjectForEachAndCountsThem) {
  auto some = Some();
  some.erase(some.begin() + 1);
  EXPECT_EQ(Printed(MakeLintJson, some, 2, 3),
            "{\n"
            "  \"findings\": [\n"
            "    {\n"
            "      \"id\": \"wrong-kind\",\n"
            "      \"severity\": \"error\",\n"
            "      \"path\": \"p q/Fernwick/Zed-42/Config.plist\",\n"
            "      \"line\": 12,\n"
            "      \"column\": 7,\n"
            "      \"message\": \"it is \\\"x\\\"\",\n"
            "      \"count\": 1,\n"
            "      \"fingerprint\": \"000000000000000a\"\n"
            "    },\n"
            "    {\n"
            "      \"id\": \"wrong-kind\",\n"
            "      \"severity\": \"error\",\n"
            "      \"path\": \"/p/Config.plist\",\n"
            "      \"byte\": 812,\n"
            "      \"message\": \"2 more findings of this kind\",\n"
            "      \"count\": 2,\n"
            "      \"fingerprint\": \"000000000000000a\"\n"
            "    },\n"
            "    {\n"
            "      \"id\": \"unused-file\",\n"
            "      \"severity\": \"note\",\n"
            "      \"path\": \"p/old\uFFFD\\u001b:1.bin\",\n"
            "      \"message\": \"nothing \\u001bnames it\",\n"
            "      \"count\": 1,\n"
            "      \"fingerprint\": \"0000000000000000\"\n"
            "    }\n"
            "  ],\n"
            "  \"boards\": 2,\n"
            "  \"errors\": 3,\n"
            "  \"warnings\": 0,\n"
            "  \"notes\": 1,\n"
            "  \"known\": 3\n"
            "}\n");
  EXPECT_EQ(Printed(MakeLintJson, {}, 0, 0),
            "{\n"
            "  \"findings\": [],\n"
            "  \"boards\": 0,\n"
            "  \"errors\": 0,\n"
            "  \"warnings\": 0,\n"
            "  \"notes\": 0,\n"
            "  \"known\": 0\n"
            "}\n");
}

std::set<std::string> KeysOf(const Json& object) {
  std::set<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.insert(key);
  return keys;
}

TEST(LintSarif, IsOneRunOfOneTool) {
  const auto log = Json::parse(Printed(MakeLintSarif, Some(), 2, 0));
  EXPECT_EQ(KeysOf(log), (std::set<std::string>{"$schema", "version", "runs"}));
  EXPECT_EQ(log["$schema"], "https://json.schemastore.org/sarif-2.1.0.json");
  EXPECT_EQ(log["version"], "2.1.0");
  ASSERT_EQ(log["runs"].size(), 1u);
  const auto& run = log["runs"][0];
  EXPECT_EQ(KeysOf(run), (std::set<std::string>{"tool", "columnKind", "results"}));
  EXPECT_EQ(run["columnKind"], "unicodeCodePoints");
  EXPECT_EQ(KeysOf(run["tool"]), (std::set<std::string>{"driver"}));
  EXPECT_EQ(run["tool"]["driver"]["name"], "fernwick-lab lint");
}

TEST(LintSarif, HasEveryRule) {
  const auto log = Json::parse(Printed(MakeLintSarif, {}, 0, 0));
  const auto& rules = log["runs"][0]["tool"]["driver"]["rules"];
  ASSERT_EQ(rules.size(), LintRules().size());
  for (std::size_t i = 0; i < rules.size(); ++i) {
    const auto& rule = *LintRules()[i];
    const Json expected = {{"id", rule.id},
                           {"shortDescription", {{"text", rule.title}}},
                           {"fullDescription", {{"text", rule.reason}}},
                           {"help", {{"text", rule.remedy}}},
                           {"defaultConfiguration", {{"level", NameOf(rule.severity)}}}};
    EXPECT_EQ(rules[i], expected);
  }
}

TEST(LintSarif, HasAResultForEachWithItsLocation) {
  const auto log = Json::parse(Printed(MakeLintSarif, Some(), 2, 0));
  const auto& run = log["runs"][0];
  const auto index = [&](std::size_t result) {
    return run["results"][result]["ruleIndex"].get<std::size_t>();
  };
  const auto& rules = run["tool"]["driver"]["rules"];
  EXPECT_EQ(rules[index(0)]["id"], "wrong-kind");
  EXPECT_EQ(rules[index(3)]["id"], "unused-file");
  const auto result = [&](const char* id, std::size_t rule, const char* level, const char* message,
                          Json location, const char* fingerprint) {
    return Json{{"ruleId", id},
                {"ruleIndex", rule},
                {"level", level},
                {"message", {{"text", message}}},
                {"locations", Json::array({{{"physicalLocation", std::move(location)}}})},
                {"partialFingerprints", {{"fernwickLint/v1", fingerprint}}}};
  };
  const Json first = {{"artifactLocation", {{"uri", "p%20q/Fernwick/Zed-42/Config.plist"}}},
                      {"region", {{"startLine", 12}, {"startColumn", 7}}}};
  auto second = first;
  second["region"]["startLine"] = 13;
  auto expected = Json::array(
      {result("wrong-kind", index(0), "error", "it is \"x\"", first, "000000000000000a:1"),
       result("wrong-kind", index(1), "error", "it is \"x\"", second, "000000000000000a:2"),
       result("wrong-kind", index(2), "error", "2 more findings of this kind",
              {{"artifactLocation", {{"uri", "file:///p/Config.plist"}}},
               {"region", {{"byteOffset", 812}, {"byteLength", 0}}}},
              "000000000000000a:1"),
       result("unused-file", index(3), "note", "nothing \x1Bnames it",
              {{"artifactLocation", {{"uri", "p/old%FF%1B%3A1.bin"}}}}, "0000000000000000:1")});
  expected[2]["occurrenceCount"] = 2;
  EXPECT_EQ(run["results"], expected);
}

}  // namespace
}  // namespace fernwick::lab
