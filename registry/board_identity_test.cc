#include "registry/board_identity.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/recordings.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::CallList;
using testing::Computer;
using testing::Joined;
using testing::LoggingRegistry;
using testing::Named;
using testing::NamedValue;
using testing::NonNumbers;
using testing::RowName;

/// A literal with its zero bytes, without the one at its end.
template <std::size_t Size>
std::string Literal(const char (&text)[Size]) {
  return std::string(text, Size - 1);
}

/// What the three operations return.
struct Identity {
  std::uint64_t returnedId;
  std::uint64_t boardId;
  std::uint8_t boardRevision;
  std::optional<std::string> text;
  int revisionAlone;

  friend bool operator==(const Identity&, const Identity&) = default;
};

Identity ReadIdentity(Registry& registry) {
  Identity identity{0, 0xA5A5A5A5A5A5A5A5, 0xA5, {}, 0};
  identity.returnedId = ReadBoardId(registry, identity.boardId, identity.boardRevision);
  identity.text = ReadBoardIdString(registry);
  identity.revisionAlone = ReadBoardRevision(registry);
  return identity;
}

Identity IdentityOf(const Recording& recording) {
  RecordedRegistry registry(recording);
  return ReadIdentity(registry);
}

/// What all three return for a consistent identity.
Identity Expected(std::uint64_t boardId, std::uint8_t revision, std::optional<std::string> text) {
  return {boardId, boardId, revision, std::move(text), revision};
}

struct BoardIdRow {
  std::string bytes;
  std::uint64_t boardId;
  std::optional<std::string> text;
};

class BoardIdOf : public ::testing::TestWithParam<Named<BoardIdRow>> {};

TEST_P(BoardIdOf, BytesInTheRegistry) {
  Computer computer;
  computer.Set(computer.Board(), "board-id", Bytes(GetParam().row.bytes));
  computer.Set(computer.Board(), "board-rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()),
            Expected(GetParam().row.boardId, 3, GetParam().row.text));
}

constexpr std::uint64_t AllOnes = 0xFFFFFFFFFFFFFFFF;

