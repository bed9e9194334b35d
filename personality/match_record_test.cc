#include "personality/match_record.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/dictionaries.h"
#include "testing/inputs/full_port_record.h"
#include "testing/inputs/odd_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::FullPortRecord;
using testing::List;
using testing::NonNumbers;
using testing::With;
using testing::Without;

MatchRecord RecordOf(const Record& personality, const HardwareRecord& controller,
                     std::string_view type) {
  return BuildMatchRecord(personality, controller, type);
}

constexpr std::string_view AllTypes[] = {
    PersonalityType::LegacyThunderbolt,
    PersonalityType::Thunderbolt,
    PersonalityType::LegacyUsbc,
    PersonalityType::Usbc,
};

TEST(MatchRecord, OfAnEmptyPersonalityContainsRidVersionAddressAndType) {
  EXPECT_EQ(RecordOf({}, FullPortRecord, "USBC"), (MatchRecord{
                                                      {"RID", 2},
                                                      {"Version", 41.050000000999994},
                                                      {"Port Address", 0},
                                                      {"Personality Type", "USBC"},
                                                  }));
}

TEST(MatchRecord, OfAnEmptyThunderboltPersonalityContainsTheFirmwareModeToo) {
  EXPECT_EQ(RecordOf({}, FullPortRecord, "Thunderbolt"), (MatchRecord{
                                                             {"RID", 2},
                                                             {"Version", 41.050000000999994},
                                                             {"Port Address", 0},
                                                             {"Personality Type", "Thunderbolt"},
                                                             {"Firmware Mode", true},
                                                         }));
}

TEST(MatchRecord, OfNothingAtAllContainsOnlyTheType) {
  for (const auto type : AllTypes) {
    EXPECT_EQ(RecordOf({}, {}, type), (MatchRecord{{"Personality Type", type}}));
  }
}

// Every key that a personality can name, in an order of its own.
const Record FullPersonality = {
    {"Firmware", "Grat.bin"},
    {"Ridge UID", List({0x5A2, 0x5A3})},
    {"Ridge Silicon Revision", List({4})},
    {"Ridge Silicon Device ID", 467.0},
    {"Ridge Silicon Vendor ID", List({0x5A86, "x"})},
    {"Port UUID", List({"b0A1", "c2"})},
    {"Port OTP Revision", true},
    {"Port Silicon Revision", List({7, 8})},
    {"Port Silicon Device ID", List({17, 18})},
    {"Port Silicon Vendor ID", List({0x4D1})},
    {"Firmware Mode", List({0, 1})},
    {"Device Model Revision", List({1, 2})},
    {"Device Model ID", List({30})},
    {"Device Model Name", List({"Grat", "Fjell"})},
    {"MaxBoardRevision", 9},
    {"MinBoardRevision", 0},
    {"Personality Type", "from the file"},
    {"Port Address", List({0, 1})},
    {"RID", List({1, 2})},
    {"Existing Max Version", 41.06},
    {"Existing Min Version", 41},
    {"Version", 42.5},
    {"Priority", 7},
    {"SetNVRAM", Dict({{"a", 1}})},
    {"ClearNVRAM", List({"b", 2})},
    {"Note", Dict({{"kept", Array()}})},
};

// The same, overlaid; "Firmware Mode" is the file's.
const MatchRecord FullRecord = {
    {"Firmware", "Grat.bin"},
    {"Ridge UID", 0x5A3},
    {"Ridge Silicon Revision", 4},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Port UUID", "b0A1"},
    {"Port OTP Revision", 1},
    {"Port Silicon Revision", 7},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Firmware Mode", List({0, 1})},
    {"Device Model Revision", List({1, 2})},
    {"Device Model ID", List({30})},
    {"Device Model Name", List({"Grat", "Fjell"})},
    {"MaxBoardRevision", 9},
    {"MinBoardRevision", 0},
    {"Personality Type", "USBC"},
    {"Port Address", 0},
    {"RID", 2},
    {"Existing Max Version", 41.06},
    {"Existing Min Version", 41},
    {"Version", 42.5},
    {"Priority", 7},
    {"SetNVRAM", Dict({{"a", 1}})},
    {"ClearNVRAM", List({"b", 2})},
    {"Note", Dict({{"kept", Array()}})},
};

