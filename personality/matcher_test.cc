#include "personality/matcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/inputs/odd_values.h"
#include "testing/logging_registry.h"
#include "testing/requirement_diagnostics.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"
#include "value/xml/writer.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::Dict;
using testing::List;
using testing::LoggingRegistry;
using testing::MaximumNotMet;
using testing::MinimumNotMet;
using testing::NonNumbers;
using testing::TemporaryDirectory;
using testing::With;
using testing::Without;

using Calls = std::vector<std::string>;
using Records = std::vector<MatchRecord>;

constexpr char PortInventory[] = "MatchServicesByClass QuinceHPMDevice";
constexpr char ThunderboltInventory[] = "MatchServicesByClass IOThunderboltSwitch";

// What the matcher returned, and all that it and the checks wrote to standard error.
struct Outcome {
  Records matches;
  std::string standardError = {};
  std::optional<Fault> fault = {};
  std::optional<PropertyList> configuration = {};  // which the matches view

  friend bool operator==(const Outcome& a, const Outcome& b) {
    return a.matches == b.matches && a.standardError == b.standardError && a.fault == b.fault;
  }
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << ::testing::PrintToString(outcome.matches) << ", standard error "
       << ::testing::PrintToString(outcome.standardError);
  if (outcome.fault) *out << ", fault: " << Describe(*outcome.fault);
}

Outcome Matched(Records records, std::string standardError = {}) {
  return {std::move(records), std::move(standardError)};
}

Outcome Nothing(std::string standardError = {}) {
  return {{}, std::move(standardError)};
}

constexpr unsigned BoardRevision = 3;

struct Run {
  unsigned boardRevision = BoardRevision;
  bool bypassVersionCheck = false;
};

constexpr Run Bypassed = {.bypassVersionCheck = true};

Outcome MatchIn(Registry& registry, const std::optional<std::string>& boardId,
                const std::optional<std::string>& directory, const Run& run = {}) {
  testing::TestConsole console;
  auto matching = MatchPersonalities({registry, console, run.bypassVersionCheck}, boardId,
                                     run.boardRevision, directory);
  console.Flush();
  EXPECT_EQ(console.Output(), "");
  if (!matching) return {{}, console.Error(), matching.Error()};
  return {std::move(matching->matches), console.Error(), {}, std::move(matching->configuration)};
}

// Matches over a payload whose configuration for the host's board has this content.
Outcome MatchText(Registry& registry, std::string_view configuration, const Run& run = {}) {
  const TemporaryDirectory payload;
  payload.Write("Fernwick/Zed-42/Config.plist", configuration);
  return MatchIn(registry, "Zed-42", payload.Path() + "/Fernwick/", run);
}

Outcome Match(Registry& registry, const PropertyValue& configuration, const Run& run = {}) {
  return MatchText(registry, WriteXmlPropertyList(configuration), run);
}

Outcome Match(const Computer& computer, const PropertyValue& configuration, const Run& run = {}) {
  LoggingRegistry registry(computer.Recorded());
  return Match(registry, configuration, run);
}

Calls InventoriesOf(const Computer& computer, const PropertyValue& configuration) {
  LoggingRegistry registry(computer.Recorded());
  Match(registry, configuration);
  return registry.CallsOf("MatchServicesByClass");
}

// Properties of a port controller whose record begins as PortRecord says.
Record PortProperties(int address, std::string_view uuid) {
  return {{"RID", 2},      {"Vendor ID", 0x4D1}, {"Device ID", 18},  {"Revision ID", 7},
          {"Revision", 1}, {"Address", address}, {"Version", 0x171}, {"UUID", uuid}};
}

// Properties of a Thunderbolt controller of the computer itself, with version 41.05.
const Record ThunderboltProperties = {
    {"Depth", 0},
    {"Route String", 0},
    {"Vendor ID", 0x5A86},
    {"Device ID", 0x1D3},
    {"Revision ID", 4},
    {"UID", 0x5A3},
    {"ROM Version", 0x41},
    {"EEPROM Revision", 5},
    {"Firmware Mode", false},
    {"Device Model ID", 30},
};

Computer OnePort() {
  Computer computer;
  computer.AddPort("Port0", PortProperties(0, "b0A1"));
  return computer;
}

Computer ThreePorts() {
  Computer computer;
  computer.AddPort("Port0", PortProperties(0, "a0"));
  computer.AddPort("Port1", PortProperties(1, "a1"));
  computer.AddPort("Port2", PortProperties(2, "a2"));
  return computer;
}

Computer OneThunderbolt() {
  Computer computer;
  computer.AddThunderbolt("Ridge0", ThunderboltProperties);
  return computer;
}

