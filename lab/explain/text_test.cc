#include <gtest/gtest.h>

#include "lab/explain/print.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

constexpr Requirement RidRequirement = {.key = "RID", .hardwareKey = "RID", .type = "USBC"};
constexpr Requirement VersionRequirement = {
    .key = "Version", .hardwareKey = "Version", .type = "LegacyUSBC"};

const HardwareRecord Port = {{"RID", 2}};

// One key with one pair of each outcome, not in the order in which they are read.
Explanation EveryOutcome() {
  const ExplainedFailure rid = {{&RidRequirement, FailureReason::Unequal, 1, 2},
                                FileLocation{3, 1, 0}};
  const ExplainedFailure version = {{&VersionRequirement, FailureReason::NotNewer, 1, 2},
                                    FileLocation{3, 1, 0}};
  const std::vector<ExplainedPair> pairs = {{0, PairOutcome::Rejected, {0, 1, 2}, {version, rid}},
                                            {1, PairOutcome::NotAPersonality},
                                            {2, PairOutcome::Rejected, {0, 1, 1}, {rid}},
                                            {3, PairOutcome::Matched},
                                            {4, PairOutcome::NotReached}};
  ExplainedKey key = {.key = "USBC",
                      .location = FileLocation{2, 1, 0},
                      .type = Types::Usbc,
                      .hasExpectedShape = true,
                      .isSelected = true,
                      .value = Array(),
                      .controllerCount = 1};
  for (std::size_t i = 0; i < pairs.size(); ++i) key.personalities.push_back({});
  const ExplainedSources fromRid = {{"IOService:/hpm0", "hpm0", "RID", 2, ""}};
  key.controllers = {{.number = 1,
                      .isPort = true,
                      .path = "IOService:/hpm0",
                      .name = "hpm0",
                      .thunderboltName = "",
                      .record = Port,
                      .isUuidUnread = false,
                      .pairs = pairs,
                      .sources = {{"RID", fromRid}, {"Version", fromRid}}}};
  Explanation explanation = {.end = RunEnd::Planned};
  explanation.keys.push_back(key);
  explanation.run.result.matches.resize(1);
  explanation.run.result.plannedMatches = 1;
  return explanation;
}

// The explanation of a port with one failed requirement, of which the hardware has `found`.
Explanation OneFailure(const Requirement& requirement, std::optional<PropertyValue> found,
                       ExplainedSources sources) {
  auto explanation = EveryOutcome();
  auto& controller = explanation.keys[0].controllers[0];
  const auto reason = found ? FailureReason::Unequal : FailureReason::HardwareLacksKey;
  controller.pairs = {
      {0, PairOutcome::Rejected, {0, 1, 1}, {{{&requirement, reason, 1, found}, {}}}}};
  controller.sources = {{requirement.hardwareKey, std::move(sources)}};
  return explanation;
}

std::string TextOf(const Explanation& explanation, bool emphasise) {
  std::string text;
  PrintExplanationText(explanation, emphasise, [&](std::string_view piece) { text += piece; });
  return text;
}

