// The page as a whole, of computers in memory: what each section says of them.

#include "lab/report/page.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

SurveyRow RowOf(const std::string& file, ComputerClass computerClass) {
  SurveyRow row;
  row.file = file;
  row.board = "Zed-1";
  row.computerClass = computerClass;
  return row;
}

SurveyMatch MatchOf(const Json& installed, const Json& version, const Json& image) {
  SurveyMatch match;
  match.type = "USBC";
  match.installed = installed;
  match.version = version;
  match.image = image;
  return match;
}

ReportedComputer Planned(const std::string& file) {
  auto row = RowOf(file, ComputerClass::Planned);
  row.outcome = Outcome::Plan;
  for (int i = 0; i < 2; ++i) {
    row.matches.push_back(MatchOf(3, 5, "five.bin"));
  }
  SettleRow settling{.file = file, .board = "Zed-1", .runs = 1};
  settling.controllers = {
      {"p0", true, 3, 5}, {"p1", true, 3, 5}, {"r", false, 41.050000000999, 41.050000000999}};
  return {.row = row, .settling = settling, .use = RecordingUse::Counted};
}

ReportedComputer Missing(const std::string& file, ComputerClass computerClass,
                         const std::string& key) {
  auto row = RowOf(file, computerClass);
  row.miss = {"IOService:/p", key == "RID" ? "LegacyUSBC" : "USBC", 2, key, "wants 1, finds 2"};
  return {.row = row, .settling = SettleRow{.file = file, .board = "Zed-1"}};
}

ReportedComputer Settled(const std::string& file, SettleOutcome outcome, std::size_t runs) {
  auto computer = Planned(file);
  computer.settling->outcome = outcome;
  computer.settling->runs = runs;
  return computer;
}

class ReportedPage : public ::testing::Test {
 protected:
  std::string Markup(const std::vector<ReportedComputer>& computers,
                     const std::optional<std::string>& old = std::nullopt) {
    StringConsole console;
    ReportPage page({"new", old}, "Title", console);
    for (const auto& computer : computers) page.Add(computer);
    page.Lint().Add(finding_);
    page.Coverage().Finish({});
    return page.Markup();
  }

  const Finding finding_ = {
      .rule = LintRules().front(), .path = "a", .location = {}, .message = "wrong"};
};

bool Has(const std::string& page, const std::string& text) {
  return page.find(text) != std::string::npos;
}

TEST_F(ReportedPage, ListsEachComputerOnceWithItsFacts) {
  const auto page = Markup({Planned("one"), Missing("two", ComputerClass::Blocked, "Version")});
  EXPECT_TRUE(Has(page,
                  "<tr id=\"c1\"><th scope=\"row\">one</th><td>2 × USBC 3 → 5, five.bin</td>"
                  "<td>settled after 1 run</td></tr>\n"))
      << page;
  EXPECT_TRUE(Has(
      page,
      "<tr id=\"c2\"><th scope=\"row\">two</th><td>Version wants 1, finds 2 (USBC, personality 2)"
      "</td><td></td></tr>\n"));
  EXPECT_TRUE(Has(page,
                  "<td class=\"n\"><a href=\"#planned-0\">1</a></td><td class=\"n\"><a "
                  "href=\"#blocked-0\">1</a>"));
}

TEST_F(ReportedPage, HasTheFirstMatchesOfAComputer) {
  auto computer = Planned("one");
  computer.row.matches.clear();
  for (int i = 0; i < 6; ++i) {
    computer.row.matches.push_back(MatchOf(nullptr, i, nullptr));
    computer.row.matches.back().isImageMissing = i == 0;
  }
  const auto page = Markup({computer});
  EXPECT_TRUE(Has(page,
                  "<td>USBC - → 0, - (image missing); USBC - → 1, -; USBC - → 2, -; USBC - → 3, -; "
                  "2 more matches</td>"))
      << page;
  EXPECT_TRUE(
      Has(page, "<a href=\"#missing-images\">1</a></strong> match names an image that is missing"));
}

TEST_F(ReportedPage, HasVersionsBeforeAndAfter) {
  const auto page = Markup({Planned("one"), Planned("two")});
  EXPECT_TRUE(
      Has(page, "<desc id=\"versions-0-d\">Installed: 3: 4. After the updates: 5: 4.</desc>"))
      << page;
  EXPECT_TRUE(Has(page, ">3 → 5</th><td class=\"n\" data-label=\"Controllers\">4</td>"));
  EXPECT_TRUE(Has(page, ">stays at 41.05</th><td class=\"n\" data-label=\"Controllers\">2</td>"));
}

TEST_F(ReportedPage, HasWhatKeepsComputersFromAnUpdate) {
  const auto page = Markup({Missing("one", ComputerClass::Blocked, "Version"),
                            Missing("two", ComputerClass::Unmatched, "RID"),
                            Missing("three", ComputerClass::Current, "Version")});
  EXPECT_TRUE(Has(page, "<desc id=\"keys-d\">RID: 1, Version: 1.</desc>")) << page;
  EXPECT_TRUE(Has(page, "<th scope=\"row\">RID wants 1, finds 2 (LegacyUSBC)</th>"));
}