// A port below a Thunderbolt controller.
Computer PortBelowThunderbolt() {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("Ridge0", ThunderboltProperties);
  computer.AddService(ridge, "Port0", "QuinceHPMDevice", PortProperties(0, "b0A1"));
  return computer;
}

// Personalities that fit those computers.
const Record PortUpdate = {
    {"Version", 172},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", List({17, 18})},
    {"Port Silicon Revision", 7},
    {"Firmware", "Port.bin"},
};

const Record RidgeUpdate = {
    {"Version", 42},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", List({0x1D2, 0x1D3})},
    {"Ridge Silicon Revision", 4},
    {"Firmware", "Ridge.bin"},
};

const Record CombinedUpdate = With(PortUpdate, RidgeUpdate);

// The records of those updates, without an address.
MatchRecord PortRecord(int address, std::string_view type) {
  return {{"Version", 172},
          {"Port Silicon Vendor ID", 0x4D1},
          {"Port Silicon Device ID", 18},
          {"Port Silicon Revision", 7},
          {"Firmware", "Port.bin"},
          {"RID", 2},
          {"Port Address", address},
          {"Personality Type", type}};
}

const MatchRecord RidgeRecord = {
    {"Version", 42},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"Firmware", "Ridge.bin"},
    {"RID", 3},
    {"Personality Type", "LegacyThunderbolt"},
};

const MatchRecord CombinedRecord = {
    {"Version", 42},
    {"Port Silicon Vendor ID", 0x4D1},
    {"Port Silicon Device ID", 18},
    {"Port Silicon Revision", 7},
    {"Firmware", "Ridge.bin"},
    {"Ridge Silicon Vendor ID", 0x5A86},
    {"Ridge Silicon Device ID", 0x1D3},
    {"Ridge Silicon Revision", 4},
    {"RID", 2},
    {"Port Address", 0},
    {"Personality Type", "Thunderbolt"},
    {"Firmware Mode", false},
};

TEST(Matcher, AUsbcPersonalityMatchesAPort) {
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({Dict(PortUpdate)})}})),
            Matched({PortRecord(0, "USBC")}));
}

TEST(Matcher, ALegacyUsbcPersonalityMatchesAPort) {
  EXPECT_EQ(Match(OnePort(), Dict({{"LegacyUSBC", Dict(PortUpdate)}})),
            Matched({PortRecord(0, "LegacyUSBC")}));
}

TEST(Matcher, ALegacyThunderboltPersonalityMatchesAThunderboltController) {
  EXPECT_EQ(Match(OneThunderbolt(), Dict({{"LegacyThunderbolt", List({Dict(RidgeUpdate)})}})),
            Matched({RidgeRecord}));
}

TEST(Matcher, AThunderboltPersonalityMatchesAPortBelowAThunderboltController) {
  EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})}})),
            Matched({CombinedRecord}));
}

TEST(Matcher, AThunderboltPersonalityDoesNotMatchAPortElsewhere) {
  EXPECT_EQ(Match(OnePort(), Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})}})), Nothing());
}

TEST(Matcher, AThunderboltPersonalityIsNotTriedOnAThunderboltController) {
  EXPECT_EQ(Match(OneThunderbolt(), Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})}})),
            Nothing());
}

TEST(Matcher, ReadsAConfigurationAsItIsInAFile) {
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchText(registry, R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>USBC</key>
	<array>
		<dict>
			<key>Version</key>
			<real>171.5</real>
			<key>Port UUID</key>
			<array>
				<string>b0A1</string>
			</array>
			<key>Port Silicon Vendor ID</key>
			<integer>0x4D1</integer>
			<key>Port Silicon Device ID</key>
			<integer>18</integer>
			<key>Port Silicon Revision</key>
			<integer>7</integer>
			<key>Port OTP Revision</key>
			<true/>
			<key>Issued</key>
			<date>2026-11-20T00:00:00Z</date>
		</dict>
	</array>
</dict>
</plist>
)"),
            Matched({{
                {"Version", 171.5},
                {"Port UUID", "b0A1"},
                {"Port Silicon Vendor ID", 0x4D1},
                {"Port Silicon Device ID", 18},
                {"Port Silicon Revision", 7},
                {"Port OTP Revision", 1},
                {"Issued", testing::DateOf("2026-11-20T00:00:00Z")},
                {"RID", 2},
                {"Port Address", 0},
                {"Personality Type", "USBC"},
            }}));
}

TEST(Matcher, KeysThatNameNoTypeYieldNothingSilently) {
  const Dictionary configuration =
      Dict({{"Note", "x"}, {"Version", 5}, {"Other", List({Dict(PortUpdate)})}});
  EXPECT_EQ(Match(OnePort(), configuration), Nothing());
  EXPECT_EQ(InventoriesOf(OnePort(), configuration),
            (Calls{PortInventory, PortInventory, PortInventory}));
}