// What follows the line of the one failure.
std::string SourceLines(const Explanation& explanation) {
  const auto text = TextOf(explanation, false);
  const std::string check = " check]\n";
  return text.substr(text.find(check) + check.size());
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
    "    not reached  personality 5; an earlier one matched, and it is not a dictionary\n"
    "    skipped      personality 2; it is not a dictionary\n";

TEST(ExplanationText, HasNearMissesFirst) {
  EXPECT_EQ(TextOf(EveryOutcome(), false), Plain);
}

TEST(ExplanationText, SaysWhatAPersonalityThatWasNotReachedWouldHaveBeen) {
  auto explanation = EveryOutcome();
  auto& key = explanation.keys[0];
  auto& pair = key.controllers[0].pairs[4];
  key.personalities[4].isDictionary = true;
  const auto line = [&] {
    const auto text = TextOf(explanation, false);
    const auto start = text.find("    not reached");
    return text.substr(start, text.find('\n', start) - start);
  };
  EXPECT_EQ(line(),
            "    not reached  personality 5; an earlier one matched, and this one would, too");
  pair.failures = key.controllers[0].pairs[0].failures;
  pair.failures.insert(pair.failures.begin(), pair.failures.front());
  EXPECT_EQ(
      line(),
      "    not reached  personality 5; an earlier one matched, this one would fail Version, RID");
}

TEST(ExplanationText, SaysThatTheBypassMadeAMatch) {
  auto explanation = EveryOutcome();
  auto& pairs = explanation.keys[0].controllers[0].pairs;
  pairs[3].failures = {pairs[0].failures[0]};
  const auto text = TextOf(explanation, false);
  EXPECT_NE(
      text.find("    matched      personality 4; would be rejected without the bypass of the "
                "version check:\n"
                "                 Version  1 at 3:1 is not newer than the installed 2 [LegacyUSBC "
                "check]\n"),
      std::string::npos);
}

TEST(ExplanationText, ListsAHundredKeysThatAreNotRead) {
  auto explanation = EveryOutcome();
  auto& unread = explanation.keys[0].personalities[0].unread;
  unread.assign(101, {"Colour", {}, Types::None});
  EXPECT_NE(TextOf(explanation, false).find("  not read: 1 more key\n"), std::string::npos);
  unread.pop_back();
  EXPECT_EQ(TextOf(explanation, false).find("more key"), std::string::npos);
}

TEST(ExplanationText, OfAnImageWithoutAVersionSaysUnknown) {
  auto explanation = EveryOutcome();
  explanation.plan = ExplainedPlan{.summary = {.priority = 3}, .images = {}};
  explanation.plan->summary.setNvram["a"] = 1;
  explanation.plan->summary.setNvram["b"] = "x";
  explanation.plan->summary.clearNvram = {"c", "d"};
  explanation.plan->summary.options = "-g";
  explanation.plan->images.push_back({.key = "USBC",
                                      .personality = "personality 2",
                                      .number = 2,
                                      .controller = "IOService:/hpm0",
                                      .name = "hpm0",
                                      .path = "p/a.bin",
                                      .isMissing = true});
  EXPECT_NE(TextOf(explanation, false)
                .find("Plan            priority 3\n"
                      "                p/a.bin (missing)\n"
                      "                  by USBC, personality 2 for hpm0, version unknown to "
                      "unknown\n"
                      "                set NVRAM \"a\" to 1, \"b\" to \"x\"\n"
                      "                clear NVRAM \"c\", \"d\"\n"
                      "                options -g\n"),
            std::string::npos);
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

ExplainedSource Source(std::string_view property, std::optional<PropertyValue> value,
                       std::string_view conversion = {}) {
  return {"IOService:/hpm0", "hpm0", property, value, conversion};
}

TEST(ExplanationText, HasWhatTheHardwaresValueComesFrom) {
  EXPECT_EQ(SourceLines(OneFailure(RidRequirement, 2,
                                   {Source("UID", 0x12, "the low 4 bits"), Source("Other", {})})),
            "                      \"UID\" of hpm0 is 18 (0x12): the low 4 bits\n"
            "                      \"Other\" of hpm0 is absent\n");
}

TEST(ExplanationText, OfTheBoardsRevisionHasItsProperty) {
  const Requirement requirement = {.key = "MinBoardRevision", .hardwareKey = "", .type = "USBC"};
  EXPECT_EQ(SourceLines(OneFailure(requirement, 3,
                                   {Source("board-rev", testing::Bytes("\3"), "its first byte")})),
            "                                   \"board-rev\" of hpm0 is <03>: its first byte\n");
}

TEST(ExplanationText, OfAMissingValueHasWhatIsThereInstead) {
  EXPECT_EQ(SourceLines(OneFailure(RidRequirement, {},
                                   {Source("RID", {}), Source("UID", "2", "the low 4 bits")})),
            "                      \"RID\" of hpm0 is absent\n"
            "                      \"UID\" of hpm0 is a string, \"2\"\n");
}

TEST(ExplanationText, OfAValueThatNothingHasSaysWhy) {
  EXPECT_EQ(SourceLines(OneFailure(RidRequirement, {}, {})),
            "                      there is no Thunderbolt controller above it\n");
  const Requirement uuid = {.key = "Port UUID", .hardwareKey = "Port UUID", .type = "USBC"};
  auto explanation = OneFailure(uuid, {}, {});
  explanation.keys[0].controllers[0].isUuidUnread = true;
  EXPECT_EQ(SourceLines(explanation),
            "                            its \"UUID\" is not read, as an earlier port has none\n");
}

}  // namespace
}  // namespace fernwick::lab
