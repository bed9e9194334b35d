#include "lab/explain/failure_text.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using Lines = std::vector<std::string>;
using Value = std::optional<PropertyValue>;

constexpr FilePlace Place = {9, 4, 0};

ExplainedFailure Failure(std::string_view key, Shortfall shortfall, Value wanted, Value found) {
  return {.requirement = {key, shortfall, std::move(wanted), key, std::move(found), "USBC"},
          .wantedPlace = Place,
          .sources = Share({})};
}

std::string TextOf(std::string_view key, Shortfall shortfall, Value wanted, Value found) {
  return FailureText(Failure(key, shortfall, std::move(wanted), std::move(found)));
}

TEST(FailureText, TellsEveryShortfall) {
  EXPECT_EQ(TextOf("RID", Shortfall::PersonalityLacksKey, {}, 10),
            "is missing; the controller has 10 (0xA)");
  EXPECT_EQ(TextOf("Version", Shortfall::PersonalityLacksKey, {}, {}),
            "is missing; the controller has none either");
  EXPECT_EQ(TextOf("Port Address", Shortfall::HardwareLacksKey, Array{1, 2}, {}),
            "wants one of [1, 2] at 9:4, but the controller has none");
  EXPECT_EQ(TextOf("Port UUID", Shortfall::WrongKind, "A0", "A0"),
            "\"A0\" at 9:4 is not an array of strings; the controller has \"A0\"");
  EXPECT_EQ(TextOf("Port Address", Shortfall::Unequal, 1, 2), "wants 1 at 9:4, finds 2");
  EXPECT_EQ(TextOf("Version", Shortfall::NotNewer, 41, 41.5),
            "41 at 9:4 is not newer than the installed 41.5");
  EXPECT_EQ(TextOf("Version", Shortfall::NotNewer, "42", 41),
            "\"42\" at 9:4 is no number and not newer than the installed 41");
  EXPECT_EQ(TextOf("Version", Shortfall::EngineeringFirmware, 42, 64),
            "wants 42 at 9:4, but engineering firmware is installed, marked 64");
  EXPECT_EQ(TextOf("Version", Shortfall::EngineeringFirmware, {}, 64),
            "engineering firmware is installed, marked 64");
  EXPECT_EQ(TextOf("Existing Min Version", Shortfall::AboveInstalled, 42, 41),
            "42 at 9:4 is above the installed 41");
  EXPECT_EQ(TextOf("Existing Max Version", Shortfall::BelowInstalled, 40, 41),
            "40 at 9:4 is below the installed 41");
  EXPECT_EQ(TextOf("MinBoardRevision", Shortfall::AboveBoardRevision, 4, 3),
            "4 at 9:4 is above the board's revision 3");
  EXPECT_EQ(TextOf("MaxBoardRevision", Shortfall::BelowBoardRevision, 2, 3),
            "2 at 9:4 is below the board's revision 3");
}

ExplainedSource Source(std::string property, Value value, std::string conversion = {}) {
  return {"IOService:/hpm0", "hpm0", std::move(property), std::move(value), std::move(conversion)};
}

TEST(FailureText, OfABoundThatIsNoNumberTellsTheBoardsRevision) {
  auto failure = Failure("MinBoardRevision", Shortfall::WrongKind, "4", 3);
  failure.requirement.hardwareKey = {};
  EXPECT_EQ(FailureText(failure), "\"4\" at 9:4 is not a number; the board's revision is 3");
  failure.sources = Share({Source("board-rev", testing::Bytes("\3"), "its first byte")});
  EXPECT_EQ(SourceLines(failure), Lines{"\"board-rev\" of hpm0 is <03>: its first byte"});
}

TEST(SourceLines, AreWhatTheValueComesFrom) {
  auto failure = Failure("RID", Shortfall::Unequal, 1, 2);
  failure.sources = Share({Source("UID", 0x12, "the low 4 bits"), Source("Other", {})});
  EXPECT_EQ(SourceLines(failure),
            (Lines{"\"UID\" of hpm0 is 18 (0x12): the low 4 bits", "\"Other\" of hpm0 is absent"}));
}

TEST(SourceLines, OfAMissingValueSayWhatIsThereInstead) {
  auto failure = Failure("RID", Shortfall::HardwareLacksKey, 1, {});
  failure.sources = Share({Source("RID", {}), Source("UID", "2", "the low 4 bits")});
  EXPECT_EQ(SourceLines(failure),
            (Lines{"\"RID\" of hpm0 is absent", "\"UID\" of hpm0 is a string, \"2\""}));
}

TEST(SourceLines, SayWhyThereIsNoneToLookAt) {
  auto failure = Failure("Ridge UID", Shortfall::HardwareLacksKey, 1, {});
  EXPECT_EQ(SourceLines(failure), Lines{"there is no Thunderbolt controller above it"});
  failure.isUuidUnread = true;
  EXPECT_EQ(SourceLines(failure), Lines{"its \"UUID\" is not read, as an earlier port has none"});
}

TEST(AtPlace, IsNothingForAnUnknownPlace) {
  EXPECT_EQ(AtPlace(Place), " at 9:4");
  EXPECT_EQ(AtPlace(FilePlace{0, 0, 12}), " at byte 12");
  EXPECT_EQ(AtPlace(std::nullopt), "");
}

}  // namespace
}  // namespace fernwick::lab
