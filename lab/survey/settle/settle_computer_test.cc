// The results for single computers: the simulation, the causes and the texts together.

#include "lab/survey/settle/settle_computer.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "lab/support/tool_run.h"
#include "lab/survey/settle/stuck.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/unprivileged.h"
#include "value/binary/writer.h"

namespace fernwick::lab {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::Kept;
using testing::List;

Dictionary Port(std::string_view name, const Record& properties) {
  return Dict(
      {{"Name", Kept(name)}, {"Class", "QuinceHPMDevice"}, {"Properties", Dict(properties)}});
}

Dictionary Ridge(const Record& properties, std::initializer_list<PropertyValue> children = {}) {
  Record all{{"Depth", 0},     {"Route String", 0}, {"UID", 0x5A3},
             {"Vendor ID", 1}, {"Device ID", 2},    {"Revision ID", 3}};
  all.Merge(properties);
  return Dict({{"Name", "ridge0"},
               {"Class", "IOThunderboltSwitch"},
               {"Properties", Dict(all)},
               {"Children", List(children)}});
}

// What a "LegacyThunderbolt" personality requires of the controller of Ridge().
const Record RidgeSilicon = {
    {"Ridge Silicon Vendor ID", 1}, {"Ridge Silicon Device ID", 2}, {"Ridge Silicon Revision", 3}};

// With the image that every personality needs.
Dictionary Personality(const Record& values) {
  Record all{{"Firmware", "f.bin"}};
  all.Merge(values);
  return Dict(all);
}

class SettledComputer : public ::testing::Test {
 protected:
  void WritePayload(const PropertyValue& configuration) {
    path_ = directory_.Write("payload/Fernwick/Zed-1/Config.plist",
                             WriteXmlPropertyList(configuration));
  }

  void WriteComputer(std::initializer_list<PropertyValue> services) {
    const auto tree =
        Dict({{"Properties", Dict({{"board-id", Bytes("Zed-1")}, {"board-rev", Bytes("\x03")}})},
              {"Children", List({Dict({{"Name", "other"}})})}});
    WriteRecording(
        Dict({{"IODeviceTree", tree}, {"IOService", Dict({{"Children", List(services)}})}}));
  }

  void WriteRecording(Dictionary planes) {
    recording_ = directory_.Write(
        "c.registry.plist",
        WriteXmlPropertyList(Dict({{"Recording Version", 1}, {"Planes", planes}})));
  }

  // A computer with one port, and a "LegacyUSBC" personality.
  void WritePort(const Record& port, const Record& personality) {
    WriteComputer({Port("hpm0", port)});
    WritePayload(Dict({{"LegacyUSBC", Personality(personality)}}));
  }

  Result<SettleRow, LabError> Settle(const Selected& selected) {
    changes_ = *ParseChanges(arguments_);
    ChangedConfigurations configurations(changes_);
    const auto options = ToolOptions(directory_.Path() + "/payload", bypassVersion_);
    return SettleComputer(selected, {options, changes_, configurations, listsSteps_});
  }

  SettleRow Row() {
    auto row = *Settle({.path = recording_});
    row.file = "c";
    return row;
  }

  std::string Text() { return DescribeRow(Row()); }

  testing::TemporaryDirectory directory_;
  std::string path_;
  std::string recording_;
  WhatIfArguments arguments_;
  Changes changes_;
  bool bypassVersion_ = false;
  bool listsSteps_ = false;
};

TEST_F(SettledComputer, HasTheVersionsThatItsPlansInstall) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}});
  EXPECT_EQ(Text(),
            "c: settled after 1 run\n"
            "  IOService:/hpm0: 171 -> 180\n");
}

TEST_F(SettledComputer, MayNeedNoPlan) {
  WritePort({{"Version", 0x180}}, {{"Version", 180}});
  EXPECT_EQ(Text(), "c: settled after 0 runs\n");
}

