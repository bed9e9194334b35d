#include "personality/match_recorder.h"

#include <gtest/gtest.h>

#include <string>

#include "personality/matcher.h"
#include "testing/capture.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/distinctness.h"
#include "testing/logging_registry.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::With;

struct Answer {
  std::optional<std::vector<MatchRecord>> matches;
  std::string standardError;
  std::vector<std::string> calls;

  friend bool operator==(const Answer&, const Answer&) = default;
};

Answer AnswerOf(const Computer& computer, const std::string& directory, MatchRecorder* recorder) {
  testing::LoggingRegistry registry(computer.Recorded());
  testing::StandardErrorCapture standardError;
  auto matches = MatchPersonalities(registry, "Zed-42", 3, directory, recorder);
  return {std::move(matches), standardError.TakeText(), registry.Calls()};
}

// What a recorder learns. With it the matches, all that is written and all that is asked of the
// registry are the same as without.
MatchRecorder Learned(const Computer& computer, const testing::TemporaryDirectory& payload) {
  MatchRecorder recorder;
  const auto directory = payload.Path() + "/";
  EXPECT_EQ(AnswerOf(computer, directory, &recorder), AnswerOf(computer, directory, nullptr));
  return recorder;
}

MatchRecorder Learned(const Computer& computer, const PropertyValue& configuration) {
  const testing::TemporaryDirectory payload;
  payload.Write("Zed-42/Config.plist", WriteXmlPropertyList(configuration));
  return Learned(computer, payload);
}

// Two ports with addresses 0 and 1, both at version 171.
Computer TwoPorts() {
  Computer computer;
  for (const int address : {0, 1}) {
    computer.AddPort("hpm", {{"Vendor ID", 1},
                             {"Device ID", 2},
                             {"Revision ID", 3},
                             {"Address", address},
                             {"Version", 0x171}});
  }
  return computer;
}

const Personality Update = {{"Version", 172},
                            {"Port Silicon Vendor ID", 1},
                            {"Port Silicon Device ID", 2},
                            {"Port Silicon Revision", 3}};

PairDecision Rejected(FailedRequirement failure) {
  return {PairOutcome::Rejected, {std::move(failure)}};
}

const PairDecision Matched = {PairOutcome::Matched};

std::vector<std::vector<PairDecision>> PairsOf(const KeyDecisions& key) {
  std::vector<std::vector<PairDecision>> pairs;
  for (const auto& controller : key.controllers) pairs.push_back(controller.pairs);
  return pairs;
}

using Pairs = std::vector<std::vector<PairDecision>>;

TEST(MatchRecorder, LearnsWhatBecomesOfEachPair) {
  const auto forPort1 = With(Update, {{"Port Address", 1}});
  const auto learned = Learned(TwoPorts(), Dictionary{{"USBC", Array{5, forPort1, Update}}});
  ASSERT_EQ(learned.keys.size(), 1u);
  const FailedRequirement address = {"Port Address", Shortfall::Unequal, 1, "Port Address", 0,
                                     "LegacyUSBC"};
  EXPECT_EQ(PairsOf(learned.keys.front()),
            (Pairs{{{PairOutcome::NotAPersonality}, Rejected(address), Matched},
                   {{PairOutcome::NotAPersonality}, Matched, {PairOutcome::NotReached}}}));
}

TEST(MatchRecorder, LearnsOfTheSinglePersonalityOnEveryPort) {
  const auto update = With(Update, {{"Port Address", 1}});
  const auto learned = Learned(TwoPorts(), Dictionary{{"LegacyUSBC", update}});
  ASSERT_EQ(learned.keys.size(), 1u);
  const FailedRequirement address = {"Port Address", Shortfall::Unequal, 1, "Port Address", 0,
                                     "LegacyUSBC"};
  EXPECT_EQ(PairsOf(learned.keys.front()), (Pairs{{Rejected(address)}, {Matched}}));
}

TEST(MatchRecorder, LearnsTheKeysInTheirOrderWithTheirInventories) {
  auto computer = TwoPorts();
  const auto ridge =
      computer.AddThunderbolt("ridge", {{"Depth", 0}, {"Route String", 0}, {"UID", 7}});
  const auto learned = Learned(computer, Dictionary{{"Note", "x"},
                                                    {"LegacyThunderbolt", Array{}},
                                                    {"USBC", Update},
                                                    {"LegacyUSBC", Array{Update}},
                                                    {"Thunderbolt", 5}});
  std::vector<std::string> keys;
  for (const auto& key : learned.keys) {
    keys.push_back(key.key);
    const bool isThunderbolt = key.key == "LegacyThunderbolt";
    EXPECT_EQ(PairsOf(key), Pairs(isThunderbolt ? 1 : 2)) << key.key;
    EXPECT_EQ(key.inventory.listed.size(), key.controllers.size()) << key.key;
    if (!isThunderbolt) continue;
    EXPECT_EQ(key.inventory.listed.front().thunderbolt, ridge);
  }
  EXPECT_EQ(keys, (std::vector<std::string>{"Note", "LegacyThunderbolt", "USBC", "LegacyUSBC",
                                            "Thunderbolt"}));
}

TEST(MatchRecorder, LearnsTheControllersRecord) {
  const auto learned = Learned(TwoPorts(), Dictionary{{"USBC", Array{}}});
  EXPECT_EQ(learned.keys.front().controllers.at(1).controller,
            (HardwareRecord{{"Port Silicon Vendor ID", 1},
                            {"Port Silicon Device ID", 2},
                            {"Port Silicon Revision", 3},
                            {"Port Address", 1},
                            {"Version", 171}}));
}

TEST(MatchRecorder, LearnsTheConfigurationWhateverItIs) {
  EXPECT_EQ(Learned(TwoPorts(), Dictionary{}).configuration, Dictionary{});
  EXPECT_EQ(Learned(TwoPorts(), Array{5}).configuration, Array{5});
  EXPECT_EQ(Learned(TwoPorts(), testing::TemporaryDirectory()).configuration, std::nullopt);
}

TEST(MatchRecorder, LearnsOfNoControllers) {
  const auto learned = Learned(Computer(), Dictionary{{"USBC", Array{Update}}});
  EXPECT_EQ(learned.keys, std::vector<KeyDecisions>{{"USBC"}});
}

// What tests compare is compared whole.
TEST(MatchRecorder, DiffersByEachOfItsMembers) {
  const FailedRequirement failure = {"RID", Shortfall::Unequal, {}, {}, {}};
  testing::ExpectDistinct<PairDecision>(
      {PairOutcome::Rejected}, {{PairOutcome::Matched}, {PairOutcome::Rejected, {failure}}});
  testing::ExpectDistinct<ControllerDecisions>(
      {}, {{.controller = {{"RID", 1}}}, {.controller = {}, .pairs = {{PairOutcome::Matched}}}});
  const InventoryRecorder inventory = {.listed = {{.port = 1}}};
  testing::ExpectDistinct<KeyDecisions>(
      {}, {{.key = "USBC"}, {.key = "", .controllers = {{}}}, {.key = "", .inventory = inventory}});
}

}  // namespace
}  // namespace fernwick
