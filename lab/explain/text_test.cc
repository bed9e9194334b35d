#include <gtest/gtest.h>

#include "lab/explain/print.h"

namespace fernwick::lab {
namespace {

// One key under which one pair of each outcome stands, not in the order in which they are read.
Explanation EveryOutcome() {
  const ExplainedFailure rid = {.requirement = {"RID", Shortfall::Unequal, 1, "RID", 2, "USBC"},
                                .wantedPlace = FilePlace{3, 1, 0},
                                .sources = Share({{"IOService:/hpm0", "hpm0", "RID", 2, ""}})};
  auto version = rid;
  version.requirement = {"Version", Shortfall::NotNewer, 1, "Version", 2, "LegacyUSBC"};
  const std::vector<ExplainedPair> pairs = {{0, PairOutcome::Rejected, {version, rid}},
                                            {1, PairOutcome::NotAPersonality},
                                            {2, PairOutcome::Rejected, {rid}},
                                            {3, PairOutcome::Matched},
                                            {4, PairOutcome::NotReached}};
  ExplainedKey key = {.key = "USBC",
                      .place = FilePlace{2, 1, 0},
                      .type = Types::Usbc,
                      .hasShape = true,
                      .value = Array{}};
  for (std::size_t i = 0; i < pairs.size(); ++i) key.personalities.push_back({{}, {}, {}});
  key.controllers = {{.isPort = true,
                      .path = "IOService:/hpm0",
                      .name = "hpm0",
                      .thunderboltName = "",
                      .record = {{"RID", 2}},
                      .pairs = pairs}};
  return {.end = RunEnd::Planned, .keys = {key}, .matchCount = 1, .plannedMatchCount = 1};
}

std::string TextOf(const Explanation& explanation, bool emphasise) {
  std::string text;
  PrintExplanationText(explanation, emphasise, [&](std::string_view piece) { text += piece; });
  return text;
}

constexpr char Plain[] =
    "Computer        (null) (0x0), revision 0\n"
    "Outcome         1 match, a plan, status 0\n"
    "\n"
    "USBC at 2:1: 1 port controller, 5 personalities\n"
    "\n"
    "  port controller 1, hpm0: RID 2\n"
    "    IOService:/hpm0\n"
    "    matched      personality 4\n"
    "    rejected     personality 3; would match if this were met:\n"
    "                 RID  wants 1 at 3:1, finds 2 [USBC check]\n"
    "                      \"RID\" of hpm0 is 2\n"
    "    rejected     personality 1; would match if these 2 were met:\n"
    "                 Version  1 at 3:1 is not newer than the installed 2 [LegacyUSBC check]\n"
    "                          \"RID\" of hpm0 is 2\n"
    "                 RID      wants 1 at 3:1, finds 2 [USBC check]\n"
    "                          \"RID\" of hpm0 is 2\n"
    "    not reached  personality 5; an earlier one took the controller\n"
    "    skipped      personality 2; it is no dictionary\n";

TEST(ExplanationText, TellsNearMissesFirst) {
  EXPECT_EQ(TextOf(EveryOutcome(), false), Plain);
}

TEST(ExplanationText, EmphasisedDiffersInNothingElse) {
  auto text = TextOf(EveryOutcome(), true);
  EXPECT_NE(text, Plain);
  for (const char* code : {"\x1B[1m", "\x1B[0m"}) {
    for (auto at = text.find(code); at != std::string::npos; at = text.find(code)) {
      text.erase(at, 4);
    }
  }
  EXPECT_EQ(text, Plain);
}

}  // namespace
}  // namespace fernwick::lab