// As other verbs name them.
TEST_F(SettledComputer, NamesControllersInThePlaneOfTheServices) {
  Record port(Port("hpm0", {{"Version", 0x171}}));
  port.Set("ID", "p");
  const auto tree = Dict(
      {{"Properties", Dict({{"board-id", Bytes("Zed-1")}})}, {"Children", List({Dict(port)})}});
  const auto services = Dict({{"Children", List({Dict({{"Link", "p"}})})}});
  WriteRecording(Dict({{"IODeviceTree", tree}, {"IOService", services}}));
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 180.5}})}}));
  listsSteps_ = true;
  EXPECT_EQ(Text(),
            "c: never settles: the state after 1 run comes back after 2 runs\n"
            "  run 1\n"
            "    LegacyUSBC personality 1 for IOService:/hpm0: 171 -> 180\n"
            "  run 2\n"
            "    LegacyUSBC personality 1 for IOService:/hpm0: 180 -> 180\n"
            "  IOService:/hpm0: 171 -> 180\n"
            "  IOService:/hpm0: LegacyUSBC personality 1 offers 180.5, of which 180 is stored\n");
}

TEST_F(SettledComputer, IsARowOfJson) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}});
  EXPECT_EQ(
      PrintJsonRow(ToJson(Row())),
      R"({"file":"c","outcome":"settled","status":13,"reason":null,"board":"Zed-1",)"
      R"("revision":3,"runs":1,"comesBack":null,"endedBy":null,)"
      R"("uncheckedBy":null,"controllers":[{"entry":"IOService:/hpm0",)"
      R"("kind":"port","before":171,"after":180,"older":false}],"causes":[],"stuck":[],"steps":null,"changes":[]})"
      "\n");
}

TEST_F(SettledComputer, MayNeedSeveralPlans) {
  WriteComputer({Ridge({{"ROM Version", 0x23}, {"EEPROM Revision", 0xC2}})});
  const auto step = [](double version, const Record& more) {
    Record values = RidgeSilicon;
    values.Set("Version", version);
    values.Merge(more);
    return PropertyValue(Personality(values));
  };
  WritePayload(Dict(
      {{"LegacyThunderbolt", List({step(41.63, {{"Existing Min Version", 40}}), step(40, {})})}}));
  listsSteps_ = true;
  EXPECT_EQ(Text(),
            "c: settled after 2 runs\n"
            "  run 1\n"
            "    LegacyThunderbolt personality 2 for IOService:/ridge0: 23.020000001 -> "
            "40.000000001\n"
            "  run 2\n"
            "    LegacyThunderbolt personality 1 for IOService:/ridge0: 40.000000001 -> "
            "41.630000001\n"
            "  IOService:/ridge0: 23.020000001 -> 41.630000001\n");
}

TEST_F(SettledComputer, HasTheVersionOfTheLastOfSeveralMatches) {
  WriteComputer(
      {Port("hpm0", {{"Version", 0x171}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 180}})},
                     {"USBC", List({Personality({{"Version", 172},
                                                 {"Port Silicon Vendor ID", 1},
                                                 {"Port Silicon Device ID", 2},
                                                 {"Port Silicon Revision", 3}})})}}));
  listsSteps_ = true;
  EXPECT_EQ(Text(),
            "c: settled after 2 runs\n"
            "  run 1\n"
            "    LegacyUSBC personality 1 for IOService:/hpm0: 171 -> 180\n"
            "    USBC personality 1 for IOService:/hpm0: 180 -> 172, older\n"
            "  run 2\n"
            "    LegacyUSBC personality 1 for IOService:/hpm0: 172 -> 180\n"
            "  IOService:/hpm0: 171 -> 180\n");
}

TEST_F(SettledComputer, HasItsNvramChanged) {
  const auto arguments = std::string(300, 'x');
  WritePort(
      {{"Version", 0x171}},
      {{"Version", 180},
       {"SetNVRAM", Dict({{"a", "1"}, {"b", Bytes("2")}, {"long", Kept(arguments)}, {"c", 1}})},
       {"ClearNVRAM", List({"c", "absent", 5})}});
  listsSteps_ = true;
  EXPECT_EQ(Text(),
            "c: settled after 1 run\n"
            "  run 1\n"
            "    LegacyUSBC personality 1 for IOService:/hpm0: 171 -> 180\n"
            "    set NVRAM a to \"1\"\n"
            "    set NVRAM b to <32>\n"
            "    set NVRAM long to \"" +
                std::string(199, 'x') +
                "...\n"
                "  IOService:/hpm0: 171 -> 180\n");
}

TEST_F(SettledComputer, HasALongVariableCutBetweenCharacters) {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "\u00E9";
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"SetNVRAM", Dict({{"a", Kept(text)}})}});
  listsSteps_ = true;
  EXPECT_NE(Text().find("set NVRAM a to \"" + text.substr(0, 198) + "...\n"), std::string::npos);
}

