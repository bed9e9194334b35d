// Single mistakes of the kinds that people make in payloads, and right payloads that look like
// them.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "lab/lint/board_names.h"
#include "lab/lint/checks.h"
#include "lab/lint/linted.h"
#include "testing/dictionaries.h"
#include "testing/named_rows.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;
using testing::Named;
using testing::With;

const Record Port = {{"Version", 200},
                     {"Port Silicon Vendor ID", 1},
                     {"Port Silicon Device ID", 2},
                     {"Port Silicon Revision", 3},
                     {"Firmware", "a.bin"},
                     {"Priority", 20}};

const Record Ridge = {{"Version", 43.1},
                      {"Ridge Silicon Vendor ID", 4},
                      {"Ridge Silicon Device ID", 5},
                      {"Ridge Silicon Revision", 6},
                      {"Firmware", "ridge.bin"},
                      {"Priority", 20}};

// The changes, and an image of its own for each version.
Record Changed(const Record& base, const Record& change) {
  const auto* version = change.Find("Version");
  if (version == nullptr || change.Find("Firmware") != nullptr) return With(base, change);
  return With(With(base, change), {{"Firmware", testing::Kept(DumpText(*version) + ".bin")}});
}

// A configuration of one type, with a personality for each of the changes.
Dictionary Of(const char* type, const Record& base, const std::vector<Record>& changes) {
  std::vector<PropertyValue> personalities;
  for (const auto& change : changes) personalities.emplace_back(Dict(Changed(base, change)));
  static std::vector<std::vector<PropertyValue>> kept;
  kept.push_back(std::move(personalities));
  return Dict({{type, Array(kept.back())}});
}

Dictionary Usbc(const std::vector<Record>& changes) {
  return Of("USBC", Port, changes);
}

Dictionary LegacyThunderbolt(const std::vector<Record>& changes) {
  return Of("LegacyThunderbolt", Ridge, changes);
}

Dictionary Thunderbolt(const std::vector<Record>& changes) {
  return Of("Thunderbolt", With(Port, Ridge), changes);
}

Dictionary Together(Dictionary a, Dictionary b) {
  Record types(a);
  types.Merge(b);
  return Dict(types);
}

Dictionary LegacyUsbc(const Record& change) {
  return Dict(
      {{"LegacyUSBC",
        Dict(Changed({{"Version", 200}, {"Firmware", "a.bin"}, {"Priority", 20}}, change))}});
}

// The IDs of the findings in the order of the locations, a blank after each.
std::string IdsIn(const PropertyValue& configuration) {
  std::vector<std::string> images;
  for (const std::string image : {"a", "b", "ridge", "100", "150", "160", "41.05", "42", "43.105",
                                  "43.63", "43.75", "200", "200.5", "inf", "true", "1"}) {
    images.push_back(image + ".bin");
  }
  std::string ids;
  const testing::TemporaryDirectory directory;
  for (const auto& row : LintedRows(directory.Path(), configuration, images)) {
    ids.append(row.rule->id).append(" ");
  }
  return ids;
}

struct Row {
  PropertyValue configuration;
  std::string ids;
};

class Mistake : public ::testing::TestWithParam<Named<Row>> {};

TEST_P(Mistake, IsReportedByItsId) {
  EXPECT_EQ(IdsIn(GetParam().row.configuration), GetParam().row.ids);
}

const Named<Row> NeverMatching[] = {
    {"RidOfAnotherUid",
     {LegacyThunderbolt({{{"RID", 0}, {"Ridge UID", 0x1234567890ABCDE1}}}), "rid-not-of-uid "}},
    {"RidOfTheUid", {LegacyThunderbolt({{{"RID", 1}, {"Ridge UID", 0x1234567890ABCDE1}}}), ""}},
    {"RidOfOneUid",
     {LegacyThunderbolt({{{"RID", 1}, {"Ridge UID", List({0x11, 0x12})}}}), "dead-list-element "}},
    {"UidOfOneRid",
     {LegacyThunderbolt({{{"RID", List({1, 2})}, {"Ridge UID", 0x11}}}), "dead-list-element "}},
    {"RidOfAPortWithAnotherUid",
     {Thunderbolt({{{"RID", 0}, {"Ridge UID", 0x11}}}), "doubtful-rid "}},
    {"HundredthsAtAnAddress",
     {Usbc({{{"Port Address", 0x38},
             {"Existing Min Version", 41.05},
             {"Existing Max Version", 41.63}}}),
      "empty-version-window "}},
    {"HundredthsAtZero",
     {Usbc({{{"Port Address", List({0, 0x38})},
             {"Existing Min Version", 41.05},
             {"Existing Max Version", 41.635}}}),
      ""}},
    {"HundredthsOfALegacyPort",
     {LegacyUsbc(
          {{"Port Address", List({0x20, 0x38})}, {"Version", 42}, {"Existing Min Version", 41.05}}),
      "empty-version-window "}},
};

