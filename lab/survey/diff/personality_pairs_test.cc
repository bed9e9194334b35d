#include "lab/survey/diff/personality_pairs.h"

#include <gtest/gtest.h>

#include "testing/dictionaries.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;
using testing::With;

const Record Port = {{"Version", 200},
                     {"Firmware", "port.bin"},
                     {"Port Silicon Vendor ID", 1},
                     {"Port Silicon Device ID", 2},
                     {"Port Silicon Revision", List({3, 4})}};

PropertyValue At(int address, const char* image, const Record& more = {}) {
  auto record = With(Port, {{"Port Address", address}, {"Firmware", image}});
  record.Merge(Dictionary(more));
  return Dict(record);
}

// "1-2 2-" when the first is paired with the second and the second with none, counted from 1.
std::string PairsOf(Array before, Array after) {
  std::string text;
  const auto pairs = PairPersonalities(Types::Thunderbolt, before, after);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    text += (i == 0 ? "" : " ") + std::to_string(i + 1) + "-";
    if (pairs[i]) text += std::to_string(*pairs[i] + 1);
  }
  return text;
}

TEST(PersonalityPairs, OfARenamedReleaseGoByWhatIsAccepted) {
  const auto before = List({At(0x38, "left-200.bin"), At(0x20, "right-200.bin")});
  const auto after =
      List({Dict(With(Port, {{"Port UUID", List({"5F1C"})}, {"Firmware", "p"}})),
            At(0x38, "left-210.bin"), At(0x20, "right-210.bin", {{"Existing Min Version", 180}})});
  EXPECT_EQ(PairsOf(before, after), "1-2 2-3");
  EXPECT_EQ(PairsOf(after, before), "1- 2-1 3-2");
}

TEST(PersonalityPairs, HaveNoneOfAnotherAddress) {
  EXPECT_EQ(PairsOf(List({At(0x38, "left-200.bin")}), List({At(0x20, "right-210.bin")})), "1-");
}

TEST(PersonalityPairs, IgnoreOrderAndKindOfNumbersInLists) {
  const auto other = With(Port, {{"Port Silicon Revision", List({4.0, 3, 3})}, {"Firmware", "q"}});
  EXPECT_EQ(PairsOf(List({At(1, "a"), Dict(Port)}), List({Dict(other), At(1, "b")})), "1-2 2-1");
}

TEST(PersonalityPairs, OfOnePurposePreferTheSameBoundsThenTheOrder) {
  const auto low = At(1, "low", {{"Existing Max Version", 99}});
  const auto high = At(1, "high", {{"Existing Min Version", 100}});
  const auto newHigh = At(1, "high-2", {{"Existing Min Version", 100}});
  const auto newLow = At(1, "low-2", {{"Existing Max Version", 99}});
  EXPECT_EQ(PairsOf(List({low, high}), List({newHigh, newLow})), "1-2 2-1");
  EXPECT_EQ(PairsOf(List({At(1, "a"), At(1, "b")}), List({At(1, "c"), At(1, "d")})), "1-1 2-2");
  EXPECT_EQ(PairsOf(List({At(1, "a"), At(1, "b")}), List({At(1, "b"), At(1, "a")})), "1-2 2-1");
}

// Among compatible purposes the counterpart is the most similar one.
TEST(PersonalityPairs, OfChangedListsGoByWhatIsCommon) {
  const auto revisions = [](Array list, const char* image) {
    return Dict(With(Port, {{"Port Silicon Revision", list}, {"Firmware", image}}));
  };
  EXPECT_EQ(PairsOf(List({revisions(List({3}), "a"), revisions(List({8}), "b")}),
                    List({revisions(List({8, 9}), "c"), revisions(List({3, 4}), "d")})),
            "1-2 2-1");
}

TEST(PersonalityPairs, OfAnotherPurposeGoByTheImage) {
  EXPECT_EQ(PairsOf(List({At(1, "a"), At(2, "b")}), List({At(3, "b")})), "1- 2-1");
}

TEST(PersonalityPairs, GoByEveryKeyThatTheTypeTestsAndNoOther) {
  const auto mode = [](bool isOn, const char* image) {
    return At(1, image, {{"Firmware Mode", isOn}});
  };
  const auto before = List({mode(true, "a"), mode(false, "b")});
  const auto after = List({mode(false, "c"), mode(true, "d")});
  EXPECT_EQ(PairsOf(before, after), "1-2 2-1");
  const auto pairs = PairPersonalities(Types::Usbc, before, after);
  EXPECT_EQ(pairs, (PersonalityPairs{0, 1})) << "no port has a mode";
}

TEST(PersonalityPairs, LeaveOutWhatIsNotADictionary) {
  EXPECT_EQ(PairsOf(List({1, At(1, "a")}), List({At(1, "a"), "x"})), "1- 2-1");
  EXPECT_EQ(PairsOf({}, List({At(1, "a")})), "");
}

// All different: quadratic time would be minutes.
TEST(PersonalityPairs, OfManyPersonalitiesAreFound) {
  std::vector<PropertyValue> before;
  std::vector<PropertyValue> after;
  for (int i = 0; i < 3000; ++i) before.push_back(At(i, "old"));
  for (int i = 3000; i-- > 0;) after.push_back(At(i, "new"));
  const auto pairs = PairPersonalities(Types::Thunderbolt, std::span(std::as_const(before)),
                                       std::span(std::as_const(after)));
  for (std::size_t i = 0; i < pairs.size(); ++i) EXPECT_EQ(pairs[i], pairs.size() - 1 - i);
}

TEST(PersonalityWithImage, HasTheNumberAndTheImage) {
  const auto personalities = List({At(1, "a.bin"), Dict({{"Firmware", 7}}), 1});
  EXPECT_EQ(PersonalityWithImage(personalities, 0), "personality 1 (a.bin)");
  EXPECT_EQ(PersonalityWithImage(personalities, 1), "personality 2");
  EXPECT_EQ(PersonalityWithImage(personalities, 2), "personality 3");
}

}  // namespace
}  // namespace fernwick::lab
