#include "lab/lint/policy.h"

#include <gtest/gtest.h>

#include <string>

#include "lab/lint/rules/shape_rules.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using LintRuleOf::EmptyType;
using LintRuleOf::UnreadKey;

// Why the settings are refused; empty when they are not.
std::string ReadError(const std::string& settings, LintPolicy& policy) {
  const testing::TemporaryDirectory directory;
  const auto error = policy.ReadFile(directory.Write("settings.json", settings));
  if (!error) return "";
  EXPECT_EQ(error->status, LabStatus::MalformedInput);
  return Describe(error->error);
}

std::string ReadError(const std::string& settings) {
  LintPolicy policy;
  return ReadError(settings, policy);
}

TEST(LintPolicy, ChangesNothingByItself) {
  const LintPolicy policy;
  EXPECT_FALSE(policy.Ignores(UnreadKey));
  EXPECT_EQ(policy.SeverityOf(UnreadKey), UnreadKey.severity);
}

TEST(LintPolicy, IsThatOfTheFile) {
  LintPolicy policy;
  EXPECT_EQ(ReadError(R"({"ignore": ["empty-type"], "severity": {"unread-key": "error"}})", policy),
            "");
  EXPECT_TRUE(policy.Ignores(EmptyType));
  EXPECT_FALSE(policy.Ignores(UnreadKey));
  EXPECT_EQ(policy.SeverityOf(UnreadKey), Severity::Error);
}

TEST(LintPolicy, IsThatOfTheCommandLineFirst) {
  LintPolicy policy;
  EXPECT_EQ(policy.Read({"unread-key"}, {"empty-type=warning"}), std::nullopt);
  EXPECT_EQ(ReadError(R"({"ignore": ["empty-type"], "severity": {"unread-key": "error"}})", policy),
            "");
  EXPECT_TRUE(policy.Ignores(UnreadKey));
  EXPECT_FALSE(policy.Ignores(EmptyType));
  EXPECT_EQ(policy.SeverityOf(EmptyType), Severity::Warning);
}

TEST(LintPolicy, RefusesSettingsOfAnotherShape) {
  EXPECT_EQ(ReadError("{}"), "");
  EXPECT_EQ(ReadError("[]"), "it is not an object with \"ignore\" and \"severity\"");
  EXPECT_EQ(ReadError(R"({"ignores": []})"),
            "there is no setting \"ignores\"; there are \"ignore\" and \"severity\"");
  for (const std::string settings : {R"({"ignore": "unread-key"})", R"({"ignore": [1]})"}) {
    EXPECT_EQ(ReadError(settings), "\"ignore\" is not an array of IDs");
  }
  for (const std::string settings :
       {R"({"severity": ["unread-key"]})", R"({"severity": {"unread-key": 1}})",
        R"({"severity": {"unread-key": "fatal"}})"}) {
    EXPECT_EQ(ReadError(settings),
              "\"severity\" is not an object from IDs to \"error\", \"warning\" or \"note\"");
  }
  const std::string unknown = "there is no finding \"x\"; see fernwick-lab lint --list";
  EXPECT_EQ(ReadError(R"({"ignore": ["x"]})"), unknown);
  EXPECT_EQ(ReadError(R"({"severity": {"x": "note"}})"), unknown);
}

TEST(LintPolicy, RefusesAFileThatIsNoJson) {
  EXPECT_EQ(ReadError("{\n  ignore: []"), "line 2, column 3: this is not JSON");
  EXPECT_EQ(ReadError(std::string(66000, '[')), "arrays and objects are nested too deeply");
  LintPolicy policy;
  EXPECT_EQ(policy.ReadFile("no-such")->status, LabStatus::UnreadableInput);
}

}  // namespace
}  // namespace fernwick::lab
