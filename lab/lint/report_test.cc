#include "lab/lint/report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "lab/support/json_values.h"

namespace fernwick::lab {
namespace {

PayloadLinting Some() {
  const auto* kind = FindLintRule("wrong-kind");
  const auto* unused = FindLintRule("unused-file");
  return {{{kind, "p q/Fernwick/Zed-42/Config.plist", FileLocation{12, 7, 0}, "it is \"x\""},
           {kind, "/p/Config.plist", FileLocation{0, 0, 812}, "it is data"},
           {unused, "p/old\xFF\x1B:1.bin", std::nullopt, "nothing names it"}},
          2,
          0,
          {}};
}

TEST(LintAsText, HasALineForEachAndCountsThem) {
  EXPECT_EQ(LintAsText(Some()),
            "p q/Fernwick/Zed-42/Config.plist:12:7: error: it is \"x\" [wrong-kind]\n"
            "/p/Config.plist:byte 812: error: it is data [wrong-kind]\n"
            "p/old\\377\\033:1.bin: note: nothing names it [unused-file]\n"
            "2 boards: 2 errors, 0 warnings, 1 note\n");
  EXPECT_EQ(LintAsText({}), "0 boards: 0 errors, 0 warnings, 0 notes\n");
}

TEST(LintAsJson, HasAnObjectForEachAndCountsThem) {
  EXPECT_EQ(LintAsJson(Some()),
            "{\n"
            "  \"boards\": 2,\n"
            "  \"errors\": 2,\n"
            "  \"warnings\": 0,\n"
            "  \"notes\": 1,\n"
            "  \"findings\": [\n"
            "    {\n"
            "      \"id\": \"wrong-kind\",\n"
            "      \"severity\": \"error\",\n"
            "      \"path\": \"p q/Fernwick/Zed-42/Config.plist\",\n"
            "      \"line\": 12,\n"
            "      \"column\": 7,\n"
            "      \"message\": \"it is \\\"x\\\"\"\n"
            "    },\n"
            "    {\n"
            "      \"id\": \"wrong-kind\",\n"
            "      \"severity\": \"error\",\n"
            "      \"path\": \"/p/Config.plist\",\n"
            "      \"byte\": 812,\n"
            "      \"message\": \"it is data\"\n"
            "    },\n"
            "    {\n"
            "      \"id\": \"unused-file\",\n"
            "      \"severity\": \"note\",\n"
            "      \"path\": \"p/old\uFFFD\\u001b:1.bin\",\n"
            "      \"message\": \"nothing names it\"\n"
            "    }\n"
            "  ]\n"
            "}\n");
  EXPECT_EQ(LintAsJson({}),
            "{\n"
            "  \"boards\": 0,\n"
            "  \"errors\": 0,\n"
            "  \"warnings\": 0,\n"
            "  \"notes\": 0,\n"
            "  \"findings\": []\n"
            "}\n");
}

std::set<std::string> KeysOf(const Json& object) {
  std::set<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.insert(key);
  return keys;
}

TEST(LintAsSarif, IsOneRunOfOneTool) {
  const auto log = Json::parse(LintAsSarif(Some()));
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

TEST(LintAsSarif, TellsEveryRule) {
  const auto log = Json::parse(LintAsSarif({}));
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

TEST(LintAsSarif, HasAResultForEachWithItsPlace) {
  const auto log = Json::parse(LintAsSarif(Some()));
  const auto& run = log["runs"][0];
  const auto index = [&](std::size_t result) {
    return run["results"][result]["ruleIndex"].get<std::size_t>();
  };
  const auto& rules = run["tool"]["driver"]["rules"];
  EXPECT_EQ(rules[index(0)]["id"], "wrong-kind");
  EXPECT_EQ(rules[index(2)]["id"], "unused-file");
  const auto result = [&](const char* id, std::size_t rule, const char* level, const char* message,
                          Json location) {
    return Json{{"ruleId", id},
                {"ruleIndex", rule},
                {"level", level},
                {"message", {{"text", message}}},
                {"locations", Json::array({{{"physicalLocation", std::move(location)}}})}};
  };
  const Json expected =
      Json::array({result("wrong-kind", index(0), "error", "it is \"x\"",
                          {{"artifactLocation", {{"uri", "p%20q/Fernwick/Zed-42/Config.plist"}}},
                           {"region", {{"startLine", 12}, {"startColumn", 7}}}}),
                   result("wrong-kind", index(1), "error", "it is data",
                          {{"artifactLocation", {{"uri", "file:///p/Config.plist"}}},
                           {"region", {{"byteOffset", 812}, {"byteLength", 0}}}}),
                   result("unused-file", index(2), "note", "nothing names it",
                          {{"artifactLocation", {{"uri", "p/old%FF%1B%3A1.bin"}}}})});
  EXPECT_EQ(run["results"], expected);
}

TEST(ListLintRules, HasALineForEach) {
  const auto list = ListLintRules();
  EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(list, '\n')), LintRules().size());
  EXPECT_EQ(list.substr(0, list.find('\n')),
            "altered-firmware-mode          warning  \"Firmware Mode\" is read as another number "
            "than is written");
}

TEST(ExplainLintRule, OfOneThatIsMendedByWritingNothingSaysSo) {
  EXPECT_EQ(ExplainLintRule(*FindLintRule("empty-type")),
            "empty-type (note): a type has no personality\n"
            "\n"
            "It matches nothing and only makes the tool read the controllers once more.\n"
            "\n"
            "Remove the key.\n"
            "\n"
            "Instead of\n"
            "\n"
            "    <key>USBC</key>\n"
            "    <array/>\n"
            "\n"
            "write nothing.\n");
}

}  // namespace
}  // namespace fernwick::lab