TEST(MatchRecord, AReplacedKeyKeepsItsPositionAndAllOthersTheirValue) {
  for (const std::string_view type : {"USBC", "LegacyUSBC", "LegacyThunderbolt"}) {
    EXPECT_EQ(RecordOf(FullPersonality, FullPortRecord, type),
              With(FullRecord, {{"Personality Type", type}}));
  }
}

TEST(MatchRecord, OnlyThunderboltUsesTheFirmwareModeOfTheController) {
  EXPECT_EQ(RecordOf(FullPersonality, FullPortRecord, "Thunderbolt"),
            With(FullRecord, {{"Personality Type", "Thunderbolt"}, {"Firmware Mode", true}}));
}

TEST(MatchRecord, AnEmptyControllerLeavesOnlyWhatTheFileMaySet) {
  const MatchRecord left = {
      {"Firmware", "Grat.bin"},
      {"Firmware Mode", List({0, 1})},
      {"Device Model Revision", List({1, 2})},
      {"Device Model ID", List({30})},
      {"Device Model Name", List({"Grat", "Fjell"})},
      {"MaxBoardRevision", 9},
      {"MinBoardRevision", 0},
      {"Personality Type", "Thunderbolt"},
      {"Port Address", List({0, 1})},
      {"Existing Max Version", 41.06},
      {"Existing Min Version", 41},
      {"Version", 42.5},
      {"Priority", 7},
      {"SetNVRAM", Dict({{"a", 1}})},
      {"ClearNVRAM", List({"b", 2})},
      {"Note", Dict({{"kept", Array()}})},
  };
  EXPECT_EQ(RecordOf(FullPersonality, {}, "Thunderbolt"), left);
}

TEST(MatchRecord, AVersionThatIsANumberIsKept) {
  for (const PropertyValue& version : List({42, 42.0, -1, true, 0xFFFFFFFFFFFFFFFF})) {
    EXPECT_EQ(RecordOf({{"Version", version}}, {{"Version", 41}}, "USBC"),
              (MatchRecord{{"Version", version}, {"Personality Type", "USBC"}}));
    EXPECT_EQ(RecordOf({{"Version", version}}, {}, "USBC"),
              (MatchRecord{{"Version", version}, {"Personality Type", "USBC"}}));
  }
}

TEST(MatchRecord, AVersionThatIsNanIsKept) {
  const auto record =
      RecordOf({{"Version", std::numeric_limits<double>::quiet_NaN()}}, {{"Version", 41}}, "USBC");
  const auto version = record.Find("Version")->AsReal();
  ASSERT_TRUE(version.has_value());
  EXPECT_NE(*version, *version);
}

TEST(MatchRecord, AVersionThatIsNotANumberIsReplacedByTheControllers) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(RecordOf({{"Version", version}, {"Note", 1}}, {{"Version", 41}}, "USBC"),
              (MatchRecord{{"Version", 41}, {"Note", 1}, {"Personality Type", "USBC"}}))
        << name;
  }
}

TEST(MatchRecord, AVersionThatIsNotANumberIsRemovedWhenTheControllerHasNone) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(RecordOf({{"Version", version}}, {}, "USBC"),
              (MatchRecord{{"Personality Type", "USBC"}}))
        << name;
  }
}

TEST(MatchRecord, AnAbsentVersionIsTheControllers) {
  EXPECT_EQ(RecordOf({{"Note", 1}}, {{"Version", 41}}, "USBC"),
            (MatchRecord{{"Note", 1}, {"Version", 41}, {"Personality Type", "USBC"}}));
}

TEST(MatchRecord, WithARidTheAddressIsTheControllers) {
  const HardwareRecord controller = {{"RID", 2}, {"Port Address", 3}};
  EXPECT_EQ(RecordOf({}, controller, "USBC"),
            (MatchRecord{{"RID", 2}, {"Port Address", 3}, {"Personality Type", "USBC"}}));
  EXPECT_EQ(RecordOf({{"Port Address", 9}}, controller, "USBC"),
            (MatchRecord{{"Port Address", 3}, {"RID", 2}, {"Personality Type", "USBC"}}));
}

