// Drafts for random computers, which the tool then runs over.

#include "lab/draft/drafting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "driver/bypass_switch.h"
#include "lab/lint/linted.h"
#include "lab/support/tool_run.h"
#include "lab/support/words.h"
#include "lab/survey/settle/settling.h"
#include "lab/what_if/changed_computer.h"
#include "personality/requirements.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/inputs/random_pairs.h"
#include "testing/property_values.h"
#include "testing/recordings.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick::lab {
namespace {

using testing::Computer;
using testing::Dict;
using testing::Kept;
using testing::List;

Recording CopyOf(const Computer& computer) {
  return testing::RecordingOf(testing::ContentOf(computer.Recorded()));
}

void AddTo(DraftedComputers& computers, const Computer& computer, DraftSide side,
           const std::string& name) {
  const auto inspected = InspectComputer(name, CopyOf(computer));
  ASSERT_TRUE(inspected) << inspected.Error().error.message;
  computers.Add(**inspected, side);
}

ConfigurationLoader Loading(const PropertyValue& configuration) {
  return [configuration](const auto&, const auto&, Console&) -> Result<PropertyList> {
    return PropertyList{{}, configuration};
  };
}

// A run of the tool with this configuration.
ToolRun RunWith(const Computer& computer, const PropertyValue& configuration) {
  return RunTool(computer.Recorded(), ToolOptions("/payload", false), KeptOutput::Counts,
                 Loading(configuration));
}

// The run with a configuration that has each type but no personality.
ToolRun EmptyRun(const Computer& computer) {
  Record types;
  for (const auto& type : NamedTypes) {
    types.Set(type.name, type.type == Types::LegacyUsbc ? Dict({}) : PropertyValue(Array()));
  }
  return RunWith(computer, Dict(types));
}

// Whether the personality with the controller's own values and the version matches it.
bool CanMatch(TypeSet type, const RequirementContext& context, const PropertyValue& version) {
  Record personality = {{"Version", version}};
  for (const auto& requirement : RequirementsOf(type)) {
    const auto* value = context.hardware.Find(requirement.key);
    if (requirement.presence == KeyPresence::RequiredKey && value != nullptr) {
      personality.Set(requirement.key, *value);
    }
  }
  testing::TestConsole console;
  return ControllerCheck(type, context).Applies(personality, console);
}

bool IsForPorts(TypeSet type) {
  return type == Types::LegacyUsbc || type == Types::Usbc;
}

// Whether the type is for ports, and the computer has one that the draft would match and that is
// compared by the version of the Thunderbolt controller above it.
bool HasUnsettled(const Computer& computer, const DraftTarget& target) {
  if (!IsForPorts(target.type)) return false;
  const auto run = EmptyRun(computer);
  const auto trace =
      *std::ranges::find(run.trace.keys, NamesOf(target.type).front(), &KeyTrace::key);
  for (std::size_t i = 0; i < trace.inventory.records.size(); ++i) {
    if (trace.inventory.sources[i].version == Origin::Thunderbolt &&
        CanMatch(target.type, ContextOf(run.result, trace, i), target.version)) {
      return true;
    }
  }
  return false;
}

// Random computers on both sides, and the draft for them.
struct RandomDraft {
  // With `settles` the wanted computers have no port that never settles.
  RandomDraft(TypeSet type, bool settles, std::mt19937_64& random) : target{type, "image.bin", 50} {
    const auto wantedCount = 1 + random() % 4;
    const auto exceptedCount = random() % 3;
    while (wanted.size() < wantedCount) {
      auto computer = OrdinaryComputer(random);
      if (!settles || !HasUnsettled(computer, target)) wanted.push_back(computer);
    }
    while (excepted.size() < exceptedCount) {
      excepted.push_back(OrdinaryComputer(random));
      if (random() % 8 == 0) excepted.back().SetBoard("Zed-44", 1);
    }
    for (const auto& each : wanted) AddTo(computers, each, DraftSide::Wanted, "wanted");
    for (const auto& each : excepted) AddTo(computers, each, DraftSide::Excepted, "excepted");
    outcome = MakeDraft(computers, target);
  }