TEST(Matcher, OfTwoPersonalitiesThatFitAPortOnlyTheFirstIsUsed) {
  const auto second = With(PortUpdate, {{"Firmware", "Second.bin"}});
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({Dict(PortUpdate), Dict(second)})}})),
            Matched({PortRecord(0, "USBC")}));
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({Dict(second), Dict(PortUpdate)})}})),
            Matched({With(PortRecord(0, "USBC"), {{"Firmware", "Second.bin"}})}));
}

TEST(Matcher, OfTwoPersonalitiesThatFitAThunderboltControllerOnlyTheFirstIsUsed) {
  const auto second = With(RidgeUpdate, {{"Firmware", "Second.bin"}});
  EXPECT_EQ(Match(OneThunderbolt(),
                  Dict({{"LegacyThunderbolt", List({Dict(RidgeUpdate), Dict(second)})}})),
            Matched({RidgeRecord}));
}

TEST(Matcher, OfTwoPersonalitiesThatFitAPortBelowThunderboltOnlyTheFirstIsUsed) {
  const auto second = With(CombinedUpdate, {{"Firmware", "Second.bin"}});
  EXPECT_EQ(Match(PortBelowThunderbolt(),
                  Dict({{"Thunderbolt", List({Dict(CombinedUpdate), Dict(second)})}})),
            Matched({CombinedRecord}));
}

TEST(Matcher, OnePersonalityMatchesEachPortThatItFits) {
  const auto update =
      With(PortUpdate, {{"Port Address", List({0, 2})}, {"Port UUID", List({"a0", "a2"})}});
  const auto record = [](int address, const char* uuid) {
    return MatchRecord{{"Version", 172},
                       {"Port Silicon Vendor ID", 0x4D1},
                       {"Port Silicon Device ID", 18},
                       {"Port Silicon Revision", 7},
                       {"Firmware", "Port.bin"},
                       {"Port Address", address},
                       {"Port UUID", uuid},
                       {"RID", 2},
                       {"Personality Type", "USBC"}};
  };
  EXPECT_EQ(Match(ThreePorts(), Dict({{"USBC", List({Dict(update)})}})),
            Matched({record(0, "a0"), record(2, "a2")}));
}

TEST(Matcher, EachPortMatchesTheFirstPersonalityThatFitsIt) {
  const auto forPort1 = With(PortUpdate, {{"Firmware", "One.bin"}, {"Port Address", 1}});
  EXPECT_EQ(Match(ThreePorts(), Dict({{"USBC", List({Dict(forPort1), Dict(PortUpdate)})}})),
            Matched({PortRecord(0, "USBC"),
                     {{"Version", 172},
                      {"Port Silicon Vendor ID", 0x4D1},
                      {"Port Silicon Device ID", 18},
                      {"Port Silicon Revision", 7},
                      {"Firmware", "One.bin"},
                      {"Port Address", 1},
                      {"RID", 2},
                      {"Personality Type", "USBC"}},
                     PortRecord(2, "USBC")}));
}

TEST(Matcher, ALegacyUsbcPersonalityMatchesEveryPortThatItFits) {
  EXPECT_EQ(Match(ThreePorts(), Dict({{"LegacyUSBC", Dict(PortUpdate)}})),
            Matched({PortRecord(0, "LegacyUSBC"), PortRecord(1, "LegacyUSBC"),
                     PortRecord(2, "LegacyUSBC")}));
}

TEST(Matcher, APortWithoutARidLeavesTheAddressToTheFile) {
  Computer computer;
  computer.AddPort("Port0", {{"Address", 2}, {"Version", 0x171}});
  EXPECT_EQ(Match(computer, Dict({{"LegacyUSBC", Dict({{"Version", 172}})}})),
            Matched({{{"Version", 172}, {"Personality Type", "LegacyUSBC"}}}));
  EXPECT_EQ(Match(computer,
                  Dict({{"LegacyUSBC", Dict({{"Version", 172}, {"Port Address", List({1, 2})}})}})),
            Matched({{{"Version", 172},
                      {"Port Address", List({1, 2})},
                      {"Personality Type", "LegacyUSBC"}}}));
}

TEST(Matcher, AThunderboltControllerHasARidButNoAddressSoTheFilesAddressIsRemoved) {
  EXPECT_EQ(
      Match(OneThunderbolt(),
            Dict({{"LegacyThunderbolt", List({Dict(With(RidgeUpdate, {{"Port Address", 5}}))})}})),
      Matched({RidgeRecord}));
}