TEST(MatchRecord, WithARidAndNoAddressOfTheControllerTheFilesAddressIsRemoved) {
  EXPECT_EQ(RecordOf({{"Port Address", 9}}, {{"RID", 2}}, "USBC"),
            (MatchRecord{{"RID", 2}, {"Personality Type", "USBC"}}));
}

TEST(MatchRecord, WithoutARidTheAddressIsTheFiles) {
  const HardwareRecord controller = {{"Port Address", 3}};
  EXPECT_EQ(RecordOf({{"Port Address", List({9})}}, controller, "USBC"),
            (MatchRecord{{"Port Address", List({9})}, {"Personality Type", "USBC"}}));
  EXPECT_EQ(RecordOf({}, controller, "USBC"), (MatchRecord{{"Personality Type", "USBC"}}));
}

TEST(MatchRecord, ARidOfTheFileIsIgnoredAndAllowsNoAddress) {
  EXPECT_EQ(RecordOf({{"RID", List({1, 2})}}, {{"Port Address", 3}}, "USBC"),
            (MatchRecord{{"Personality Type", "USBC"}}));
}

constexpr std::string_view ConstrainedKeys[] = {
    "Port Silicon Vendor ID",
    "Port Silicon Device ID",
    "Port Silicon Revision",
    "Port OTP Revision",
    "Port UUID",
    "Ridge Silicon Vendor ID",
    "Ridge Silicon Device ID",
    "Ridge Silicon Revision",
    "Ridge UID",
};

TEST(MatchRecord, AKeyThatThePersonalityNamesHasTheControllersValue) {
  for (const auto key : ConstrainedKeys) {
    EXPECT_EQ(RecordOf({{key, "x"}, {"Note", 1}}, Without(FullPortRecord, "RID"), "USBC"),
              (MatchRecord{{key, *FullPortRecord.Find(key)},
                           {"Note", 1},
                           {"Version", 41.050000000999994},
                           {"Personality Type", "USBC"}}));
  }
}

TEST(MatchRecord, AKeyThatTheControllerLacksIsRemoved) {
  for (const auto key : ConstrainedKeys) {
    EXPECT_EQ(RecordOf({{key, List({1, 2})}, {"Note", 1}}, {}, "USBC"),
              (MatchRecord{{"Note", 1}, {"Personality Type", "USBC"}}))
        << key;
  }
}

TEST(MatchRecord, TheTypeReplacesTheFilesWhateverItsKind) {
  for (const PropertyValue& type : List({"USBC", 5, Array(), Dictionary()})) {
    EXPECT_EQ(RecordOf({{"Personality Type", type}, {"Note", 1}}, {}, "LegacyUSBC"),
              (MatchRecord{{"Personality Type", "LegacyUSBC"}, {"Note", 1}}));
  }
}

TEST(MatchRecord, AFirmwareModeOfFalseIsAddedForThunderboltOnly) {
  const HardwareRecord controller = {{"Firmware Mode", false}};
  EXPECT_EQ(RecordOf({}, controller, "Thunderbolt"),
            (MatchRecord{{"Personality Type", "Thunderbolt"}, {"Firmware Mode", false}}));
  for (const std::string_view type : {"USBC", "LegacyUSBC", "LegacyThunderbolt"}) {
    EXPECT_EQ(RecordOf({}, controller, type), (MatchRecord{{"Personality Type", type}}));
  }
}

TEST(MatchRecord, AFirmwareModeOfTheFileStaysWhenTheControllerHasNone) {
  EXPECT_EQ(RecordOf({{"Firmware Mode", List({0, 1})}}, {}, "Thunderbolt"),
            (MatchRecord{{"Firmware Mode", List({0, 1})}, {"Personality Type", "Thunderbolt"}}));
}

TEST(MatchRecord, AFirmwareModeOfTheFileStaysUnderTheOtherTypes) {
  EXPECT_EQ(RecordOf({{"Firmware Mode", 1}}, {{"Firmware Mode", false}}, "USBC"),
            (MatchRecord{{"Firmware Mode", 1}, {"Personality Type", "USBC"}}));
}

TEST(MatchRecord, LeavesThePersonalityAsItWas) {
  const Record personality = FullPersonality;
  RecordOf(personality, FullPortRecord, "Thunderbolt");
  EXPECT_EQ(personality, FullPersonality);
}

}  // namespace
}  // namespace fernwick