TEST_F(SettledComputer, HasVariablesClearedThatAPlanSetBefore) {
  const auto tree = Dict(
      {{"Properties", Dict({{"board-id", Bytes("Zed-1")}})},
       {"Children", List({Dict({{"Name", "options"},
                                {"Properties", Dict({{"a", "1"}, {"b", "2"}, {"c", "3"}})}})})}});
  WriteRecording(
      Dict({{"IODeviceTree", tree},
            {"IOService", Dict({{"Children", List({Port("hpm0", {{"Version", 1}})})}})}}));
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 2},
                                                 {"SetNVRAM", Dict({{"c", "3"}, {"d", "4"}})},
                                                 {"ClearNVRAM", List({"a", "e"})}})}}));
  listsSteps_ = true;
  const auto row = Row();
  ASSERT_EQ(row.steps->size(), 1u);
  EXPECT_EQ(ToJson(row)["steps"][0]["nvram"].dump(),
            R"([{"name":"a","before":"\"1\"","after":null},)"
            R"({"name":"d","before":null,"after":"\"4\""}])");
  EXPECT_NE(DescribeRow(row).find("    clear NVRAM a\n"), std::string::npos);
}

TEST_F(SettledComputer, ListsTheFirstHundredVariables) {
  Record variables;
  for (int i = 0; i < 102; ++i) variables.Set(Kept("v" + std::to_string(100 + i)), "1");
  WritePort({{"Version", 1}}, {{"Version", 2}, {"SetNVRAM", Dict(variables)}});
  listsSteps_ = true;
  const auto text = Text();
  EXPECT_NE(text.find("    set NVRAM v199 to \"1\"\n    2 more variables change\n"),
            std::string::npos);
  variables.SetOrRemove("v100", nullptr);
  WritePort({{"Version", 1}}, {{"Version", 2}, {"SetNVRAM", Dict(variables)}});
  EXPECT_NE(Text().find("    1 more variable changes\n"), std::string::npos);
}

TEST_F(SettledComputer, NeverSettlesWhereAPortCannotStoreTheVersion) {
  WritePort({{"Version", 0x171}}, {{"Version", 171.5}});
  EXPECT_EQ(Text(),
            "c: never settles: the recorded state comes back after 1 run\n"
            "  IOService:/hpm0: LegacyUSBC personality 1 offers 171.5, of which 171 is stored\n");
}

TEST_F(SettledComputer, NeverSettlesWhereAThunderboltControllerCannot) {
  WriteComputer({Ridge({{"ROM Version", 0x23}})});
  Record values = RidgeSilicon;
  values.Set("Version", 41.64);
  WritePayload(Dict({{"LegacyThunderbolt", List({Personality(values)})}}));
  EXPECT_EQ(Text(),
            "c: never settles: the state after 1 run comes back after 2 runs\n"
            "  IOService:/ridge0: 23.000000001 -> 41.630000001\n"
            "  IOService:/ridge0: LegacyThunderbolt personality 1 offers 41.64, of which "
            "41.630000001 is stored\n");
}

TEST_F(SettledComputer, NeverSettlesWhereThePortIsNotComparedWithItsOwnVersion) {
  WriteComputer({Ridge({{"ROM Version", 0x41}}, {Port("hpm0", {})})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 180}})}}));
  const auto row = Row();
  EXPECT_EQ(DescribeRow(row),
            "c: never settles: the state after 1 run comes back after 2 runs\n"
            "  IOService:/ridge0/hpm0: unknown -> 180\n"
            "  IOService:/ridge0/hpm0: LegacyUSBC personality 1 offers 180, which is compared with "
            "the version of the Thunderbolt controller above the port\n");
  EXPECT_EQ(ToJson(row)["causes"].dump(),
            R"([{"cause":"compares version above","match":{"type":"LegacyUSBC","personality":1,)"
            R"("controller":"IOService:/ridge0/hpm0","changes":"IOService:/ridge0/hpm0",)"
            R"("offered":180,"before":180,"after":180,"older":false},"other":null}])");
  EXPECT_EQ(ToJson(row)["comesBack"], 1);
}