TEST(Matcher, BypassedAPersonalityWithoutVersionReportsTheInstalledOne) {
  EXPECT_EQ(Match(OnePort(), Dict({{"LegacyUSBC", Dictionary()}}), Bypassed),
            Matched({{{"RID", 2},
                      {"Version", 171},
                      {"Port Address", 0},
                      {"Personality Type", "LegacyUSBC"}}}));
}

TEST(Matcher, BypassedAVersionThatIsNotANumberIsReplacedByTheInstalledOne) {
  for (const auto& [name, version] : NonNumbers()) {
    EXPECT_EQ(Match(OnePort(), Dict({{"LegacyUSBC", Dict({{"Version", version}})}}), Bypassed),
              Matched({{{"Version", 171},
                        {"RID", 2},
                        {"Port Address", 0},
                        {"Personality Type", "LegacyUSBC"}}}))
        << name;
  }
}

TEST(Matcher, BypassedAPortWithoutAVersionIsReportedForEachPair) {
  Computer computer;
  computer.AddPort("Port0", {{"Address", 0}});
  computer.AddPort("Port1", {{"Address", 1}});
  EXPECT_EQ(Match(computer, Dict({{"LegacyUSBC", Dict({{"Port Address", 1}})}}), Bypassed),
            Matched({{{"Port Address", 1}, {"Personality Type", "LegacyUSBC"}}},
                    "** No current firmware version?\n"
                    "** No current firmware version?\n"));
}

TEST(Matcher, BypassedAPortBelowThunderboltWithoutAVersionIsReportedTwice) {
  Computer computer;
  const auto ridge =
      computer.AddThunderbolt("Ridge0", Without(ThunderboltProperties, "ROM Version"));
  computer.AddService(ridge, "Port0", "QuinceHPMDevice",
                      Without(PortProperties(0, "b0A1"), "Version"));
  EXPECT_EQ(Match(computer, Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})}}), Bypassed),
            Matched({CombinedRecord},
                    "** No current firmware version?\n"
                    "** No current firmware version?\n"));
}

TEST(Matcher, APersonalitysUuidIsRemovedWhenThePortHasNone) {
  Computer computer;
  computer.AddPort("Port0", Without(PortProperties(0, ""), "UUID"));
  EXPECT_EQ(Match(computer,
                  Dict({{"LegacyUSBC", Dict(With(PortUpdate, {{"Port UUID", List({"b0A1"})}}))}})),
            Matched({PortRecord(0, "LegacyUSBC")}));
}

TEST(Matcher, AFirmwareModeOfFalseIsAddedUnderThunderboltAndNotUnderUsbc) {
  EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})},
                                                {"USBC", List({Dict(CombinedUpdate)})}})),
            Matched({CombinedRecord, With(Without(CombinedRecord, "Firmware Mode"),
                                          {{"Personality Type", "USBC"}})}));
}

TEST(Matcher, DeviceModelKeysStayAsTheFileHasThem) {
  const Record model = {{"Device Model ID", List({30, 31})}, {"Firmware Mode", List({0, 1})}};
  const auto update = With(model, CombinedUpdate);
  EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{"Thunderbolt", List({Dict(update)})}})),
            Matched({With(With(model, {{"Firmware Mode", false}}), CombinedRecord)}));
}

TEST(Matcher, ATopLevelThatIsNotADictionaryIsReportedAndTheRegistryIsNotRead) {
  for (const PropertyValue& top : List({List({Dict(PortUpdate)}), Array(), "USBC", 5, 5.5, true,
                                        testing::Bytes("x"), Date{5}})) {
    const auto computer = OnePort();
    LoggingRegistry registry(computer.Recorded());
    EXPECT_EQ(Match(registry, top),
              Nothing("fernwick: Unexpected format for config plist file.  Aborting\n"));
    EXPECT_EQ(registry.Calls(), Calls{});
  }
}

TEST(Matcher, AConfigurationThatDoesNotParseIsReportedTwice) {
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchText(registry, "bplist00"),
            Nothing("fernwick: Error reading plist: byte 8: the file is cut short, format: 200\n"
                    "fernwick: Unexpected format for config plist file.  Aborting\n"));
  EXPECT_EQ(registry.Calls(), Calls{});
}

TEST(Matcher, WithoutAPayloadTwoLinesAreLoggedAndNothingIsAskedOfTheRegistry) {
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchIn(registry, "Zed-42", std::nullopt),
            Nothing("fernwick: Error reading plist: No files to support boardID: Zed-42\n"
                    "fernwick: Unexpected format for config plist file.  Aborting\n"));
  EXPECT_EQ(registry.Calls(), Calls{});
}