const Named<BoardIdRow> BoardIdRows[] = {
    {"SixteenDigits",
     {Literal("Zed-0123456789ABCDEF\0"), 0x0123456789ABCDEF, "Zed-0123456789ABCDEF"}},
    {"LowerCasePrefix", {Literal("zed-12AB\0"), 0, "zed-12AB"}},
    {"UpperCasePrefix", {Literal("ZED-12AB\0"), 0, "ZED-12AB"}},
    {"StopsAtTheFirstOtherCharacter", {Literal("Zed-12G4\0"), 0x12, "Zed-12G4"}},
    {"HexadecimalPrefix", {Literal("Zed-0x1F\0"), 0x1F, "Zed-0x1F"}},
    {"UpperCaseHexadecimalPrefix", {Literal("Zed-0X1f\0"), 0x1F, "Zed-0X1f"}},
    {"HexadecimalPrefixWithoutDigits", {Literal("Zed-0x\0"), 0, "Zed-0x"}},
    {"HexadecimalPrefixBeforeAnotherLetter", {Literal("Zed-0xG\0"), 0, "Zed-0xG"}},
    {"TwoHexadecimalPrefixes", {Literal("Zed-0x0x12\0"), 0, "Zed-0x0x12"}},
    {"Blank", {Literal("Zed- 1F\0"), 0x1F, "Zed- 1F"}},
    {"EveryKindOfWhiteSpace", {Literal("Zed- \t\n\v\f\r1F\0"), 0x1F, "Zed- \t\n\v\f\r1F"}},
    {"NoBreakSpace", {Literal("Zed-\u00A01F\0"), 0, "Zed-\u00A01F"}},
    {"SeventeenDigits", {Literal("Zed-FFFFFFFFFFFFFFFFF\0"), AllOnes, "Zed-FFFFFFFFFFFFFFFFF"}},
    {"GreatestNumber", {Literal("Zed-ffffffffffffffff\0"), AllOnes, "Zed-ffffffffffffffff"}},
    {"TwoTo64", {Literal("Zed-10000000000000000\0"), AllOnes, "Zed-10000000000000000"}},
    {"ZeroesBeforeTheDigits",
     {Literal("Zed-000000000000000000042\0"), 0x42, "Zed-000000000000000000042"}},
    {"PlusSign", {Literal("Zed-+1F\0"), 0x1F, "Zed-+1F"}},
    {"MinusSign", {Literal("Zed--1F\0"), AllOnes - 0x1E, "Zed--1F"}},
    {"MinusZero", {Literal("Zed--0\0"), 0, "Zed--0"}},
    {"MinusSignAndOverflow",
     {Literal("Zed--10000000000000000\0"), AllOnes, "Zed--10000000000000000"}},
    {"TwoSigns", {Literal("Zed--+1F\0"), 0, "Zed--+1F"}},
    {"WhiteSpaceBehindTheSign", {Literal("Zed-+ 1F\0"), 0, "Zed-+ 1F"}},
    {"SignBehindTheHexadecimalPrefix", {Literal("Zed-0x-1F\0"), 0, "Zed-0x-1F"}},
    {"WhiteSpaceSignAndHexadecimalPrefix", {Literal("Zed- -0x1F\0"), AllOnes - 0x1E, "Zed- -0x1F"}},
    {"BarePrefix", {Literal("Zed-\0"), 0, "Zed-"}},
    {"NoDigitsBehindThePrefix", {Literal("Zed-ghi\0"), 0, "Zed-ghi"}},
    {"NoPrefix", {Literal("12AB\0"), 0, "12AB"}},
    {"OtherPrefix", {Literal("Zee-12AB\0"), 0, "Zee-12AB"}},
    {"PrefixWithoutHyphen", {Literal("Zed12AB\0"), 0, "Zed12AB"}},
    {"PrefixFurtherBehind", {Literal(" Zed-12AB\0"), 0, " Zed-12AB"}},
    {"PartOfThePrefix", {Literal("Zed\0"), 0, "Zed"}},
    {"PrefixCutByAZeroByte", {Literal("Zed\0-12AB\0"), 0, "Zed"}},
    {"DigitsCutByAZeroByte", {Literal("Zed-12\0AB\0"), 0x12, "Zed-12"}},
    {"DigitsBehindTheZeroByte", {Literal("Zed-\00012AB\0"), 0, "Zed-"}},
    {"OnlyAZeroByte", {Literal("\0"), 0, ""}},
    {"ZeroByteFirst", {Literal("\0Zed-12AB\0"), 0, ""}},
    {"NoBytes", {Literal(""), 0, ""}},
    {"NoZeroByte", {Literal("Zed-12AB"), 0x12AB, "Zed-12AB"}},
    {"BarePrefixWithoutZeroByte", {Literal("Zed-"), 0, "Zed-"}},
    {"PartOfThePrefixWithoutZeroByte", {Literal("Ze"), 0, "Ze"}},
    {"SlashesAndDots", {Literal("../Zed-12/AB\0"), 0, "../Zed-12/AB"}},
    {"TextOfOtherScripts",
     {Literal("Zed-12\u00E9\u65E5\U0001F600\0"), 0x12, "Zed-12\u00E9\u65E5\U0001F600"}},
    {"ControlCharacter", {Literal("Zed-12\1\0"), 0x12, "Zed-12\1"}},
    {"NotUtf8", {Literal("Zed-12\xFF\0"), 0x12, std::nullopt}},
    {"CutUtf8", {Literal("Zed-12\xC3\0"), 0x12, std::nullopt}},
    {"CutUtf8WithoutZeroByte", {Literal("Zed-12\xE6\x97"), 0x12, std::nullopt}},
    {"OverlongUtf8", {Literal("Zed-12\xC0\xAF\0"), 0x12, std::nullopt}},
    {"SurrogateInUtf8", {Literal("Zed-12\xED\xA0\x80\0"), 0x12, std::nullopt}},
    {"NotUtf8WithoutPrefix", {Literal("\x80\0"), 0, std::nullopt}},
    {"NotUtf8BehindTheZeroByte", {Literal("Zed-12\0\xFF"), 0x12, "Zed-12"}},
};

INSTANTIATE_TEST_SUITE_P(BoardIdentity, BoardIdOf, ::testing::ValuesIn(BoardIdRows), RowName);

struct RevisionRow {
  std::string bytes;
  std::uint8_t revision;
};

class BoardRevisionOf : public ::testing::TestWithParam<Named<RevisionRow>> {};

TEST_P(BoardRevisionOf, BytesInTheRegistry) {
  Computer computer;
  computer.Set(computer.Board(), "board-id", Bytes(Literal("Zed-42\0")));
  computer.Set(computer.Board(), "board-rev", Bytes(GetParam().row.bytes));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0x42, GetParam().row.revision, "Zed-42"));
}

const Named<RevisionRow> RevisionRows[] = {
    {"OneByte", {"\x83", 131}},
    {"FurtherBytes", {"\x83\x42\x17", 131}},
    {"FurtherZeroBytes", {Literal("\x83\0\0\0"), 131}},
    {"GreatestByte", {"\xFF", 255}},
    {"ZeroByte", {Literal("\0"), 0}},
    {"ZeroByteFirst", {Literal("\0\x83"), 0}},
    {"NoBytes", {"", 0}},
};

INSTANTIATE_TEST_SUITE_P(BoardIdentity, BoardRevisionOf, ::testing::ValuesIn(RevisionRows),
                         RowName);

TEST(BoardIdentity, WithoutDeviceTreeEverythingIsMissing) {
  EXPECT_EQ(IdentityOf(testing::RecordingOf({})), Expected(0, 0, std::nullopt));
}

TEST(BoardIdentity, WithoutPropertiesEverythingIsMissing) {
  EXPECT_EQ(IdentityOf(Computer().Recorded()), Expected(0, 0, std::nullopt));
}