TEST_F(SettledComputer, SettlesWherePersonalitiesOfThePortChangeTheControllerAbove) {
  WriteComputer({Ridge({{"ROM Version", 0x41}},
                       {Port("hpm0", {{"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})})});
  Record values = RidgeSilicon;
  values.Merge(Record{{"Version", 42.5},
                      {"Port Silicon Vendor ID", 1},
                      {"Port Silicon Device ID", 2},
                      {"Port Silicon Revision", 3}});
  WritePayload(Dict({{"Thunderbolt", List({Personality(values)})}}));
  listsSteps_ = true;
  EXPECT_EQ(Text(),
            "c: settled after 1 run\n"
            "  run 1\n"
            "    Thunderbolt personality 1 for IOService:/ridge0/hpm0: version of "
            "IOService:/ridge0 41.000000001 -> 42.500000001\n"
            "  IOService:/ridge0: 41.000000001 -> 42.500000001\n");
}

TEST_F(SettledComputer, NeverSettlesWhereTwoPersonalitiesUndoEachOther) {
  WriteComputer(
      {Port("hpm0", {{"Version", 0x171}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 180}})},
                     {"USBC", List({Personality({{"Version", 171.5},
                                                 {"Port Silicon Vendor ID", 1},
                                                 {"Port Silicon Device ID", 2},
                                                 {"Port Silicon Revision", 3}})})}}));
  const auto row = Row();
  EXPECT_EQ(DescribeRow(row),
            "c: never settles: the recorded state comes back after 1 run\n"
            "  IOService:/hpm0: LegacyUSBC personality 1 sets 180 and USBC personality 1 sets "
            "171\n");
  EXPECT_EQ(ToJson(row)["causes"][0]["other"]["type"], "USBC");
}

TEST_F(SettledComputer, NeverSettlesWhileTheVersionCheckIsBypassed) {
  WriteComputer({Port("hpm0", {{"Version", 0x171}}), Port("hpm1", {})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 170}})}}));
  bypassVersion_ = true;
  EXPECT_EQ(Text(),
            "c: never settles: the state after 1 run comes back after 2 runs\n"
            "  IOService:/hpm0: 171 -> 170, older\n"
            "  IOService:/hpm1: unknown -> 170\n"
            "  IOService:/hpm0: LegacyUSBC personality 1 matches whatever is installed, since the "
            "version check is bypassed\n"
            "  IOService:/hpm1: LegacyUSBC personality 1 matches whatever is installed, since the "
            "version check is bypassed\n");
}

TEST_F(SettledComputer, KeepsAVersionThatNothingStorableReplaces) {
  bypassVersion_ = true;
  WritePort({{"Version", 0x171}}, {{"Version", -1}});
  EXPECT_EQ(Text(),
            "c: never settles: the recorded state comes back after 1 run\n"
            "  IOService:/hpm0: LegacyUSBC personality 1 matches whatever is installed, since the "
            "version check is bypassed\n");
  WritePort({{"Version", 0x171}}, {{"Version", "text"}});
  EXPECT_NE(Text().find("recorded state comes back after 1 run"), std::string::npos);
  WriteComputer({Ridge({{"ROM Version", 0x41}})});
  Record values = RidgeSilicon;
  values.Set("Version", -1);
  WritePayload(Dict({{"LegacyThunderbolt", List({Personality(values)})}}));
  EXPECT_NE(Text().find("recorded state comes back after 1 run"), std::string::npos);
}

// Under the bypass the versions of three ports go round in cycles of 7, 11 and 13 steps.
TEST_F(SettledComputer, IsUndecidedAfterAThousandPlans) {
  std::vector<PropertyValue> personalities;
  const int lengths[] = {7, 11, 13};
  for (int rid = 0; rid < 3; ++rid) {
    for (int i = 0; i < lengths[rid]; ++i) {
      personalities.emplace_back(Personality({{"Version", (i + 1) % lengths[rid]},
                                              {"Existing Min Version", i},
                                              {"Existing Max Version", i},
                                              {"RID", rid},
                                              {"Port Silicon Vendor ID", 1},
                                              {"Port Silicon Device ID", 1},
                                              {"Port Silicon Revision", 1}}));
    }
  }
  const auto port = [](const char* name, int rid) {
    return Port(
        name,
        {{"RID", rid}, {"Version", 0}, {"Vendor ID", 1}, {"Device ID", 1}, {"Revision ID", 1}});
  };
  WriteComputer({port("hpm0", 0), port("hpm1", 1), port("hpm2", 2)});
  WritePayload(Dict({{"USBC", List(personalities)}}));
  bypassVersion_ = true;
  EXPECT_EQ(Text(),
            "c: undecided: not settled after 1000 runs\n"
            "  IOService:/hpm0: 0 -> 6\n"
            "  IOService:/hpm1: 0 -> 10\n"
            "  IOService:/hpm2: 0 -> 12\n");
}