TEST(Matcher, WithoutABoardIdentifierTwoLinesAreLogged) {
  const TemporaryDirectory payload;
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchIn(registry, std::nullopt, payload.Path() + "/"),
            Nothing("fernwick: Error reading plist: No files to support boardID: (null)\n"
                    "fernwick: Unexpected format for config plist file.  Aborting\n"));
}

TEST(Matcher, WithoutAConfigurationFileTwoLinesAreLogged) {
  const TemporaryDirectory payload;
  payload.Write("Zed-42/Grat.bin", "");
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchIn(registry, "Zed-42", payload.Path() + "/"),
            Nothing("fernwick: Error reading plist: No config file for this project\n"
                    "fernwick: Unexpected format for config plist file.  Aborting\n"));
}

TEST(Matcher, AnEmptyConfigurationYieldsNothingAndAsksNothing) {
  EXPECT_EQ(Match(OnePort(), Dictionary()), Nothing());
  EXPECT_EQ(InventoriesOf(OnePort(), Dictionary()), Calls{});
}

// The four types and keys between them, none of which matches anything.
const Dictionary EmptyTypes = Dict({
    {"Other", Array()},
    {"USBC", Array()},
    {"LegacyThunderbolt", Array()},
    {"Thunderbolt", Array()},
    {"LegacyUSBC", Dictionary()},
    {"Another", 5},
});

TEST(Matcher, CollectsAnInventoryOfItsOwnForEachKeyInFileOrder) {
  EXPECT_EQ(InventoriesOf(PortBelowThunderbolt(), EmptyTypes),
            (Calls{PortInventory, PortInventory, ThunderboltInventory, PortInventory, PortInventory,
                   PortInventory}));
}

TEST(Matcher, OverAnEmptyComputerAsksForNothingButTheInventories) {
  const auto computer = Computer();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(Match(registry, Dict({{"USBC", List({Dict(PortUpdate)})},
                                  {"LegacyThunderbolt", List({Dict(RidgeUpdate)})}})),
            Nothing());
  EXPECT_EQ(registry.Calls(),
            (Calls{PortInventory, "ResetIterator iterator 1", "NextEntry iterator 1",
                   "ReleaseEntry iterator 1", ThunderboltInventory, "ResetIterator iterator 2",
                   "NextEntry iterator 2", "ReleaseEntry iterator 2"}));
}

TEST(Matcher, AValueOfTheWrongShapeStillCollectsAnInventory) {
  EXPECT_EQ(InventoriesOf(PortBelowThunderbolt(), Dict({{"LegacyThunderbolt", Dict(RidgeUpdate)},
                                                        {"Thunderbolt", "x"},
                                                        {"LegacyUSBC", List({Dict(PortUpdate)})},
                                                        {"USBC", 5}})),
            (Calls{ThunderboltInventory, PortInventory, PortInventory, PortInventory}));
}

TEST(Matcher, AnInventoryIsCollectedOnceHoweverManyPersonalitiesThereAre) {
  EXPECT_EQ(
      InventoriesOf(ThreePorts(),
                    Dict({{"USBC", List({Dict(PortUpdate), Dict(PortUpdate), Dict(PortUpdate)})}})),
      Calls{PortInventory});
}

TEST(Matcher, AKeyThatOccursTwiceCountsOnceWithItsLastValue) {
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(MatchText(registry,
                      "<dict><key>LegacyUSBC</key><dict/><key>LegacyUSBC</key>"
                      "<dict><key>Version</key><integer>172</integer></dict></dict>"),
            Matched({{{"Version", 172},
                      {"RID", 2},
                      {"Port Address", 0},
                      {"Personality Type", "LegacyUSBC"}}}));
  EXPECT_EQ(registry.CallsOf("MatchServicesByClass"), Calls{PortInventory});
}

TEST(Matcher, TypeNamesAreExact) {
  const Dictionary configuration = Dict({
      {"usbc", List({Dict(PortUpdate)})},
      {"USBC ", List({Dict(PortUpdate)})},
      {"", List({Dict(PortUpdate)})},
      {"LegacyUsbc", Dict(PortUpdate)},
      {"legacyThunderbolt", List({Dict(RidgeUpdate)})},
      {"LegacyThunderbolt2", List({Dict(RidgeUpdate)})},
      {"thunderbolt", List({Dict(CombinedUpdate)})},
      {"ThunderboltLegacy", List({Dict(CombinedUpdate)})},
  });
  EXPECT_EQ(Match(PortBelowThunderbolt(), configuration), Nothing());
  EXPECT_EQ(InventoriesOf(PortBelowThunderbolt(), configuration), Calls(8, PortInventory));
}