  // One whose run ends neither abnormally nor by a switch.
  static Computer OrdinaryComputer(std::mt19937_64& random) {
    while (true) {
      auto pair = testing::MakeRandomPair(random);
      const auto result = EmptyRun(pair.computer).result;
      if (!result.fault && !result.bypassesUpdates) return pair.computer;
    }
  }

  std::vector<Computer> wanted;
  std::vector<Computer> excepted;
  DraftedComputers computers;
  DraftTarget target;
  DraftOutcome outcome;
};

// The run repeated with the configuration, as the updates change the computer.
SettleEnd EndOfSettling(const Computer& computer, const PropertyValue& configuration) {
  ChangedComputer changed(CopyOf(computer));
  const auto options = ToolOptions("/payload", false);
  const auto load = Loading(configuration);
  return Settle(changed, {options, load}).end;
}

// Every wanted controller that can match matches, and the update settles.
void ExpectMatchesWanted(const RandomDraft& draft, const Computer& computer) {
  const auto& configuration = draft.outcome.configuration->value;
  const auto run = RunWith(computer, configuration);
  const auto& trace = run.trace.keys.at(0);
  for (std::size_t i = 0; i < trace.matched.size(); ++i) {
    EXPECT_EQ(trace.matched[i] != KeyTrace::NoMatch,
              CanMatch(draft.target.type, ContextOf(run.result, trace, i), draft.target.version));
  }
  if (run.result.bypassesVersionCheck) return;
  EXPECT_EQ(EndOfSettling(computer, configuration), SettleEnd::NothingMatches);
}

std::string BoardOf(const Computer& computer) {
  return EmptyRun(computer).result.identity->boardIdString.value();
}

// No excepted controller matches, as far as its computer reads the configuration of one of the
// wanted ones. Returns how many computers read another one.
std::size_t ExpectMatchesNoExcepted(const RandomDraft& draft) {
  std::set<std::string> boards;
  for (const auto& computer : draft.wanted) boards.insert(BoardOf(computer));
  std::size_t others = 0;
  for (const auto& computer : draft.excepted) {
    if (!boards.contains(BoardOf(computer))) {
      ++others;
      continue;
    }
    const auto run = RunWith(computer, draft.outcome.configuration->value);
    for (const auto matched : run.trace.keys.at(0).matched) {
      EXPECT_EQ(matched, KeyTrace::NoMatch);
    }
  }
  return others;
}

// What lint finds, except in values that the registry has in a form that lint doubts, and where an
// excepted controller is between wanted ones.
std::vector<std::string> UnexpectedFindings(const PropertyValue& configuration) {
  static const std::set<std::string_view> allowed = {"doubtful-uuid", "doubtful-model-name",
                                                     "doubtful-rid",  "real-uid",
                                                     "version-gap",   "board-revision-gap"};
  const testing::TemporaryDirectory directory;
  std::vector<std::string> unexpected;
  for (const auto& row : LintedRows(directory.Path(), configuration, {"image.bin"})) {
    if (!allowed.contains(row.rule->id)) unexpected.push_back(row.message);
  }
  return unexpected;
}

// How many drafts of a type there were of each kind.
struct DraftCounts {
  std::size_t printed = 0;
  std::size_t ofSeveralPersonalities = 0;
  std::size_t indistinguishable = 0;
  std::size_t unsettled = 0;
  std::size_t otherBoards = 0;  // excepted computers that were left out
};

void ExpectPromiseKept(const RandomDraft& draft, DraftCounts& counts) {
  const auto& outcome = draft.outcome;
  EXPECT_NE(outcome.refusal, "the draft does not match what it should");
  const bool isUnsettled = outcome.refusal.find(" would never settle: ") != std::string::npos;
  EXPECT_EQ(isUnsettled, std::ranges::any_of(draft.wanted, [&](const Computer& computer) {
              return HasUnsettled(computer, draft.target);
            }));
  if (isUnsettled) ++counts.unsettled;
  if (!outcome.indistinguishable.empty()) ++counts.indistinguishable;
  ASSERT_EQ(outcome.configuration.has_value(), outcome.status == LabStatus::Done);
  if (!outcome.configuration) return;
  ++counts.printed;
  for (const auto& computer : draft.wanted) ExpectMatchesWanted(draft, computer);
  const auto others = ExpectMatchesNoExcepted(draft);
  EXPECT_EQ(draft.computers.OtherBoards(), others);
  counts.otherBoards += others;
  const auto& configuration = outcome.configuration->value;
  EXPECT_EQ(UnexpectedFindings(configuration), std::vector<std::string>{})
      << ::testing::PrintToString(configuration);
  const auto list = configuration.AsDictionary()->Entries()[0].value.AsArray();
  if (list && list->size() > 1) ++counts.ofSeveralPersonalities;
}

class Drafts : public ::testing::TestWithParam<NamedType> {};

TEST_P(Drafts, MatchTheControllersOfRandomComputersAndNoExceptedOne) {
  std::mt19937_64 random(5);
  DraftCounts counts;
  const auto type = GetParam().type;
  // With the few keys of "LegacyThunderbolt" several personalities are rarely needed.
  const int drafts = type == Types::LegacyThunderbolt ? 400 : 200;
  for (int i = 0; i < drafts; ++i) {
    const RandomDraft draft(type, i % 4 != 0, random);
    ExpectPromiseKept(draft, counts);
  }
  EXPECT_GT(counts.printed, 70u);
  EXPECT_EQ(counts.ofSeveralPersonalities > 0, type != Types::LegacyUsbc);
  // Every port below a Thunderbolt controller has the unique id of that one.
  EXPECT_GE(counts.indistinguishable, type == Types::Thunderbolt ? 0u : 5u);
  EXPECT_GE(counts.unsettled, IsForPorts(type) ? 25u : 0u);
  EXPECT_GT(counts.otherBoards, 10u);
}

INSTANTIATE_TEST_SUITE_P(OfEachType, Drafts, ::testing::ValuesIn(NamedTypes),
                         [](const auto& type) { return std::string(type.param.name); });

Record Port(const Record& others) {
  Record port = {{"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}, {"Version", 0x171}};
  port.Merge(others);
  return port;
}

Record Thunderbolt(const Record& others) {
  Record properties = {{"Depth", 0},          {"Route String", 0},   {"Vendor ID", 1},
                       {"Device ID", 2},      {"Revision ID", 3},    {"UID", 0x10},
                       {"ROM Version", 0x41}, {"EEPROM Revision", 5}};
  properties.Merge(others);
  return properties;
}

// One computer of one controller.
struct SmallComputer {
  bool isPort;
  Record properties;
  DraftSide side = DraftSide::Wanted;
};

// The draft for small computers, named "0", "1" and so on.
struct SmallDraft {
  SmallDraft(TypeSet type, const PropertyValue& version,
             const std::vector<SmallComputer>& controllers)
      : target{type, "image.bin", version} {
    for (std::size_t i = 0; i < controllers.size(); ++i) {
      Computer computer;
      const auto& [isPort, properties, side] = controllers[i];
      isPort ? computer.AddPort("hpm0", properties) : computer.AddThunderbolt("ridge0", properties);
      AddTo(computers, computer, side, std::to_string(i));
    }
    outcome = MakeDraft(computers, target);
  }

  // The personalities, or the one of "LegacyUSBC".
  PropertyValue Drafted() const {
    return outcome.configuration->value.AsDictionary()->Entries()[0].value;
  }

  DraftTarget target;
  DraftedComputers computers;
  DraftOutcome outcome;
};

constexpr auto Excepted = DraftSide::Excepted;

TEST(Draft, HasKeysWithAsFewValuesAsAreNeeded) {
  const SmallDraft draft(Types::Usbc, 210,
                         {{true, Port({{"Address", 5}, {"UUID", "a"}, {"Revision ID", true}})},
                          {true, Port({{"Address", 6}, {"UUID", "b"}, {"Revision", 7}})},
                          {true, Port({{"Address", 7}, {"UUID", "c"}}), Excepted}});
  EXPECT_EQ(draft.Drafted(), PropertyValue(List({Dict({{"Firmware", "image.bin"},
                                                       {"Priority", 50},
                                                       {"Version", 210},
                                                       {"Port Silicon Vendor ID", 1},
                                                       {"Port Silicon Device ID", 2},
                                                       {"Port Silicon Revision", List({1, 3})},
                                                       {"Port Address", List({5, 6})}})})));
}

TEST(Draft, WritesBoundsOfVersionsAsTheyAreMeant) {
  const SmallDraft draft(Types::LegacyThunderbolt, 43.1,
                         {{false, Thunderbolt({})},
                          {false, Thunderbolt({{"EEPROM Revision", 4}}), Excepted},
                          {false, Thunderbolt({{"EEPROM Revision", 6}}), Excepted}});
  const auto personality = *(*draft.Drafted().AsArray())[0].AsDictionary();
  EXPECT_EQ(*personality.Find("Existing Min Version"), PropertyValue(41.05));
  EXPECT_EQ(*personality.Find("Existing Max Version"), PropertyValue(41.051));
}

TEST(Draft, WritesBoundsOfPortVersionsAsWholeNumbers) {
  const SmallDraft draft(Types::LegacyUsbc, 300,
                         {{true, Port({{"Version", 0x170}})},
                          {true, Port({{"Version", 0x160}}), Excepted},
                          {true, Port({{"Version", 0x180}}), Excepted}});
  EXPECT_EQ(draft.Drafted(), PropertyValue(Dict({{"Firmware", "image.bin"},
                                                 {"Priority", 50},
                                                 {"Version", 300},
                                                 {"Existing Min Version", 170},
                                                 {"Existing Max Version", 170}})));
}

// Where a whole number is a version too, hundredths are not rounded to it.
TEST(Draft, WritesBoundsExactlyWhereRoundedOnesWouldAcceptAnotherController) {
  DraftedComputers computers;
  const auto add = [&](const Record& thunderbolt, const Record& port, DraftSide side) {
    Computer computer;
    const auto parent = computer.AddThunderbolt("ridge0", thunderbolt);
    computer.AddService(parent, "hpm0", "QuinceHPMDevice", port);
    AddTo(computers, computer, side, "it");
  };
  auto bare = Thunderbolt({});
  bare.SetOrRemove("ROM Version", nullptr);
  add(Thunderbolt({{"EEPROM Revision", 0}}), Port({}), DraftSide::Wanted);
  add(bare, Port({{"Version", 0x41}}), Excepted);
  const DraftTarget target = {Types::Thunderbolt, "image.bin", 50};
  const auto outcome = MakeDraft(computers, target);
  ASSERT_TRUE(outcome.configuration);
  const auto list = outcome.configuration->value.AsDictionary()->Entries()[0].value.AsArray();
  EXPECT_EQ(*(*list)[0].AsDictionary()->Find("Existing Min Version"),
            PropertyValue(ThunderboltFirmwareVersion(0x41, 0)));
}

TEST(Draft, ListsUuidsAndWritesUniqueIdsAsIntegers) {
  const SmallDraft ports(Types::Usbc, 210,
                         {{true, Port({{"UUID", "a"}})}, {true, Port({{"UUID", "b"}}), Excepted}});
  EXPECT_EQ(*(*ports.Drafted().AsArray())[0].AsDictionary()->Find("Port UUID"),
            PropertyValue(List({"a"})));
  const SmallDraft thunderbolts(
      Types::LegacyThunderbolt, 43,
      {{false, Thunderbolt({{"UID", 32.0}})}, {false, Thunderbolt({{"UID", 16.0}}), Excepted}});
  EXPECT_EQ(*(*thunderbolts.Drafted().AsArray())[0].AsDictionary()->Find("Ridge UID"),
            PropertyValue(32));
}

// A personality can require numbers alone there.
TEST(Draft, DoesNotDistinguishUniqueIdsThatAreNoNumbers) {
  const SmallDraft draft(
      Types::LegacyThunderbolt, 43,
      {{false, Thunderbolt({{"UID", "a"}})}, {false, Thunderbolt({{"UID", "b"}}), Excepted}});
  EXPECT_EQ(draft.outcome.indistinguishable.size(), 1u);
}

TEST(Draft, NamesControllersThatCannotMatch) {
  auto unknown = Port({});
  unknown.SetOrRemove("Version", nullptr);
  auto other = Port({});
  other.SetOrRemove("Device ID", nullptr);
  const SmallDraft draft(Types::Usbc, 171,
                         {{true, Port({})},
                          {true, Port({})},
                          {true, unknown},
                          {true, other},
                          {true, Port({{"Version", 0x170}})},
                          {true, Port({}), Excepted}});
  EXPECT_EQ(draft.outcome.status, LabStatus::Done);
  EXPECT_EQ(draft.outcome.unmatchable,
            (std::vector<std::string>{
                "0: IOService:/hpm0 (and 1 like it) cannot match: its version 171 is not older",
                "2: IOService:/hpm0 cannot match: it has no \"Version\"",
                "3: IOService:/hpm0 cannot match: its version 171 is not older"}));
  EXPECT_EQ(SmallDraft(Types::Usbc, 200, {{true, other}}).outcome.unmatchable,
            (std::vector<std::string>{
                "0: IOService:/hpm0 cannot match: it has no \"Port Silicon Device ID\""}));
}

TEST(Draft, LeavesOutEngineeringFirmwareWherePortsAreMatched) {
  DraftedComputers computers;
  Computer computer;
  const auto parent = computer.AddThunderbolt("ridge0", Thunderbolt({{"EEPROM Revision", 0x45}}));
  computer.AddService(parent, "hpm0", "QuinceHPMDevice", Port({}));
  AddTo(computers, computer, DraftSide::Wanted, "it");
  const DraftTarget ports = {Types::Thunderbolt, "image.bin", 50};
  const auto outcome = MakeDraft(computers, ports);
  EXPECT_EQ(outcome.status, LabStatus::Negative);
  EXPECT_EQ(outcome.refusal, "no controller of these computers can match");
  EXPECT_EQ(outcome.unmatchable,
            std::vector<std::string>{
                "it: IOService:/ridge0/hpm0 cannot match: it runs engineering firmware"});
  const DraftTarget thunderbolt = {Types::LegacyThunderbolt, "image.bin", 50};
  EXPECT_TRUE(MakeDraft(computers, thunderbolt).configuration);
}

TEST(Draft, IsRefusedWhereItWouldMatchOtherControllers) {
  const SmallDraft same(Types::Usbc, 200, {{true, Port({})}, {true, Port({}), Excepted}});
  EXPECT_EQ(same.outcome.status, LabStatus::Negative);
  EXPECT_EQ(same.outcome.indistinguishable,
            std::vector<std::string>{
                "0: IOService:/hpm0 cannot be distinguished from the excepted 1: IOService:/hpm0"});
  const SmallDraft several(Types::LegacyUsbc, 200,
                           {{true, Port({{"Address", 1}, {"Version", 1}})},
                            {true, Port({{"Address", 2}, {"Version", 3}})},
                            {true, Port({{"Address", 1}, {"Version", 3}}), Excepted}});
  EXPECT_EQ(several.outcome.refusal, "\"LegacyUSBC\" can have one personality, but 2 are needed");
  EXPECT_EQ(several.outcome.status, LabStatus::Negative);
}

// Switches its version check off.
void BypassVersionCheck(Computer& computer) {
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", "1");
}

// With the switch an older version is installed too, and engineering firmware is replaced.
TEST(Draft, HonoursSwitchesThatBypassTheVersionCheck) {
  const DraftTarget target = {Types::Usbc, "image.bin", 60};
  const auto make = [&](const Record& wanted, bool wantedBypasses, const Record& excepted,
                        bool exceptedBypasses) {
    DraftedComputers computers;
    const auto add = [&](const Record& port, bool bypasses, DraftSide side) {
      Computer computer;
      computer.AddPort("hpm0", port);
      if (bypasses) BypassVersionCheck(computer);
      AddTo(computers, computer, side, side == Excepted ? "excepted" : "wanted");
    };
    add(wanted, wantedBypasses, DraftSide::Wanted);
    add(excepted, exceptedBypasses, Excepted);
    const auto outcome = MakeDraft(computers, target);
    if (!outcome.configuration) return PropertyValue(outcome.status);
    const auto list = *outcome.configuration->value.AsDictionary()->Entries()[0].value.AsArray();
    const auto* maximum = list[0].AsDictionary()->Find("Existing Max Version");
    return maximum == nullptr ? PropertyValue("none") : *maximum;
  };
  const auto old = Port({{"Version", 0x30}});
  const auto newer = Port({{"Version", 0x70}});
  auto unknown = Port({});
  unknown.SetOrRemove("Version", nullptr);
  EXPECT_EQ(make(old, false, newer, false), PropertyValue("none"));
  EXPECT_EQ(make(old, false, newer, true), PropertyValue(30));
  EXPECT_EQ(make(newer, true, old, false), PropertyValue("none"));
  EXPECT_EQ(make(newer, false, old, false), PropertyValue(LabStatus::Negative));
  EXPECT_EQ(make(unknown, true, newer, false), PropertyValue("none"));
  EXPECT_EQ(make(unknown, true, old, false), PropertyValue(LabStatus::Negative));
  EXPECT_EQ(make(old, false, unknown, true), PropertyValue(LabStatus::Negative));
}

TEST(Draft, IsRefusedForAVersionThatNoControllerReports) {
  const std::string refusal =
      " would be installed again and again: a port reports whole numbers, a Thunderbolt controller "
      "hundredths up to .63, each of eight digits at most";
  const SmallDraft port(Types::Usbc, 200.5, {{true, Port({})}});
  EXPECT_EQ(port.outcome.refusal, "--version 200.5" + refusal);
  EXPECT_EQ(port.outcome.status, LabStatus::BadUsage);
  EXPECT_EQ(SmallDraft(Types::Usbc, 100'000'000, {{true, Port({})}}).outcome.refusal,
            "--version 100000000" + refusal);
  EXPECT_EQ(SmallDraft(Types::LegacyThunderbolt, 43.7, {{false, Thunderbolt({})}}).outcome.refusal,
            "--version 43.7" + refusal);
}

TEST(Draft, OfAPortBelowAThunderboltControllerNeedsTheTypeOfBoth) {
  DraftedComputers computers;
  Computer computer;
  const auto parent = computer.AddThunderbolt("ridge0", Thunderbolt({}));
  computer.AddService(parent, "hpm0", "QuinceHPMDevice", Port({}));
  AddTo(computers, computer, DraftSide::Wanted, "it");
  const DraftTarget fraction = {Types::Usbc, "image.bin", 41.5};
  EXPECT_EQ(MakeDraft(computers, fraction).status, LabStatus::BadUsage);
  const DraftTarget port = {Types::Usbc, "image.bin", 60};
  const auto outcome = MakeDraft(computers, port);
  EXPECT_EQ(outcome.status, LabStatus::Negative);
  EXPECT_EQ(
      outcome.refusal,
      "it: IOService:/ridge0/hpm0 would never settle: the tool compares the version of the "
      "Thunderbolt controller above it, which an image for a port does not change; use --type "
      "Thunderbolt");
}

TEST(Draft, OfThunderboltNamesPortsWithoutAThunderboltController) {
  EXPECT_EQ(SmallDraft(Types::Thunderbolt, 60, {{true, Port({})}}).outcome.unmatchable,
            (std::vector<std::string>{"0: IOService:/hpm0 cannot match: there is no Thunderbolt "
                                      "controller above it"}));
}

TEST(Draft, IsRefusedForTooManyDifferentControllers) {
  std::vector<SmallComputer> computers;
  for (int i = 0; i < 2049; ++i) {
    computers.push_back({true, Port({{"Address", 2 * i}})});
    computers.push_back({true, Port({{"Address", 2 * i + 1}}), Excepted});
  }
  EXPECT_EQ(SmallDraft(Types::Usbc, 200, computers).outcome.refusal,
            "there are too many different controllers: 2049 wanted and 2049 excepted ones");
}

TEST(InspectComputer, FailsWhereASwitchWithoutAValueEndsTheRun) {
  for (const auto name : {UpdatesSwitch, VersionSwitch}) {
    Computer computer;
    computer.Set(computer.Options(), "boot-args", name);
    const auto inspected = InspectComputer("it", CopyOf(computer));
    ASSERT_FALSE(inspected);
    EXPECT_EQ(inspected.Error().error.message,
              "it: a bypass switch without a value ends every run abnormally");
  }
}

// A draft has one type, whose run lists the controllers of one kind.
TEST(InspectComputer, ListsTheKindThatEndsNoRun) {
  Computer ridges;
  ridges.AddPort("hpm0", Port({}));
  ridges.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  const auto ofPorts = InspectComputer("it", CopyOf(ridges));
  ASSERT_TRUE(ofPorts);
  EXPECT_EQ((*ofPorts)->ports.inventory.records.size(), 1u);
  EXPECT_EQ(DescribeUnlisted(**ofPorts),
            "it: its Thunderbolt controllers are left out: one without a \"UID\" ends every run "
            "that lists them");

  Computer dock;
  dock.AddThunderbolt("ridge0", Thunderbolt({}));
  const auto deeper = dock.AddThunderbolt("ridge1", {{"Depth", 1}, {"Route String", 1}});
  dock.AddService(deeper, "hpm0", "QuinceHPMDevice", Port({}));
  const auto ofRidges = InspectComputer("it", CopyOf(dock));
  ASSERT_TRUE(ofRidges);
  EXPECT_EQ((*ofRidges)->thunderbolt.inventory.records.size(), 1u);
  EXPECT_EQ(DescribeUnlisted(**ofRidges),
            "it: its ports are left out: a Thunderbolt controller without a \"UID\" above one ends "
            "every run that lists them");
}

TEST(InspectComputer, FailsWhereEveryRunEndsAbnormally) {
  Computer computer;
  const auto ridge = computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  computer.AddService(ridge, "hpm0", "QuinceHPMDevice", Port({}));
  const auto inspected = InspectComputer("it", CopyOf(computer));
  ASSERT_FALSE(inspected);
  EXPECT_EQ(inspected.Error().error.message,
            "it: a Thunderbolt controller without a \"UID\" ends every run abnormally");
}

// Identifiers of boards may differ in what the path of the configuration does not.
TEST(DraftedComputers, LeavesOutExceptedOnesThatReadAnotherConfiguration) {
  DraftedComputers computers;
  const auto add = [&](const char* board, DraftSide side) {
    Computer computer;
    if (board != nullptr) computer.SetBoard(board, 1);
    computer.AddPort("hpm0", Port({}));
    AddTo(computers, computer, side, "it");
  };
  add("Zed-42", DraftSide::Wanted);
  for (const char* same : {"Zed-42", "Zed-42/", "/Zed-42", "./Zed-42"}) add(same, Excepted);
  EXPECT_EQ(computers.OtherBoards(), 0u);
  for (const char* other : {"zed-42", "Zed-42/Zed-42", "../Zed-42"}) add(other, Excepted);
  add(nullptr, Excepted);
  EXPECT_EQ(computers.OtherBoards(), 4u);
  EXPECT_EQ(computers.ControllersOf(Types::Usbc, Excepted).front().count, 4u);
}

TEST(DraftedComputers, CountsControllersByTheTypeThatIsForThem) {
  DraftedComputers computers;
  Computer computer;
  computer.SetBoard("Zed-42", 1);
  computer.AddPort("hpm0", Port({}));
  computer.AddPort("hpm1", Port({}));
  const auto parent = computer.AddThunderbolt("ridge0", Thunderbolt({}));
  computer.AddService(parent, "hpm2", "QuinceHPMDevice", Port({}));
  computer.AddThunderbolt("ridge1", Thunderbolt({}));
  AddTo(computers, computer, DraftSide::Wanted, "it");
  AddTo(computers, Computer(), DraftSide::Excepted, "other");
  EXPECT_EQ(computers.CountByType(),
            (std::map<TypeSet, std::size_t>{
                {Types::Usbc, 2}, {Types::Thunderbolt, 1}, {Types::LegacyThunderbolt, 1}}));
  EXPECT_EQ(computers.Boards(), std::set<std::string>{"Zed-42"});
  EXPECT_EQ(computers.OtherBoards(), 1u);
  EXPECT_EQ(computers.ControllersOf(Types::Thunderbolt, DraftSide::Wanted).size(), 2u);
  EXPECT_EQ(computers.ControllersOf(Types::Usbc, DraftSide::Wanted).size(), 2u);
  EXPECT_EQ(computers.ControllersOf(Types::LegacyThunderbolt, DraftSide::Wanted).size(), 2u);
}

}  // namespace
}  // namespace fernwick::lab