TEST(BoardIdentity, WithoutBoardIdTheRevisionIsStillRead) {
  Computer computer;
  computer.Set(computer.Board(), "board-rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0, 3, std::nullopt));
}

TEST(BoardIdentity, WithoutBoardRevisionTheBoardIdIsStillRead) {
  Computer computer;
  computer.Set(computer.Board(), "board-id", Bytes(Literal("Zed-42\0")));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0x42, 0, "Zed-42"));
}

TEST(BoardIdentity, IsFoundBelowTheRoot) {
  Computer computer;
  computer.Set(computer.Options(), "board-id", Bytes(Literal("Zed-42\0")));
  computer.Set(computer.Options(), "board-rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0x42, 3, "Zed-42"));
}

TEST(BoardIdentity, OfTheRootPrecedesThatBelow) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.Set(computer.Options(), "board-id", Bytes(Literal("Zed-43\0")));
  computer.Set(computer.Options(), "board-rev", Bytes("\4"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0x42, 3, "Zed-42"));
}

TEST(BoardIdentity, OfTheServicePlaneIsNotLookedAt) {
  Computer computer;
  computer.Set(computer.Services(), "board-id", Bytes(Literal("Zed-42\0")));
  computer.Set(computer.Services(), "board-rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0, 0, std::nullopt));
}

TEST(BoardIdentity, KeysOfOtherCaseAreNotFound) {
  Computer computer;
  computer.Set(computer.Board(), "Board-ID", Bytes(Literal("Zed-42\0")));
  computer.Set(computer.Board(), "board-Rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0, 0, std::nullopt));
}

std::vector<NamedValue> NonData() {
  std::vector<NamedValue> values{{"Boolean", true}, {"Integer", 0x42}, {"Real", 66.0}};
  for (auto& named : NonNumbers()) {
    if (!named.row.AsData()) values.push_back(named);
  }
  values.push_back({"TextOfABoard", "Zed-42"});
  return values;
}

class BoardPropertyOf : public ::testing::TestWithParam<NamedValue> {};

TEST_P(BoardPropertyOf, AKindOtherThanDataCountsAsAbsent) {
  Computer computer;
  computer.Set(computer.Board(), "board-id", GetParam().row);
  computer.Set(computer.Board(), "board-rev", GetParam().row);
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0, 0, std::nullopt));
}

TEST_P(BoardPropertyOf, AKindOtherThanDataAtTheRootHidesDataBelow) {
  Computer computer;
  computer.Set(computer.Board(), "board-id", GetParam().row);
  computer.Set(computer.Board(), "board-rev", GetParam().row);
  computer.Set(computer.Options(), "board-id", Bytes(Literal("Zed-42\0")));
  computer.Set(computer.Options(), "board-rev", Bytes("\3"));
  EXPECT_EQ(IdentityOf(computer.Recorded()), Expected(0, 0, std::nullopt));
}

INSTANTIATE_TEST_SUITE_P(BoardIdentity, BoardPropertyOf, ::testing::ValuesIn(NonData()), RowName);

CallList IdentityCalls() {
  return {"LookupEntryByPath IODeviceTree:/",
          "SearchProperty root IODeviceTree board-id 1",
          "SearchProperty root IODeviceTree board-rev 1",
          "ReleaseEntry root",
          "LookupEntryByPath IODeviceTree:/",
          "SearchProperty root IODeviceTree board-id 1",
          "ReleaseEntry root",
          "LookupEntryByPath IODeviceTree:/",
          "SearchProperty root IODeviceTree board-rev 1",
          "ReleaseEntry root"};
}

TEST(BoardIdentity, EachOperationLooksTheRootUpAndReleasesIt) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  LoggingRegistry registry(computer.Recorded());
  ReadIdentity(registry);
  EXPECT_EQ(registry.Calls(), IdentityCalls());
}

TEST(BoardIdentity, AbsentPropertiesChangeNoCall) {
  const Computer computer;
  LoggingRegistry registry(computer.Recorded());
  ReadIdentity(registry);
  EXPECT_EQ(registry.Calls(), IdentityCalls());
}

TEST(BoardIdentity, NothingIsKeptBetweenReads) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  LoggingRegistry registry(computer.Recorded());
  ReadIdentity(registry);
  ReadIdentity(registry);
  EXPECT_EQ(registry.Calls(), Joined({IdentityCalls(), IdentityCalls()}));
}

TEST(BoardIdentity, AMissingRootIsReleasedByAllButReadBoardId) {
  const Recording recording = testing::RecordingOf({});
  LoggingRegistry registry(recording);
  ReadIdentity(registry);
  EXPECT_EQ(registry.Calls(), (CallList{"LookupEntryByPath IODeviceTree:/",
                                        "LookupEntryByPath IODeviceTree:/", "ReleaseEntry none",
                                        "LookupEntryByPath IODeviceTree:/", "ReleaseEntry none"}));
}

TEST(BoardIdentity, IsEmptyUnlessRead) {
  const BoardIdentity identity;
  EXPECT_EQ(identity.boardIdString, std::nullopt);
  EXPECT_EQ(identity.boardId, 0u);
  EXPECT_EQ(identity.boardRevision, 0);
}

}  // namespace
}  // namespace fernwick