TEST(Matcher, RecordsComeInTheOrderOfTheFilesKeys) {
  const auto computer = PortBelowThunderbolt();
  const MatchRecord usbc =
      With(Without(CombinedRecord, "Firmware Mode"), {{"Personality Type", "USBC"}});
  const MatchRecord legacyUsbc = With(usbc, {{"Personality Type", "LegacyUSBC"}});
  EXPECT_EQ(Match(computer, Dict({{"USBC", List({Dict(CombinedUpdate)})},
                                  {"LegacyThunderbolt", List({Dict(RidgeUpdate)})},
                                  {"LegacyUSBC", Dict(CombinedUpdate)},
                                  {"Thunderbolt", List({Dict(CombinedUpdate)})}})),
            Matched({usbc, RidgeRecord, legacyUsbc, CombinedRecord}));
  EXPECT_EQ(Match(computer, Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})},
                                  {"LegacyUSBC", Dict(CombinedUpdate)},
                                  {"LegacyThunderbolt", List({Dict(RidgeUpdate)})},
                                  {"USBC", List({Dict(CombinedUpdate)})}})),
            Matched({CombinedRecord, legacyUsbc, RidgeRecord, usbc}));
}

TEST(Matcher, WithinATypeRecordsComeInInventoryOrder) {
  const auto forPort = [](int address) {
    return Dict(With({{"Port Address", address}}, PortUpdate));
  };
  const auto record = [](int address) {
    return With({{"Port Address", address}}, PortRecord(address, "USBC"));
  };
  EXPECT_EQ(Match(ThreePorts(), Dict({{"USBC", List({forPort(2), forPort(1), forPort(0)})}})),
            Matched({record(0), record(1), record(2)}));
}

TEST(Matcher, EachInventoryReadsTheUuidsAgain) {
  const auto update = With(PortUpdate, {{"Port UUID", List({"a0"})}});
  Computer computer;
  computer.AddPort("Port0", PortProperties(0, "a0"));
  computer.AddPort("Port1", Without(PortProperties(1, ""), "UUID"));
  const auto matching = Match(computer, Dict({{"Other", 5}, {"USBC", List({Dict(update)})}}));
  EXPECT_EQ(matching, Matched({{{"Version", 172},
                                {"Port Silicon Vendor ID", 0x4D1},
                                {"Port Silicon Device ID", 18},
                                {"Port Silicon Revision", 7},
                                {"Firmware", "Port.bin"},
                                {"Port UUID", "a0"},
                                {"RID", 2},
                                {"Port Address", 0},
                                {"Personality Type", "USBC"}}},
                              "** Missing port UUID(s)\n"));
}

// A personality whose check writes a diagnostic.
const Record TooOld = With(PortUpdate, {{"Existing Max Version", 170}});
const Record TooNew = With(PortUpdate, {{"Existing Min Version", 172}});

TEST(Matcher, EachPortIsTestedAgainstThePersonalitiesInArrayOrder) {
  Computer computer;
  computer.AddPort("Port0", PortProperties(0, "a0"));
  computer.AddPort("Port1", PortProperties(1, "a1"));
  const std::string once = std::string(MaximumNotMet) + MinimumNotMet;
  EXPECT_EQ(Match(computer, Dict({{"USBC", List({Dict(TooOld), Dict(TooNew)})}})),
            Nothing(once + once));
}

TEST(Matcher, PersonalitiesAfterTheOneThatFitsAreNotTried) {
  EXPECT_EQ(
      Match(OnePort(), Dict({{"USBC", List({Dict(TooOld), Dict(PortUpdate), Dict(TooNew)})}})),
      Matched({PortRecord(0, "USBC")}, MaximumNotMet));
}

TEST(Matcher, ThePersonalityIsTriedOnEveryPortThoughItFailedOnOne) {
  Computer computer;
  computer.AddPort("Port0", With(PortProperties(0, "a0"), {{"Version", 0x169}}));
  computer.AddPort("Port1", PortProperties(1, "a1"));
  EXPECT_EQ(
      Match(computer,
            Dict({{"LegacyUSBC", Dict(With({{"Existing Min Version", 170}}, PortUpdate))}})),
      Matched({With({{"Existing Min Version", 170}}, PortRecord(1, "LegacyUSBC"))}, MinimumNotMet));
}

TEST(Matcher, APersonalityThatIsNotADictionaryIsSkipped) {
  for (const auto& [name, value] : NonNumbers()) {
    if (value.AsDictionary()) continue;
    EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({value, 5, Dict(PortUpdate)})}})),
              Matched({PortRecord(0, "USBC")}))
        << name;
  }
}

TEST(Matcher, AnArrayInsideTheArrayIsSkipped) {
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", testing::NestedArrays(2, Dict(PortUpdate))}})),
            Nothing());
}