TEST_F(SettledComputer, IsUndecidedAfterManyTestedPairs) {
  std::vector<PropertyValue> personalities;
  for (int i = 0; i < 6; ++i) {
    Record values = RidgeSilicon;
    values.Merge(Record{{"Version", i + 2}, {"Existing Max Version", i + 1.5}});
    personalities.emplace_back(Personality(values));
  }
  bypassVersion_ = true;
  personalities.resize(MaxUncheckedPairs / 3, Dict(Record()));
  WriteComputer({Ridge({{"ROM Version", 1}})});
  WritePayload(Dict({{"LegacyThunderbolt", List(personalities)}}));
  EXPECT_EQ(Text(),
            "c: undecided: not settled after 4 runs\n"
            "  IOService:/ridge0: 1.000000001 -> 5.000000001\n");
}

TEST_F(SettledComputer, IsBypassedByAVariableThatAPlanSets) {
  WritePort({{"Version", 0x171}},
            {{"Version", 180}, {"SetNVRAM", Dict({{"fernwick_bypass_usbc_updates", "1"}})}});
  EXPECT_EQ(Text(),
            "c: bypassed after 1 run: the plan of run 1 set fernwick_bypass_usbc_updates\n"
            "  IOService:/hpm0: 171 -> 180\n");
  const auto both = Dict({{"fernwick_bypass_usbc_updates", "1"},
                          {"fernwick_bypassversioncheck", "0"},
                          {"boot-args", "fernwick_bypass_usbc_updates=1"}});
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"SetNVRAM", both}});
  EXPECT_EQ(ToJson(Row())["endedBy"].dump(),
            R"({"run":1,"variables":["boot-args","fernwick_bypass_usbc_updates"]})");
  EXPECT_NE(Text().find("set boot-args and fernwick_bypass_usbc_updates\n"), std::string::npos);
}

TEST_F(SettledComputer, HasTheVersionCheckBypassedByAPlan) {
  const Record silicon = {
      {"Port Silicon Vendor ID", 1}, {"Port Silicon Device ID", 2}, {"Port Silicon Revision", 3}};
  const auto usbc = [&](int version, const Record& more) {
    Record values = silicon;
    values.Set("Version", version);
    values.Merge(more);
    return PropertyValue(Personality(values));
  };
  WriteComputer(
      {Port("hpm0", {{"Version", 0x30}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  WritePayload(Dict(
      {{"USBC", List({usbc(40, {{"SetNVRAM", Dict({{"fernwick_bypassversioncheck", "1"}})}})})}}));
  const auto row = Row();
  EXPECT_EQ(
      DescribeRow(row),
      "c: never settles: the state after 1 run comes back after 2 runs\n"
      "  IOService:/hpm0: 30 -> 40\n"
      "  IOService:/hpm0: USBC personality 1 matches whatever is installed, since the version "
      "check is bypassed: the plan of run 1 set fernwick_bypassversioncheck\n");
  EXPECT_EQ(ToJson(row)["uncheckedBy"].dump(),
            R"({"run":1,"variables":["fernwick_bypassversioncheck"]})");
  const auto toggle = [&](const char* value) {
    return Record{{"SetNVRAM", Dict({{"fernwick_bypassversioncheck", value}})}};
  };
  auto on = toggle("1");
  on.Set("Existing Max Version", 39);
  auto off = toggle("0");
  WritePayload(Dict({{"USBC", List({usbc(40, on), usbc(39, off)})}}));
  const auto text = Text();
  EXPECT_TRUE(
      text.starts_with("c: never settles: the state after 1 run comes back after 3 runs\n"));
  EXPECT_NE(text.find("the plan of run 1 set fernwick_bypassversioncheck\n"), std::string::npos)
      << text;
}

TEST_F(SettledComputer, HasABypassedCheckAsTheFirstCause) {
  WriteComputer({Ridge({{"ROM Version", 0x43}}, {Port("hpm0", {{"Version", 0x30}})})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 40}})}}));
  bypassVersion_ = true;
  EXPECT_EQ(ToJson(Row())["causes"][0]["cause"], "version unchecked");
}

