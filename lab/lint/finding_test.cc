#include "lab/lint/finding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lab/lint/rules/shape_rules.h"
#include "lab/lint/rules/value_rules.h"
#include "lab/support/stable_hash.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

// "ID at OFFSET: MESSAGE" of each row.
std::vector<std::string> Described(ConfigurationFindings& findings) {
  std::vector<std::string> described;
  for (const auto& row : findings.TakeSorted()) {
    described.push_back(std::string(row.rule->id) + " at " + std::to_string(row.offset) + ": " +
                        row.message);
  }
  return described;
}

using Lines = std::vector<std::string>;

TEST(ConfigurationFindings, AreSortedByOffsetIdAndMessage) {
  ConfigurationFindings findings;
  findings.Add(LintRuleOf::UnreadKey, 7, "b");
  findings.Add(LintRuleOf::UnreadKey, 7, "a");
  findings.Add(LintRuleOf::EmptyType, 7, "c");
  findings.Add(LintRuleOf::UnreadKey, 3, "d");
  EXPECT_EQ(Described(findings), (Lines{"unread-key at 3: d", "empty-type at 7: c",
                                        "unread-key at 7: a", "unread-key at 7: b"}));
}

TEST(ConfigurationFindings, ListTheFirstOfARuleAndCountTheOthers) {
  ConfigurationFindings findings;
  for (std::size_t i = 0; i < 1000; ++i) findings.Add(LintRuleOf::UnreadKey, 999 - i, "x");
  findings.Add(LintRuleOf::EmptyType, 5000, "y");
  const auto rows = findings.TakeSorted();
  ASSERT_EQ(rows.size(), MaxListed + 2);
  for (std::size_t i = 0; i < MaxListed; ++i) {
    EXPECT_EQ(rows[i].offset, i);
    EXPECT_EQ(rows[i].count, 1u);
  }
  EXPECT_EQ(rows[MaxListed].message, "900 more findings of this kind");
  EXPECT_EQ(rows[MaxListed].offset, MaxListed);
  EXPECT_EQ(rows[MaxListed].count, 900u);
  EXPECT_EQ(rows[MaxListed + 1].message, "y");
}

TEST(ConfigurationFindings, CountTheOthersInRisingOrderToo) {
  ConfigurationFindings findings;
  for (std::size_t i = 0; i < 301; ++i) findings.Add(LintRuleOf::UnreadKey, i, "x");
  const auto rows = findings.TakeSorted();
  ASSERT_EQ(rows.size(), MaxListed + 1);
  EXPECT_EQ(rows.back().message, "201 more findings of this kind");
  EXPECT_EQ(rows.back().offset, MaxListed);
}

TEST(ConfigurationFindings, AddOnlyWhatTheFilterReports) {
  Lines asked;
  const auto filter = [&](const FindingIdentity& identity) {
    asked.push_back(std::string(identity.rule->id) + " " + std::string(identity.path) + " " +
                    std::string(identity.message));
    return identity.message == "b";
  };
  ConfigurationFindings findings("Fernwick/Zed-42/Config.plist", filter);
  findings.Add(LintRuleOf::UnreadKey, 1, "a");
  findings.Add(LintRuleOf::UnreadKey, 2, "b");
  EXPECT_EQ(Described(findings), (Lines{"unread-key at 2: b"}));
  EXPECT_EQ(asked, (Lines{"unread-key Fernwick/Zed-42/Config.plist a",
                          "unread-key Fernwick/Zed-42/Config.plist b"}));
}

// A configuration and the personalities of its first type.
class Fingerprint : public ::testing::Test {
 protected:
  const std::vector<LocatedPersonality>& Personalities(const std::string& text) {
    file_.emplace(*LoadConfiguration(directory_.Write("Config.plist", text)));
    subject_.emplace(*file_);
    return subject_->types.at(0).personalities;
  }

  std::uint64_t Identity(const std::string& personality, const std::string& type = "USBC") {
    return IdentityOf(Personalities("{ " + type + " = ( " + personality + " ); }").at(0));
  }