TEST_F(ReportedPage, HasWhoNeverSettlesAndWhoIsStuck) {
  auto never = Settled("one", SettleOutcome::NeverSettles, 1);
  never.settling->repetitions = {
      {RepetitionCause::VersionUnchecked, {"USBC", 1, "p0", "p0", 5, 3, 5}}};
  auto stuck = Settled("two", SettleOutcome::Stuck, 0);
  stuck.settling->stuck = {
      {"p0", "USBC", 2, 9, 5, {{"RID", "differs", "wants 1"}, {"Port", "differs", "wants 2"}}}};
  const auto page = Markup({never, stuck, Settled("three", SettleOutcome::Undecided, 1000),
                            Settled("four", SettleOutcome::Bypassed, 1)});
  EXPECT_TRUE(Has(page, "<th scope=\"row\">USBC personality 1 matches whatever is installed"))
      << page;
  EXPECT_TRUE(
      Has(page, "stays at 5: USBC personality 2 offers 9, but RID wants 1; Port wants 2</th>"));
  EXPECT_TRUE(Has(page, "<a href=\"#never-settles\">1</a></strong> computer never settles"));
  EXPECT_TRUE(Has(page, "<td>stuck after 0 runs</td>"));
  EXPECT_TRUE(Has(page, "<th scope=\"row\">after 1000 runs</th>"));
}

TEST_F(ReportedPage, HasWhoGetsNoFurtherUpdateAndWhoHasNoPlan) {
  auto none = Settled("three", SettleOutcome::NoPlan, 0);
  none.settling->reason = "<none>";
  const auto page = Markup({Settled("one", SettleOutcome::AbnormalEnd, 1),
                            Settled("two", SettleOutcome::Bypassed, 2), none});
  EXPECT_TRUE(Has(page, "<a href=\"#settling-table\">2</a></strong> computers get no further"))
      << page;
  EXPECT_TRUE(Has(page, "<a href=\"#abnormal-after\">1</a>"));
  EXPECT_TRUE(Has(page, "<table id=\"abnormal-after\"><caption>Abnormal end</caption>"));
  EXPECT_TRUE(Has(page, "<a href=\"#no-plan\">1</a>"));
  EXPECT_TRUE(Has(page, "<th scope=\"row\">&lt;none&gt;</th>"));
}

TEST_F(ReportedPage, HasChangesAgainstTheOldPayload) {
  auto computer = Planned("one");
  computer.difference = DiffRow{.file = "one", .board = "Zed-1"};
  computer.difference->changes = {{ChangeKind::LosesMatch, "USBC", {}, {}, {"because"}},
                                  {ChangeKind::Version, "USBC", 1, 2},
                                  {ChangeKind::Version, "USBC", 2, 3}};
  const auto page = Markup({computer}, "old");
  EXPECT_TRUE(Has(page, "<strong>Zed-1</strong> loses match USBC<br/>because</th>")) << page;
  EXPECT_TRUE(Has(page, "<td>loses match, version</td></tr>"));
  EXPECT_TRUE(Has(page, "compared with <code>old</code>"));
}

TEST_F(ReportedPage, HasWhyARecordingIsRefused) {
  auto row = RowOf("one", ComputerClass::Refused);
  row.outcome = Outcome::Refused;
  row.reason = "<bad>";
  row.board = std::nullopt;
  const auto page = Markup({{.row = row}}, "old");
  EXPECT_TRUE(
      Has(page,
          "no board identifier: 1 computer</th></tr>\n<tr id=\"c1\"><th scope=\"row\">one</th>"
          "<td>&lt;bad&gt;</td><td></td><td></td></tr>"))
      << page;
  EXPECT_TRUE(Has(page, "<p>No computer has a controller that the payload is compared with.</p>"));
}

TEST_F(ReportedPage, WithoutAnythingToAttendToSaysSo) {
  StringConsole console;
  ReportPage page({"new", std::nullopt}, "Title", console);
  page.Add(Planned("one"));
  page.Coverage().Finish({});
  EXPECT_TRUE(Has(page.Markup(), "<h3>Needs attention</h3>\n<p>Nothing.</p>\n"));
}

TEST_F(ReportedPage, WithoutFindingsSaysSo) {
  EXPECT_EQ(LintSection().Markup("lint"), "<p>Nothing was found.</p>\n");
}

// Hostile fleets: many boards, long names, many versions.
TEST_F(ReportedPage, HasAtMostTwoMegabytes) {
  std::vector<ReportedComputer> computers;
  StringConsole console;
  ReportPage page({"new", "old"}, "Title", console);
  for (std::size_t i = 0; i < 20'000; ++i) {
    const auto text = std::to_string(i) + std::string(i % 3 == 0 ? 600 : 5, '"');
    auto computer = i % 2 == 0 ? Planned(text)
                               : Missing(text, static_cast<ComputerClass>(1 + i % 3), "Version");
    if (computer.row.miss) computer.row.miss->text = text;
    computer.row.board = computer.settling->board = text.substr(0, 3 + i % 200);
    computer.settling->controllers.push_back({"p", true, i, i + 1});
    computer.difference = DiffRow{.file = text, .board = text};
    computer.difference->changes = {{ChangeKind::Version, text, 1, 2}};
    page.Add(computer);
    page.Lint().Add({.rule = LintRules()[i % 20], .path = text, .location = {}, .message = text});
  }
  page.Coverage().Finish({});
  EXPECT_LT(page.Markup().size(), 2'000'000U);
  EXPECT_GT(page.Markup().size(), 1'000'000U);
}

TEST(ShownVersion, IsRounded) {
  EXPECT_EQ(ShownVersionOf(nullptr).text, "unknown");
  EXPECT_EQ(ShownVersionOf(171).text, "171");
  EXPECT_EQ(ShownVersionOf(24.000000001).text, "24");
  EXPECT_EQ(ShownVersionOf(41.050000000999994).text, "41.05");
}

}  // namespace
}  // namespace fernwick::lab