TEST_F(SettledComputer, MayGetAnOlderVersion) {
  WriteComputer({Ridge({{"ROM Version", 0x43}}, {Port("hpm0", {{"Version", 0x60}})})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 44}})}}));
  listsSteps_ = true;
  const auto row = Row();
  EXPECT_NE(DescribeRow(row).find("for IOService:/ridge0/hpm0: 60 -> 44, older\n"),
            std::string::npos);
  EXPECT_NE(DescribeRow(row).find("  IOService:/ridge0/hpm0: 60 -> 44, older\n"),
            std::string::npos);
  EXPECT_EQ(ToJson(row)["steps"][0]["matches"][0]["older"], true);
  EXPECT_EQ(ToJson(row)["controllers"][0]["older"], true);
}

TEST_F(SettledComputer, SettlesInManySteps) {
  std::vector<PropertyValue> personalities;
  for (int i = 1; i <= 450; ++i) {
    personalities.emplace_back(Personality({{"Version", i},
                                            {"Existing Max Version", i - 1},
                                            {"Port Silicon Vendor ID", 1},
                                            {"Port Silicon Device ID", 2},
                                            {"Port Silicon Revision", 3}}));
  }
  WriteComputer(
      {Port("hpm0", {{"Version", 0}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  WritePayload(Dict({{"USBC", List(personalities)}}));
  EXPECT_EQ(Text(),
            "c: settled after 450 runs\n"
            "  IOService:/hpm0: 0 -> 450\n");
}

TEST_F(SettledComputer, HasNoPlanForSeveralReasons) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"Firmware", 1}});
  EXPECT_EQ(Text(), "c: no plan after 0 runs: a match names no image\n");
  WritePayload(List({}));
  EXPECT_EQ(Text(), "c: no plan after 0 runs: the top of the configuration is not a dictionary\n");
  directory_.Write("payload/Fernwick/Zed-1/Config.plist", "<dict>");
  EXPECT_TRUE(Text().starts_with("c: no plan after 0 runs: line 1, column 7: "));
  std::filesystem::remove(path_);
  EXPECT_EQ(Text(), "c: no plan after 0 runs: there is no configuration for the board\n");
}

TEST_F(SettledComputer, MayEndAbnormally) {
  WritePort({{"Version", 0x171}},
            {{"Version", 180}, {"SetNVRAM", Dict({{"boot-args", "fernwick_bypassversioncheck"}})}});
  const auto row = Row();
  EXPECT_EQ(DescribeRow(row),
            "c: abnormal end after 1 run: SIGABRT: the plan of run 1 set boot-args\n"
            "  IOService:/hpm0: 171 -> 180\n");
  EXPECT_EQ(ToJson(row)["status"], nullptr);
}

TEST_F(SettledComputer, IsRefusedWhereItCannotBeReadOrChanged) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}});
  auto row = *Settle({.path = "c", .error = "Too many links"});
  EXPECT_EQ(DescribeRow(row), "c: refused: Too many links\n");
  EXPECT_EQ(row.status, LabStatus::UnreadableInput);
  row = *Settle({.path = directory_.Path() + "/none"});
  EXPECT_EQ(row.reason, "No such file or directory");
  arguments_.properties = {"hpm9:Version=1"};
  EXPECT_EQ(Text(), "c: refused: --set: there is no entry hpm9\n");
  arguments_ = {.properties = {}, .personalities = {"USBC:1:Version=1"}};
  EXPECT_TRUE(Text().starts_with("c: settled after 1 run\n"));
}

TEST_F(SettledComputer, IsAnErrorWhereThePayloadMayNotBeRead) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}});
  namespace fs = std::filesystem;
  fs::permissions(directory_.Path(), fs::perms(0755));
  fs::permissions(path_, fs::perms::none);
  const testing::Unprivileged unprivileged;
  const auto settled = Settle({.path = recording_});
  ASSERT_FALSE(settled);
  EXPECT_EQ(settled.Error().error.message, path_ + ": Permission denied");
  EXPECT_EQ(settled.Error().status, LabStatus::UnreadableInput);
}

TEST_F(SettledComputer, IsChangedFirst) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"Existing Max Version", 100}});
  arguments_ = {.properties = {"hpm0:Version=0x90"}, .personalities = {"LegacyUSBC:1:Version=99"}};
  EXPECT_EQ(Text(),
            "c: settled after 1 run\n"
            "  IOService:/hpm0: 90 -> 99\n");
}