const Named<Row> NeverSettling[] = {
    {"FractionOfAPort",
     {Usbc({{{"Port Address", 0x38}, {"Version", 200.5}}}), "unreportable-version "}},
    {"ThreeDecimals", {LegacyThunderbolt({{{"Version", 43.105}}}), "unreportable-version "}},
    {"HundredthsAbove63", {Thunderbolt({{{"Version", 43.75}}}), "unreportable-version "}},
    {"Infinite",
     {Usbc({{{"Version", std::numeric_limits<double>::infinity()}}}), "unreportable-version "}},
    {"LastHundredth", {Thunderbolt({{{"Version", 43.63}}}), ""}},
    {"WholeReal", {Usbc({{{"Port Address", 0x38}, {"Version", 200.0}}}), ""}},
};

const Named<Row> TwoImages[] = {
    {"OfBothPortTypes",
     {Together(LegacyUsbc({}), Usbc({{{"Port Address", 0x38}}})),
      "two-images-for-one-controller "}},
    {"AtOtherAddresses",
     {Together(LegacyUsbc({{"Port Address", 0x20}}), Usbc({{{"Port Address", 0x38}}})), ""}},
    {"ForOtherVersions",
     {Together(LegacyUsbc({{"Version", 100}}), Usbc({{{"Existing Min Version", 100}}})), ""}},
    {"ForOverlappingVersions",
     {Together(LegacyUsbc({{"Version", 100}}), Usbc({{{"Existing Min Version", 99}}})),
      "two-images-for-one-controller "}},
    {"OfBothThunderboltTypes",
     {Together(Thunderbolt({{}}), LegacyThunderbolt({{}})), "two-images-for-one-controller "}},
    {"ForOtherSilicon",
     {Together(Thunderbolt({{}}), LegacyThunderbolt({{{"Ridge Silicon Revision", 7}}})), ""}},
    {"OfAPortAndItsThunderboltController", {Together(Thunderbolt({{}}), Usbc({{}})), ""}},
};

const Named<Row> ImageOrders[] = {
    {"ListsWithACommonValue",
     {Usbc({{{"RID", List({0, 1})}}, {{"RID", List({1, 2})}, {"Firmware", "ridge.bin"}}}),
      "order-decides-image "}},
    {"ListsOfNames",
     {Thunderbolt({{{"Device Model Name", List({"Slate 13", "Slate 15"})}},
                   {{"Device Model Name", List({"Slate 11", "Slate 15"})}, {"Firmware", "a.bin"}}}),
      "order-decides-image "}},
    {"OneImage", {Usbc({{{"RID", List({0, 1})}}, {{"RID", List({1, 2})}}}), ""}},
    {"NoCommonValue",
     {Usbc({{{"RID", List({0, 1})}}, {{"RID", List({2, 3})}, {"Firmware", "ridge.bin"}}}), ""}},
    {"AllOthersLast",
     {Usbc({{{"RID", List({0, 1})}}, {{"RID", List({0, 1, 2})}, {"Firmware", "ridge.bin"}}}), ""}},
    {"TwoKeys",
     {Usbc({{{"RID", List({0, 1})}, {"Port OTP Revision", 1}},
            {{"RID", List({1, 2})}, {"Firmware", "ridge.bin"}}}),
      ""}},
    {"StepsOfOneUpgrade",
     {Usbc({{{"RID", List({0, 1})}, {"Version", 150}},
            {{"RID", List({1, 2})}, {"Existing Min Version", 150}}}),
      ""}},
    {"StepsWithoutAMinimum",
     {Usbc({{{"RID", List({0, 1})}, {"Version", 150}}, {{"RID", List({1, 2})}}}), ""}},
    {"OtherBoardRevisions",
     {Usbc({{{"RID", List({0, 1})}, {"MaxBoardRevision", 3}},
            {{"RID", List({1, 2})}, {"MinBoardRevision", 4}, {"Firmware", "ridge.bin"}}}),
      ""}},
    {"TwoStepsBeforeIt",
     {Usbc({{{"RID", List({0, 1})}, {"Existing Max Version", 99}, {"Firmware", "ridge.bin"}},
            {{"RID", List({0, 1})}, {"Existing Min Version", 100}, {"Firmware", "ridge.bin"}},
            {{"RID", List({1, 2})}, {"Existing Min Version", 100}}}),
      "order-decides-image "}},
};