TEST(Matcher, AValueOfTheWrongShapeNeverMatchesAndIsNotChecked) {
  const auto ridge = With(RidgeUpdate, {{"Existing Max Version", 1}});
  const auto both = With(CombinedUpdate, {{"Existing Max Version", 1}});
  EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{"LegacyThunderbolt", Dict(ridge)},
                                                {"Thunderbolt", Dict(both)},
                                                {"LegacyUSBC", List({Dict(both)})},
                                                {"USBC", Dict(both)}})),
            Nothing());
}

TEST(Matcher, AValueOfAnyOtherKindNeverMatches) {
  for (const char* type : {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC"}) {
    for (const auto& [name, value] : NonNumbers()) {
      EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{type, value}})), Nothing())
          << type << ": " << name;
    }
    EXPECT_EQ(Match(PortBelowThunderbolt(), Dict({{type, 5}})), Nothing()) << type;
  }
}

TEST(Matcher, BypassedAnEmptyArrayAndAnEmptyUsbcPersonalityDoNotFit) {
  EXPECT_EQ(Match(OnePort(), Dict({{"LegacyUSBC", Array()}}), Bypassed), Nothing());
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", Array()}}), Bypassed), Nothing());
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({Dictionary()})}}), Bypassed), Nothing());
}

TEST(Matcher, OnlyTheLowEightBitsOfTheBoardRevisionCount) {
  const Record bounds = {{"MinBoardRevision", 3}, {"MaxBoardRevision", 3}};
  const Dictionary usbc = Dict({{"USBC", List({Dict(With(bounds, PortUpdate))})}});
  const Outcome matched = Matched({With(bounds, PortRecord(0, "USBC"))});
  EXPECT_EQ(Match(OnePort(), usbc, {3}), matched);
  EXPECT_EQ(Match(OnePort(), usbc, {259}), matched);
  EXPECT_EQ(Match(OnePort(), usbc, {0xFFFFFF03}), matched);
  EXPECT_EQ(Match(OnePort(), usbc, {2}), Nothing());
  EXPECT_EQ(Match(OnePort(), usbc, {256}), Nothing());
  const Record zero = {{"MaxBoardRevision", 0}};
  EXPECT_EQ(Match(OnePort(), Dict({{"USBC", List({Dict(With(zero, PortUpdate))})}}), {256}),
            Matched({With(zero, PortRecord(0, "USBC"))}));
}

TEST(Matcher, TheBoardRevisionIsCheckedUnderThunderboltToo) {
  const Record bounds = {{"MinBoardRevision", 3}, {"MaxBoardRevision", 3}};
  const Dictionary thunderbolt =
      Dict({{"Thunderbolt", List({Dict(With(bounds, CombinedUpdate))})}});
  EXPECT_EQ(Match(PortBelowThunderbolt(), thunderbolt, {259}),
            Matched({With(bounds, CombinedRecord)}));
  EXPECT_EQ(Match(PortBelowThunderbolt(), thunderbolt, {4}), Nothing());
}

TEST(Matcher, TheLegacyTypesIgnoreTheBoardRevision) {
  const Record bounds = {{"MinBoardRevision", 9}};
  EXPECT_EQ(Match(PortBelowThunderbolt(),
                  Dict({{"LegacyThunderbolt", List({Dict(With(bounds, RidgeUpdate))})}}), {3}),
            Matched({With(bounds, RidgeRecord)}));
  EXPECT_EQ(Match(OnePort(), Dict({{"LegacyUSBC", Dict(With(bounds, PortUpdate))}}), {3}),
            Matched({With(bounds, PortRecord(0, "LegacyUSBC"))}));
}

TEST(Matcher, EngineeringFirmwareFitsLegacyThunderboltOnly) {
  Computer computer;
  const auto ridge =
      computer.AddThunderbolt("Ridge0", With(ThunderboltProperties, {{"EEPROM Revision", 0x45}}));
  computer.AddService(ridge, "Port0", "QuinceHPMDevice", PortProperties(0, "b0A1"));
  EXPECT_EQ(Match(computer, Dict({{"Thunderbolt", List({Dict(CombinedUpdate)})},
                                  {"LegacyUSBC", Dict(CombinedUpdate)},
                                  {"USBC", List({Dict(CombinedUpdate)})},
                                  {"LegacyThunderbolt", List({Dict(RidgeUpdate)})}})),
            Matched({RidgeRecord}));
}

TEST(Matcher, AMaximumWithoutTheStoredFractionRejectsTheSameVersion) {
  const auto update = With(RidgeUpdate, {{"Existing Max Version", 41.05}});
  EXPECT_EQ(Match(OneThunderbolt(), Dict({{"LegacyThunderbolt", List({Dict(update)})}})),
            Nothing(MaximumNotMet));
}