TEST_F(SettledComputer, IsStuckBelowAVersionOfThePayload) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"Existing Min Version", 175}});
  const auto row = Row();
  EXPECT_EQ(DescribeRow(row),
            "c: stuck after 0 runs\n"
            "  IOService:/hpm0 stays at 171: LegacyUSBC personality 1 offers 180, but\n"
            "    Existing Min Version 175 at 11:3 is above the installed 171\n");
  EXPECT_EQ(ToJson(row)["stuck"].dump(),
            R"([{"controller":"IOService:/hpm0","type":"LegacyUSBC","personality":1,"offered":180,)"
            R"("installed":171,"failures":[{"key":"Existing Min Version",)"
            R"("reason":"aboveInstalled","text":"175 at 11:3 is above the installed 171",)"
            R"("location":{"line":11,"column":3},"wanted":175,"found":171}]}])");
}

TEST_F(SettledComputer, IsStuckByAChangedRequirementOrOneWithoutALocation) {
  WritePort({{"Version", 0x171}, {"Vendor ID", 1}, {"Device ID", 1}, {"Revision ID", 1}},
            {{"Version", 180}});
  arguments_.personalities = {"LegacyUSBC:1:Existing Max Version=100"};
  auto row = Row();
  EXPECT_NE(DescribeRow(row).find("Existing Max Version 100 by --personality is below"),
            std::string::npos);
  EXPECT_EQ(ToJson(row)["stuck"][0]["failures"][0]["location"].dump(),
            R"({"option":"--personality"})");
  arguments_ = {};
  WriteComputer({Ridge({{"ROM Version", 0x41}, {"EEPROM Revision", 0x40}}, {Port("hpm0", {})})});
  row = Row();
  EXPECT_EQ(ToJson(row)["stuck"][0]["failures"][0]["reason"], "engineeringFirmware");
}

TEST_F(SettledComputer, IsStuckByAnInstalledVersionThatIsNotKnown) {
  WritePort({}, {{"Version", 180}});
  EXPECT_EQ(Text(),
            "c: stuck after 0 runs\n"
            "  IOService:/hpm0 stays at unknown: LegacyUSBC personality 1 offers 180, but\n"
            "    Version wants 180 at 9:3, but the controller has none\n");
}

TEST_F(SettledComputer, IsStuckBelowTheNewestAndNearestPersonality) {
  const auto personality = [](int version, int maximum, const Record& more) {
    Record values{{"Version", version},
                  {"Existing Max Version", maximum},
                  {"Port Silicon Vendor ID", 1},
                  {"Port Silicon Device ID", 1},
                  {"Port Silicon Revision", 1}};
    values.Merge(more);
    return PropertyValue(Personality(values));
  };
  WriteComputer(
      {Port("hpm0", {{"Version", 0x171}, {"Vendor ID", 1}, {"Device ID", 1}, {"Revision ID", 1}})});
  WritePayload(Dict(
      {{"USBC", List({personality(180, 100, {}), personality(190, 100, {{"MinBoardRevision", 4}}),
                      personality(190, 100, {}), personality(185, 100, {}),
                      personality(300, 100, {{"RID", 5}}), personality(150, 400, {}), 7,
                      Dict({{"Version", "400"}}), Dict(Record())})}}));
  EXPECT_EQ(Text(),
            "c: stuck after 0 runs\n"
            "  IOService:/hpm0 stays at 171: USBC personality 3 offers 190, but\n"
            "    Existing Max Version 100 at 42:4 is below the installed 171\n");
}