  testing::TemporaryDirectory directory_;
  std::optional<ConfigurationFile> file_;
  std::optional<LintSubject> subject_;
};

TEST_F(Fingerprint, OfAPersonalityDependsOnItsControllersAlone) {
  const auto identity = Identity("{ RID = 1; Version = 200; Firmware = a; }");
  EXPECT_EQ(Identity("{ Firmware = b; Version = 210; Author = x; RID = 1; }"), identity);
  EXPECT_NE(Identity("{ RID = 2; Version = 200; Firmware = a; }"), identity);
  EXPECT_NE(Identity("{ \"Port OTP Revision\" = 1; }"), identity);
  EXPECT_NE(Identity("{ RID = 1; }", "Thunderbolt"), identity);
  EXPECT_EQ(Identity("{ RID = 1; \"Ridge UID\" = 7; }"), identity);
  EXPECT_NE(Identity("{ RID = 1; \"Ridge UID\" = 7; }", "Thunderbolt"),
            Identity("{ RID = 1; }", "Thunderbolt"));
}

TEST_F(Fingerprint, IsThatOfTheIdentity) {
  const FindingIdentity identity = {&LintRuleOf::UnreadKey, "a", 1, "b"};
  const auto fingerprint = FingerprintOf(identity);
  EXPECT_EQ(FingerprintOf({&LintRuleOf::UnreadKey, "a", 1, "b"}), fingerprint);
  EXPECT_NE(FingerprintOf({&LintRuleOf::EmptyType, "a", 1, "b"}), fingerprint);
  EXPECT_NE(FingerprintOf({&LintRuleOf::UnreadKey, "x", 1, "b"}), fingerprint);
  EXPECT_NE(FingerprintOf({&LintRuleOf::UnreadKey, "a", 2, "b"}), fingerprint);
  EXPECT_NE(FingerprintOf({&LintRuleOf::UnreadKey, "a", 1, "x"}), fingerprint);
}

// A baseline that was saved by another version must still be of use.
TEST_F(Fingerprint, IsTheSameForever) {
  EXPECT_EQ(HashText(FingerprintOf({&LintRuleOf::UnreadKey, "a", 1, "b"})), "3a78c91c27e52236");
}

TEST_F(Fingerprint, DoesNotDependOnLocationsInTheMessage) {
  const auto of = [](std::string_view message) {
    return FingerprintOf({&LintRuleOf::UnreadKey, "a", 1, message});
  };
  EXPECT_EQ(of("the one at 12:7 and that at 3:4."), of("the one at 1:70 and that at 33:4."));
  EXPECT_EQ(of("the one at byte 812 accepts"), of("the one at byte 9 accepts"));
  EXPECT_NE(of("it begins at 150"), of("it begins at 151"));
  EXPECT_NE(of("it is \"at 12:7\""), of("it is \"at 12:8\""));
}

TEST_F(Fingerprint, OfFindingsIsOfThePersonalityThatIsEntered) {
  const auto& personalities = Personalities("{ USBC = ( { RID = 1; }, { RID = 2; } ); }");
  ConfigurationFindings findings("a");
  findings.Add(LintRuleOf::UnreadKey, 1, "x");
  findings.Enter(&personalities[0]);
  findings.Add(LintRuleOf::UnreadKey, 2, "x");
  findings.Enter(&personalities[0]);
  findings.Add(LintRuleOf::UnreadKey, 3, "x");
  findings.Enter(&personalities[1]);
  findings.Add(LintRuleOf::UnreadKey, 4, "x");
  const auto rows = findings.TakeSorted();
  const auto of = [](std::uint64_t personality) {
    return FingerprintOf({&LintRuleOf::UnreadKey, "a", personality, "x"});
  };
  EXPECT_EQ(rows[0].fingerprint, of(0));
  EXPECT_EQ(rows[1].fingerprint, of(IdentityOf(personalities[0])));
  EXPECT_EQ(rows[2].fingerprint, rows[1].fingerprint);
  EXPECT_EQ(rows[3].fingerprint, of(IdentityOf(personalities[1])));
}

}  // namespace
}  // namespace fernwick::lab