TEST(Matcher, AMaximumWithTheStoredFractionAcceptsIt) {
  const Record bound = {{"Existing Max Version", 41.050000000999994}};
  EXPECT_EQ(Match(OneThunderbolt(),
                  Dict({{"LegacyThunderbolt", List({Dict(With(bound, RidgeUpdate))})}})),
            Matched({With(bound, RidgeRecord)}));
}

TEST(Matcher, ARidgeUidIsTheRegistrysOwnValueInTheRecord) {
  Computer computer;
  computer.AddThunderbolt("Ridge0", With(ThunderboltProperties, {{"UID", 0xFFFFFFFFFFFFFFFF}}));
  const Record uid = {{"Ridge UID", List({1, 0xFFFFFFFFFFFFFFFF})}};
  EXPECT_EQ(Match(computer, Dict({{"LegacyThunderbolt", List({Dict(With(uid, RidgeUpdate))})}})),
            Matched({With(With({{"Ridge UID", 0xFFFFFFFFFFFFFFFF}}, RidgeRecord), {{"RID", 15}})}));
}

TEST(Matcher, AnAddressedPortBelowThunderboltIsNotACandidate) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("Ridge0", ThunderboltProperties);
  computer.AddService(ridge, "Port0", "QuinceHPMDevice", PortProperties(0x3F, "b0A1"));
  EXPECT_EQ(Match(computer, Dict({{"LegacyUSBC", Dict(CombinedUpdate)}})), Nothing());
}

TEST(Matcher, WithoutControllersNothingMatches) {
  EXPECT_EQ(Match(Computer(),
                  Dict({{"LegacyThunderbolt", List({Dict(RidgeUpdate)})},
                        {"Thunderbolt", List({Dict(CombinedUpdate)})},
                        {"LegacyUSBC", Dictionary()},
                        {"USBC", List({Dict(PortUpdate)})}}),
                  Bypassed),
            Nothing());
}

TEST(Matcher, AClassThatCannotBeMatchedYieldsNothing) {
  for (const bool withIterator : {false, true}) {
    const auto computer = OnePort();
    LoggingRegistry registry(computer.Recorded());
    registry.FailMatching(RegistryNotFound, withIterator);
    EXPECT_EQ(Match(registry, Dict({{"USBC", List({Dict(PortUpdate)})}})), Nothing());
    EXPECT_EQ(registry.CallsOf("MatchServicesByClass"), Calls{PortInventory});
  }
}

TEST(Matcher, AFaultOfAnInventoryIsReturnedWithoutTheMatchesBeforeIt) {
  auto computer = OnePort();
  computer.AddThunderbolt("Ridge0", Without(ThunderboltProperties, "UID"));
  LoggingRegistry registry(computer.Recorded());
  EXPECT_EQ(Match(registry, Dict({{"USBC", List({Dict(PortUpdate)})},
                                  {"LegacyThunderbolt", List({Dict(RidgeUpdate)})},
                                  {"LegacyUSBC", Dict(PortUpdate)}})),
            (Outcome{.matches = {}, .fault = Fault::MissingUid}));
  EXPECT_EQ(registry.CallsOf("MatchServicesByClass"), (Calls{PortInventory, ThunderboltInventory}));
}

TEST(Matcher, CallsAreIndependent) {
  const auto computer = OnePort();
  LoggingRegistry registry(computer.Recorded());
  const Dictionary configuration = Dict({{"USBC", List({Dict(PortUpdate)})}});
  EXPECT_EQ(Match(registry, configuration), Matched({PortRecord(0, "USBC")}));
  EXPECT_EQ(Match(registry, configuration), Matched({PortRecord(0, "USBC")}));
  EXPECT_EQ(Match(registry, Dict({{"USBC", Array()}})), Nothing());
  EXPECT_EQ(registry.CallsOf("MatchServicesByClass"), Calls(3, PortInventory));
}

TEST(Matcher, ManyPortsAndPersonalitiesAllFindTheirMatch) {
  Computer computer;
  std::vector<PropertyValue> personalities;
  Records expected;
  for (int address = 0; address < 100; ++address) {
    computer.AddPort("Port" + std::to_string(address), PortProperties(address, "a"));
    personalities.emplace_back(Dict(With({{"Port Address", address}}, PortUpdate)));
    expected.push_back(With({{"Port Address", address}}, PortRecord(address, "USBC")));
  }
  std::ranges::reverse(personalities);
  EXPECT_EQ(Match(computer, Dict({{"USBC", List(personalities)}})), Matched(expected));
}

}  // namespace
}  // namespace fernwick
