#include "lab/lint/subject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/inputs/binary_property_list_builder.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::ArrayObject;
using testing::AsciiObject;
using testing::DictionaryObject;

ConfigurationFile Load(std::string_view bytes) {
  const testing::TemporaryDirectory directory;
  return *LoadConfiguration(directory.Write("Config.plist", bytes));
}

// "KEY at its location, value at its location" of each.
std::vector<std::string> Described(const ConfigurationFile& file,
                                   const std::vector<LocatedEntry>& entries) {
  std::vector<std::string> described;
  for (const auto& entry : entries) {
    described.push_back(std::string(entry.key) + " at " +
                        Describe(file.LocationOf(entry.keyOffset)) + ", value at " +
                        Describe(file.LocationOf(entry.valueOffset)));
  }
  return described;
}

using Lines = std::vector<std::string>;

TEST(LintSubject, KnowsTheLocationsOfPersonalitiesAndTheirKeys) {
  const auto file = Load("{ USBC = ( { a = b; }, x, { c = d; } ); LegacyUSBC = { e = f; }; }");
  const LintSubject subject(file);
  EXPECT_EQ(Described(file, subject.entries),
            (Lines{"USBC at 1:3, value at 1:10", "LegacyUSBC at 1:41, value at 1:54"}));
  ASSERT_EQ(subject.types.size(), 2u);
  const auto& personalities = subject.types[0].personalities;
  ASSERT_EQ(personalities.size(), 2u);
  EXPECT_EQ(Describe(file.LocationOf(personalities[1].offset)), "1:27");
  EXPECT_EQ(personalities[1].typeName, "USBC");
  EXPECT_EQ(Described(file, personalities[1].entries), (Lines{"c at 1:29, value at 1:33"}));
  ASSERT_EQ(subject.types[1].personalities.size(), 1u);
  EXPECT_EQ(Described(file, subject.types[1].personalities[0].entries),
            (Lines{"e at 1:56, value at 1:60"}));
}

TEST(LintSubject, HasNoPersonalityWhereTheShapeIsWrong) {
  const auto file = Load("{ USBC = { a = b; }; LegacyUSBC = ( { a = b; } ); Other = ( {} ); }");
  const LintSubject subject(file);
  ASSERT_EQ(subject.types.size(), 2u);
  EXPECT_TRUE(subject.types[0].personalities.empty());
  EXPECT_TRUE(subject.types[1].personalities.empty());
}

TEST(LintSubject, OfWhatIsNoDictionaryIsEmpty) {
  const auto file = Load("( a )");
  const LintSubject subject(file);
  EXPECT_TRUE(subject.entries.empty());
  EXPECT_TRUE(subject.types.empty());
}

// Its value is the last one, at the first one's turn.
TEST(LintSubject, LocatesAKeyThatOccursTwiceWhereItIsLast) {
  const auto file = Load("{ b = 1; a = 2; b = 3; c = 4; }");
  const LintSubject subject(file);
  EXPECT_EQ(
      Described(file, subject.entries),
      (Lines{"b at 1:17, value at 1:21", "a at 1:10, value at 1:14", "c at 1:24, value at 1:28"}));
}

// A container that a binary file shares is located where it is, each time it is reached.
TEST(LintSubject, LocatesWhatAFileSharesEachTime) {
  const auto file = Load(
      testing::BinaryFile({DictionaryObject({1}, {2}), AsciiObject("USBC"), ArrayObject({3, 3, 3}),
                           DictionaryObject({4}, {5}), AsciiObject("a"), AsciiObject("b")}));
  const LintSubject subject(file);
  const auto& personalities = subject.types.at(0).personalities;
  ASSERT_EQ(personalities.size(), 3u);
  EXPECT_EQ(Described(file, personalities[0].entries), (Lines{"a at byte 23, value at byte 25"}));
  EXPECT_EQ(Described(file, personalities[2].entries), (Lines{"a at byte 23, value at byte 25"}));
}

}  // namespace
}  // namespace fernwick::lab
