#include "lab/lint/rules/rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>

#include "lab/lint/rules/rule_texts.h"

namespace fernwick::lab {
namespace {

TEST(LintRules, AreSortedByIdAndEachIsThereOnce) {
  const auto id = [](const LintRule* rule) { return rule->id; };
  EXPECT_TRUE(std::ranges::is_sorted(LintRules(), {}, id));
  EXPECT_EQ(std::ranges::adjacent_find(LintRules(), {}, id), LintRules().end());
}

TEST(LintRules, HaveIdsThatNeedNoQuoting) {
  const std::regex form("[a-z]+(-[a-z]+)+");
  for (const auto* rule : LintRules()) {
    EXPECT_TRUE(std::regex_match(std::string(rule->id), form)) << rule->id;
  }
}

// The remedy of some is to write nothing.
TEST(LintRules, SayWhyTheyMatterAndHowToFix) {
  for (const auto* rule : LintRules()) {
    EXPECT_FALSE(rule->title.empty() || rule->title.ends_with('.')) << rule->id;
    EXPECT_TRUE(rule->reason.ends_with('.')) << rule->id;
    EXPECT_TRUE(rule->remedy.ends_with('.')) << rule->id;
    EXPECT_FALSE(rule->wrong.empty()) << rule->id;
    EXPECT_NE(rule->wrong, rule->right) << rule->id;
  }
}

TEST(LintRules, AreFoundByTheirExactId) {
  for (const auto* rule : LintRules()) EXPECT_EQ(FindLintRule(rule->id), rule);
  EXPECT_EQ(FindLintRule("Wrong-Kind"), nullptr);
  EXPECT_EQ(FindLintRule(""), nullptr);
}

TEST(Severity, HasANameAndRises) {
  EXPECT_EQ(NameOf(Severity::Note), "note");
  EXPECT_EQ(NameOf(Severity::Warning), "warning");
  EXPECT_EQ(NameOf(Severity::Error), "error");
  EXPECT_TRUE(Severity::Note < Severity::Warning && Severity::Warning < Severity::Error);
}

TEST(ListLintRules, HasALineForEach) {
  const auto list = ListLintRules();
  EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(list, '\n')), LintRules().size());
  EXPECT_EQ(list.substr(0, list.find('\n')),
            "altered-firmware-mode          warning  \"Firmware Mode\" is read as another number "
            "than is written");
}

TEST(ExplainLintRule, SaysWhereTheRemedyIsToWriteNothing) {
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
