#include "lab/lint/baseline.h"

#include <gtest/gtest.h>

#include <string>

#include "lab/lint/rules/shape_rules.h"
#include "lab/support/stable_hash.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

const FindingIdentity Comment = {&LintRuleOf::UnreadKey, "b/Config.plist", 1, "\"Comment\""};
const FindingIdentity Author = {&LintRuleOf::UnreadKey, "a/Config.plist", 1, "\"Author\""};

// The baseline that is read from this text, or why there is none.
std::string ReadError(const std::string& text, Baseline& baseline) {
  const testing::TemporaryDirectory directory;
  const auto error = baseline.Read(directory.Write("known.json", text));
  if (!error) return "";
  return std::to_string(error->status) + " " + Describe(error->error);
}

TEST(Baseline, IsEmptyAtFirst) {
  Baseline baseline(false);
  EXPECT_TRUE(baseline.IsNew(Comment));
  EXPECT_EQ(baseline.Known(), 0u);
}

TEST(Baseline, HasAsManyOfEqualFindingsAsWereSaved) {
  Baseline saving(true);
  for (const auto& identity : {Comment, Author, Comment}) EXPECT_TRUE(saving.IsNew(identity));
  EXPECT_EQ(saving.Found(), 3u);
  Baseline baseline(false);
  EXPECT_EQ(ReadError(saving.Text(), baseline), "");
  EXPECT_FALSE(baseline.IsNew(Comment));
  EXPECT_FALSE(baseline.IsNew(Comment));
  EXPECT_TRUE(baseline.IsNew(Comment));
  EXPECT_FALSE(baseline.IsNew(Author));
  EXPECT_TRUE(baseline.IsNew({&LintRuleOf::UnreadKey, "a/Config.plist", 1, "\"Other\""}));
  EXPECT_EQ(baseline.Known(), 3u);
  EXPECT_EQ(baseline.Found(), 0u);
}

TEST(Baseline, IsSavedInTheOrderOfPaths) {
  Baseline saving(true);
  for (const auto& identity : {Comment, Author, Comment}) saving.IsNew(identity);
  EXPECT_EQ(saving.Text(),
            "{\n"
            "  \"version\": 1,\n"
            "  \"findings\": [\n"
            "    {\n"
            "      \"fingerprint\": \"" +
                HashText(FingerprintOf(Author)) +
                "\",\n"
                "      \"count\": 1,\n"
                "      \"id\": \"unread-key\",\n"
                "      \"path\": \"a/Config.plist\",\n"
                "      \"message\": \"\\\"Author\\\"\"\n"
                "    },\n"
                "    {\n"
                "      \"fingerprint\": \"" +
                HashText(FingerprintOf(Comment)) +
                "\",\n"
                "      \"count\": 2,\n"
                "      \"id\": \"unread-key\",\n"
                "      \"path\": \"b/Config.plist\",\n"
                "      \"message\": \"\\\"Comment\\\"\"\n"
                "    }\n"
                "  ]\n"
                "}\n");
}

TEST(Baseline, SavesWhatIsKnownAgain) {
  Baseline first(true);
  first.IsNew(Comment);
  Baseline second(true);
  EXPECT_EQ(ReadError(first.Text(), second), "");
  EXPECT_FALSE(second.IsNew(Comment));
  EXPECT_EQ(second.Text(), first.Text());
}

TEST(Baseline, RefusesAnotherDocument) {
  for (const std::string document :
       {"[]", "{}", R"({"version": 2, "findings": []})", R"({"version": 1})",
        R"({"version": 1, "findings": [1]})",
        R"({"version": 1, "findings": [{"fingerprint": "0", "count": 1}]})",
        R"({"version": 1, "findings": [{"fingerprint": "000000000000000G", "count": 1}]})",
        R"({"version": 1, "findings": [{"fingerprint": 7, "count": 1}]})",
        R"({"version": 1, "findings": [{"fingerprint": "0000000000000007"}]})",
        R"({"version": 1, "findings": [{"fingerprint": "0000000000000007", "count": "1"}]})"}) {
    Baseline baseline(false);
    EXPECT_EQ(ReadError(document, baseline), "65 it is not a baseline of lint") << document;
  }
  Baseline baseline(false);
  EXPECT_EQ(ReadError("{", baseline), "65 line 1, column 2: this is not JSON");
  EXPECT_EQ(baseline.Read("no-such")->status, LabStatus::UnreadableInput);
}

}  // namespace
}  // namespace fernwick::lab