TEST_F(SettledComputer, IsStuckBelowTheNewestOfAllTypes) {
  const auto usbc = [](double version) {
    return List({Personality({{"Version", version},
                              {"Existing Max Version", 1},
                              {"Port Silicon Vendor ID", 1},
                              {"Port Silicon Device ID", 2},
                              {"Port Silicon Revision", 3}})});
  };
  const auto legacy = Personality({{"Version", 190}, {"Existing Max Version", 2}});
  WriteComputer(
      {Port("hpm0", {{"Version", 0x171}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  for (const double version : {180.0, 190.0}) {
    WritePayload(Dict({{"USBC", usbc(version)}, {"LegacyUSBC", legacy}}));
    EXPECT_NE(Text().find(version == 180 ? "LegacyUSBC personality 1 offers 190"
                                         : "USBC personality 1 offers 190"),
              std::string::npos);
    WritePayload(Dict({{"LegacyUSBC", legacy}, {"USBC", usbc(version)}}));
    EXPECT_NE(Text().find("LegacyUSBC personality 1 offers 190"), std::string::npos);
  }
}

// The images of the port and of the Thunderbolt controller have versions of their own.
TEST_F(SettledComputer, IsStuckBelowEachKindOfImage) {
  WriteComputer({Ridge({{"ROM Version", 0x41}},
                       {Port("hpm0", {{"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})})});
  Record values = RidgeSilicon;
  values.Merge(Record{{"Version", 42.5},
                      {"Existing Min Version", 42},
                      {"Port Silicon Vendor ID", 1},
                      {"Port Silicon Device ID", 2},
                      {"Port Silicon Revision", 3}});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 180}, {"Existing Max Version", 40}})},
                     {"Thunderbolt", List({Personality(values)})},
                     {"LegacyThunderbolt", List({Personality(values)})}}));
  const auto row = Row();
  ASSERT_EQ(row.stuck.size(), 3u);
  EXPECT_EQ(row.stuck[0].controller, "IOService:/ridge0");
  EXPECT_EQ(row.stuck[1].type, "LegacyUSBC");
  EXPECT_EQ(row.stuck[2].type, "Thunderbolt");
}

// What decides is the version of the Thunderbolt controller above, but the image is the port's.
TEST_F(SettledComputer, IsStuckWhereAPortIsOlderThanWhatIsOffered) {
  WriteComputer({Ridge({{"ROM Version", 0x43}, {"EEPROM Revision", 10}},
                       {Port("hpm0", {{"Version", 0x30}})})});
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 40}})}}));
  const auto row = Row();
  EXPECT_EQ(DescribeRow(row),
            "c: stuck after 0 runs\n"
            "  IOService:/ridge0/hpm0 stays at 30: LegacyUSBC personality 1 offers 40, but\n"
            "    Version 40 at 9:3 is not newer than the installed 43.100000001\n");
  EXPECT_EQ(ToJson(row)["stuck"][0]["installed"], 30);
  WritePayload(Dict({{"LegacyUSBC", Personality({{"Version", 30}})}}));
  EXPECT_EQ(Text(), "c: settled after 0 runs\n");
}

TEST_F(SettledComputer, IsNotStuckBelowAVersionForOtherBoardRevisions) {
  const auto usbc = [](int version, const Record& more) {
    Record values{{"Version", version},
                  {"Port Silicon Vendor ID", 1},
                  {"Port Silicon Device ID", 2},
                  {"Port Silicon Revision", 3}};
    values.Merge(more);
    return PropertyValue(Personality(values));
  };
  WriteComputer(
      {Port("hpm0", {{"Version", 0x45}, {"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}})});
  const auto newer = usbc(50, {{"MinBoardRevision", 4}});
  WritePayload(Dict({{"USBC", List({newer, usbc(45, {{"MaxBoardRevision", 3}})})}}));
  EXPECT_EQ(Text(), "c: settled after 0 runs\n");
  for (const auto& other : {usbc(45, {{"RID", 9}}), usbc(45, {{"MaxBoardRevision", 2}}),
                            usbc(45, {{"Existing Min Version", "text"}})}) {
    WritePayload(Dict({{"USBC", List({newer, other})}}));
    EXPECT_NE(Text().find("USBC personality 1 offers 50, but\n    MinBoardRevision 4"),
              std::string::npos);
  }
}

TEST_F(SettledComputer, IsNotStuckBelowWhatNothingCanMatch) {
  WritePort({{"Version", 0x171}}, {{"Version", 180}, {"Existing Max Version", "170"}});
  EXPECT_EQ(Text(), "c: settled after 0 runs\n");
  const Record contradiction{
      {"Version", 180}, {"Existing Min Version", 175}, {"Existing Max Version", 174}};
  for (const Record& port : {Record{{"Version", 0x171}}, Record{}}) {
    WritePort(port, contradiction);
    EXPECT_EQ(Text(), "c: settled after 0 runs\n");
  }
}

TEST_F(SettledComputer, IsStuckInABinaryConfiguration) {
  WritePort({{"Version", 0x171}}, {});
  directory_.Write(
      "payload/Fernwick/Zed-1/Config.plist",
      WriteBinaryPropertyList(
          Dict({{"LegacyUSBC", Personality({{"Version", 180}, {"Existing Max Version", 100}})}})));
  EXPECT_TRUE(ToJson(Row())["stuck"][0]["failures"][0]["location"].contains("byte"));
}

}  // namespace
}  // namespace fernwick::lab