Record Setting(const char* name, const PropertyValue& value) {
  return {{"SetNVRAM", Dict({{name, value}})}};
}

Record Clearing(const char* name) {
  return {{"ClearNVRAM", List({name})}};
}

const Named<Row> NvramNames[] = {
    {"PayloadVariable",
     {Usbc({Setting("efi-quince-payload12-data", "x")}), "nvram-payload-variable "}},
    {"PayloadVariableCleared",
     {Usbc({Clearing("efi-quince-payload0-data")}), "nvram-payload-variable "}},
    {"LikeAPayloadVariable", {Usbc({Setting("efi-quince-payloadx-data", "x")}), ""}},
    {"BypassSwitch",
     {Usbc({Setting("fernwick_bypass_usbc_updates", "1")}), "nvram-bypass-switch "}},
    {"BypassSwitchAsData",
     {Usbc({Setting("fernwick_bypassversioncheck", testing::Bytes("1"))}), "nvram-bypass-switch "}},
    {"BypassSwitchOff",
     {Usbc({Setting("fernwick_bypassversioncheck", "0")}), "nvram-idle-bypass-switch "}},
    {"BypassSwitchAsNumber",
     {Usbc({Setting("fernwick_bypassversioncheck", 1)}), "nvram-idle-bypass-switch "}},
    {"BypassSwitchCleared",
     {Usbc({Clearing("fernwick_bypassversioncheck")}), "nvram-idle-bypass-switch "}},
    {"BootArguments", {Usbc({Setting("boot-args", "-v")}), "nvram-boot-args "}},
    {"BootArgumentsCleared", {Usbc({Clearing("boot-args")}), "nvram-boot-args "}},
    {"SwitchInBootArguments",
     {Usbc({Setting("boot-args", "-v fernwick_bypassversioncheck=1")}),
      "nvram-boot-args nvram-bypass-switch "}},
    {"BareSwitchInBootArguments",
     {Usbc({Setting("boot-args", "-v fernwick_bypass_usbc_updates")}),
      "nvram-boot-args nvram-bare-switch "}},
    {"EmptyName", {Usbc({Setting("", "x")}), "nvram-empty-name "}},
    {"EmptyNameCleared", {Usbc({Clearing("")}), "nvram-empty-name "}},
    {"OfNoConcern", {Usbc({Setting("fernwick-staged", "x")}), ""}},
};

const Named<Row> Values[] = {
    {"PropertyBesideItsKey", {Usbc({{{"Device ID", 2}}}), "similar-key "}},
    {"PropertyOfNoKey", {Usbc({{{"Depth", 0}}}), "similar-key "}},
    {"Comment", {Usbc({{{"Comment", "left"}}}), "unread-key "}},
    {"LowerCaseUuid",
     {Usbc({{{"Port UUID", List({"5f1c9a04-7c15-4e0c-9c2f-0a6e3d0b7a00"})}}}), "doubtful-uuid "}},
    {"BracedUuid",
     {Usbc({{{"Port UUID", List({"{5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00}"})}}}), "doubtful-uuid "}},
    {"UuidWithoutHyphens",
     {Usbc({{{"Port UUID", List({"5F1C9A047C154E0C9C2F0A6E3D0B7A00"})}}}), "doubtful-uuid "}},
    {"UuidWithABlank",
     {Usbc({{{"Port UUID", List({"5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00 "})}}}), "doubtful-uuid "}},
    {"RealUid", {LegacyThunderbolt({{{"Ridge UID", 1.5e18}}}), "real-uid "}},
    {"ModelWithABlank",
     {Thunderbolt({{{"Device Model Name", " Slate 13"}}}), "doubtful-model-name "}},
    {"EmptyModel",
     {Thunderbolt({{{"Device Model Name", List({"Slate 13", ""})}}}), "doubtful-model-name "}},
    {"BooleanVersion", {Usbc({{{"Version", true}}}), "boolean-for-number "}},
    {"BooleanInAList", {Usbc({{{"RID", List({0, true})}}}), "boolean-for-number "}},
    {"BooleanFirmwareMode", {Thunderbolt({{{"Firmware Mode", List({false, true})}}}), ""}},
    {"RepeatedNumber", {Usbc({{{"RID", List({1, 2, 1.0})}}}), "repeated-element "}},
    {"RepeatedVariable", {Usbc({{{"ClearNVRAM", List({"a", "b", "a"})}}}), "repeated-element "}},
};

