#include "lab/support/spelling.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(LowerCase, ChangesLettersOfAsciiOnly) {
  EXPECT_EQ(LowerCase("AZaz-1@[\xC3\x84"), "azaz-1@[\xC3\x84");
}

TEST(EditDistance, CountsEditsOfAllFourKinds) {
  EXPECT_EQ(EditDistance("RID", "RID", 2), 0u);
  EXPECT_EQ(EditDistance("RIDs", "RID", 2), 1u);
  EXPECT_EQ(EditDistance("RD", "RID", 2), 1u);
  EXPECT_EQ(EditDistance("RAD", "RID", 2), 1u);
  EXPECT_EQ(EditDistance("Verison", "Version", 2), 1u);
  EXPECT_EQ(EditDistance("Versoins", "Version", 2), 2u);
  EXPECT_EQ(EditDistance("", "ab", 2), 2u);
}

TEST(EditDistance, ExchangesOnlyNeighbours) {
  EXPECT_EQ(EditDistance("abc", "cba", 5), 2u);
  EXPECT_EQ(EditDistance("abcd", "badc", 5), 2u);
}

TEST(EditDistance, StopsCountingAtTheLimit) {
  EXPECT_EQ(EditDistance("abcdef", "uvwxyz", 2), 3u);
  EXPECT_EQ(EditDistance("abcdef", "", 2), 3u);
}

constexpr std::string_view Known[] = {"RID", "Version", "SetNVRAM", "Port UUID"};

TEST(NearestSpelling, IsOfAtMostTwoChangesInAWordLongEnough) {
  EXPECT_EQ(NearestSpelling("Versoin", Known), "Version");
  EXPECT_EQ(NearestSpelling("Port UID", Known), "Port UUID");
  EXPECT_EQ(NearestSpelling("Port UUUIDs", Known), "Port UUID");
  EXPECT_EQ(NearestSpelling("Port UUUIDss", Known), "");
  EXPECT_EQ(NearestSpelling("Versiions", Known), "");
  EXPECT_EQ(NearestSpelling("", Known), "");
}

TEST(NearestSpelling, OfAShortWordIsOneCharacterTooManyOrTwoExchanged) {
  EXPECT_EQ(NearestSpelling("RIDs", Known), "RID");
  EXPECT_EQ(NearestSpelling("rids", Known), "RID");
  EXPECT_EQ(NearestSpelling("RDI", Known), "RID");
  EXPECT_EQ(NearestSpelling("UID", Known), "");
  EXPECT_EQ(NearestSpelling("ID", Known), "");
  EXPECT_EQ(NearestSpelling("DIR", Known), "");
  EXPECT_EQ(NearestSpelling("RIDxs", Known), "");
}

TEST(NearestSpelling, IgnoresCaseBlanksHyphensAndUnderscores) {
  EXPECT_EQ(NearestSpelling("rid", Known), "RID");
  EXPECT_EQ(NearestSpelling("port_uuid", Known), "Port UUID");
  EXPECT_EQ(NearestSpelling("Set-NVRAM", Known), "SetNVRAM");
  EXPECT_EQ(NearestSpelling("S E T N V R A M", Known), "SetNVRAM");
  EXPECT_EQ(NearestSpelling("versoin", Known), "Version");
  EXPECT_EQ(NearestSpelling("PORT_UID", Known), "Port UUID");
}

TEST(NearestSpelling, IsTheNearestAndOfThoseTheFirst) {
  constexpr std::string_view Alike[] = {"Device ID", "Device IDs", "Device AD"};
  EXPECT_EQ(NearestSpelling("DeviceIDs", Alike), "Device IDs");
  EXPECT_EQ(NearestSpelling("Device XD", Alike), "Device ID");
}

TEST(SuggestionFor, IsAQuestionOrEmpty) {
  EXPECT_EQ(SuggestionFor("Verison", Known), " (did you mean \"Version\"?)");
  EXPECT_EQ(SuggestionFor("Firmware", Known), "");
}

}  // namespace
}  // namespace fernwick::lab