const Named<Row> Gaps[] = {
    {"BetweenSteps", {Usbc({{{"Existing Min Version", 160}}, {{"Version", 150}}}), "version-gap "}},
    {"NoneBetweenSteps", {Usbc({{{"Existing Min Version", 150}}, {{"Version", 150}}}), ""}},
    {"NoneBetweenWholeNumbers",
     {Usbc({{{"Existing Max Version", 99}}, {{"Existing Min Version", 100}}}), ""}},
    {"BetweenHundredths",
     {LegacyThunderbolt({{{"Version", 41.05}}, {{"Existing Min Version", 41.07}}}),
      "version-gap "}},
    {"NoneBetweenHundredths",
     {LegacyThunderbolt({{{"Version", 41.05}}, {{"Existing Min Version", 41.05}}}), ""}},
    {"NoneForOtherControllers",
     {Usbc({{{"Existing Min Version", 160}, {"RID", 1}}, {{"Version", 150}, {"RID", 2}}}), ""}},
    {"OnOneBoardRevisionOnly",
     {Usbc({{{"Existing Min Version", 160}},
            {{"Version", 150}, {"MaxBoardRevision", 3}},
            {{"Version", 160}, {"MinBoardRevision", 4}}}),
      "version-gap "}},
    {"BetweenBoardRevisions",
     {Usbc({{{"MaxBoardRevision", 3}}, {{"MinBoardRevision", 5}}}), "board-revision-gap "}},
    {"FilledByAnother",
     {Usbc({{{"MaxBoardRevision", 3}},
            {{"MinBoardRevision", 5}},
            {{"MinBoardRevision", 2}, {"MaxBoardRevision", 4}}}),
      ""}},
};

Record Staging(const char* value, const Record& change) {
  return With(change, Setting("fernwick-staged", value));
}

const Named<Row> NvramOfSeveral[] = {
    {"StepsOfOneUpgrade",
     {Usbc({Staging("2", {{"Existing Min Version", 150}}), Staging("1", {{"Version", 150}})}), ""}},
    {"OtherModels",
     {Thunderbolt({Staging("a", {{"Device Model Name", "Slate 13"}}),
                   Staging("b", {{"Device Model Name", "Slate 15"}})}),
      ""}},
    {"OneModel",
     {Thunderbolt({Staging("a", {{"Device Model Name", "Slate 13"}, {"RID", 0}}),
                   Staging("b", {{"Device Model Name", "Slate 13"}, {"RID", 1}})}),
      "nvram-conflict "}},
};

using testing::RowName;
INSTANTIATE_TEST_SUITE_P(Matching, Mistake, ::testing::ValuesIn(NeverMatching), RowName);
INSTANTIATE_TEST_SUITE_P(Settling, Mistake, ::testing::ValuesIn(NeverSettling), RowName);
INSTANTIATE_TEST_SUITE_P(TwoImages, Mistake, ::testing::ValuesIn(TwoImages), RowName);
INSTANTIATE_TEST_SUITE_P(ImageOrder, Mistake, ::testing::ValuesIn(ImageOrders), RowName);
INSTANTIATE_TEST_SUITE_P(NvramName, Mistake, ::testing::ValuesIn(NvramNames), RowName);
INSTANTIATE_TEST_SUITE_P(Value, Mistake, ::testing::ValuesIn(Values), RowName);
INSTANTIATE_TEST_SUITE_P(Gap, Mistake, ::testing::ValuesIn(Gaps), RowName);
INSTANTIATE_TEST_SUITE_P(Nvram, Mistake, ::testing::ValuesIn(NvramOfSeveral), RowName);

TEST(SimilarKey, IsTheOneThatIsMeant) {
  const std::pair<const char*, const char*> rows[] = {
      {"OTP Revision", "Port OTP Revision"},
      {"UUID", "Port UUID"},
      {"UID", "Ridge UID"},
      {"Address", "Port Address"},
      {"Existing Minimum Version", "Existing Min Version"},
      {"Min Existing Version", "Existing Min Version"},
      {"Max Version", "Existing Max Version"},
      {"MaxBoardRev", "MaxBoardRevision"},
      {"Model Name", "Device Model Name"},
      {"Revision", "Port OTP Revision"},
      {"Vendor ID", "Port Silicon Vendor ID"},
  };
  for (const auto& [key, meant] : rows) EXPECT_EQ(SimilarKey(key, Types::Thunderbolt), meant);
  EXPECT_EQ(SimilarKey("Vendor ID", Types::LegacyThunderbolt), "Ridge Silicon Vendor ID");
  EXPECT_EQ(SimilarKey("UID", Types::LegacyUsbc), "Ridge UID");
}

TEST(IsRegistryProperty, IsTrueOfWhatTheToolReadsOfControllers) {
  for (const auto* key : {"Vendor ID", "Device ID", "Revision ID", "UUID", "UID", "Depth",
                          "Route String", "ROM Version", "EEPROM Revision"}) {
    EXPECT_TRUE(IsRegistryProperty(key)) << key;
  }
  for (const auto* key : {"", "Comment", "Port UUID", "board-id"}) {
    EXPECT_FALSE(IsRegistryProperty(key)) << key;
  }
}

TEST(SimilarKey, IsNoneForAComment) {
  for (const auto* key : {"Comment", "Author", "Name", "Notes", "Description", "Revision History",
                          "Release Date", "Image Version", "", "-"}) {
    EXPECT_EQ(SimilarKey(key, Types::Thunderbolt), "") << key;
  }
}

const BoardNames Boards({"Zed-1A05", "Zed-1A06"});

TEST(BoardNames, SuggestTheNameThatIsMeant) {
  const std::pair<std::string, std::string> rows[] = {
      {"Zed-1AO7", "Zed-1A07"},     {"zed-1A07", "Zed-1A07"},      {"Zed-1a07", "Zed-1A07"},
      {"1A07", "Zed-1A07"},         {"Zed-Zed-1A07", "Zed-1A07"},  {"Zed-1A07 ", "Zed-1A07"},
      {" Zed-1A07", "Zed-1A07"},    {"Zed-1A07 copy", "Zed-1A07"}, {"Copy of Zed-1A07", "Zed-1A07"},
      {"Zed-1A07.bak", "Zed-1A07"}, {"Zed-01A07", "Zed-1A07"},     {"Zed_1A07", "Zed-1A07"},
      {"Zed1A07", "Zed-1A07"},      {"Zed-1A07~", "Zed-1A07"},     {"Zed-1A07 (2)", "Zed-1A07"},
  };
  for (const auto& [name, meant] : rows) {
    const auto problem = Boards.Problem(name);
    ASSERT_TRUE(problem) << name;
    EXPECT_NE(problem->find("; \"" + meant + "\" may be meant"), std::string::npos) << *problem;
  }
  EXPECT_NE(Boards.Problem("Zed-1A05 copy")->find("\"Zed-1A05\" is there as well"),
            std::string::npos);
}

TEST(BoardNames, SuggestNothingForAnotherName) {
  for (const std::string name : {"old", "Zed-", "2024 builds"}) {
    EXPECT_EQ(Boards.Problem(name),
              "a board identifier is \"Zed-\" and upper-case hexadecimal digits");
  }
}

TEST(BoardNames, HaveNoProblemWithIdentifiers) {
  for (const std::string name : {"Zed-1A05", "Zed-0", "Zed-0A05", "Zed-0123456789ABCDEF"}) {
    EXPECT_EQ(Boards.Problem(name), std::nullopt) << name;
  }
}

TEST(BoardNames, FindTheBoardThatDiffersInZerosOnly) {
  const BoardNames boards({"Zed-00A05", "Zed-0A05", "Zed-1A05", "Zed-A05", "Zed-a05"});
  EXPECT_EQ(boards.SameBefore("Zed-A05"), "Zed-0A05");
  for (const std::string name : {"Zed-0A05", "Zed-1A05"}) {
    EXPECT_EQ(boards.SameBefore(name), "") << name;
  }
}

TEST(IsNoBoard, IsVersionControlOrAUtility) {
  for (const auto* name : {".git", ".svn", "CVS", "PortFlash.efi"}) EXPECT_TRUE(IsNoBoard(name));
  for (const auto* name : {"Zed-42", "old", ".Zed-42"}) EXPECT_FALSE(IsNoBoard(name));
}

}  // namespace
}  // namespace fernwick::lab
