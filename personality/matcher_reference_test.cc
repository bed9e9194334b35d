// Compares the match record and the whole matcher with the plain reference: the records with the
// order of their keys, the inventories collected, and all that reaches standard error.

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "personality/matcher.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/inputs/fitting_personality.h"
#include "testing/inputs/random_choice.h"
#include "testing/inputs/value_domain.h"
#include "testing/logging_registry.h"
#include "testing/reference/matcher.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"
#include "value/xml/writer.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::Dict;
using testing::FittingPersonality;
using testing::FullController;
using testing::Kept;
using testing::List;
using testing::LoggingRegistry;
using testing::RandomChoice;
using testing::ValueDomain;
using testing::With;

namespace reference = testing::reference;

using Calls = std::vector<std::string>;
using Keys = std::vector<std::string>;
using Records = std::vector<Record>;

const std::vector<PropertyValue> Domain = ValueDomain();

const Keys Types = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC"};

// Dictionaries are compared by this text: it distinguishes every kind and keeps the order of
// the keys, and NaN equals itself in it.
std::string TextOf(const PropertyValue& value) {
  return WriteXmlPropertyList(value);
}

std::string TextOf(const Records& records) {
  std::string text;
  for (const auto& record : records) text += TextOf(Dictionary(record));
  return text;
}

// The keys whose bit is set, each with the value.
Record SubsetOf(const Keys& keys, unsigned bits, int value) {
  Record subset;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if ((bits >> i & 1) != 0) subset.Set(keys[i], value);
  }
  return subset;
}

std::string Described(Dictionary personality, Dictionary controller, std::string_view type) {
  return "under " + std::string(type) + ", the personality\n" + TextOf(personality) +
         "\nand the controller\n" + TextOf(controller);
}

void CompareSubsets(const Keys& keys) {
  const unsigned end = 1u << keys.size();
  for (unsigned inPersonality = 0; inPersonality < end; ++inPersonality) {
    for (unsigned inController = 0; inController < end; ++inController) {
      const auto personality = SubsetOf(keys, inPersonality, 1);
      const auto controller = SubsetOf(keys, inController, 2);
      for (const auto& type : Types) {
        ASSERT_EQ(BuildMatchRecord(personality, controller, type),
                  reference::BuildMatchRecord(personality, controller, type))
            << Described(personality, controller, type);
      }
    }
  }
}

// The keys whose presence bears on one another, in the order of the overlay and against it, with
// one more key.
TEST(MatchRecordReference, AgreesOnEverySubsetOfItsKeys) {
  Keys others = {"Personality Type", "Firmware"};
  for (const auto& entry : FullController.Entries()) others.emplace_back(entry.key);
  for (const auto& other : others) {
    CompareSubsets({"RID", "Version", "Port Address", "Firmware Mode", other});
    CompareSubsets({other, "Firmware Mode", "Port Address", "Version", "RID"});
  }
}

TEST(MatchRecordReference, AgreesOnEveryValueUnderEachKey) {
  for (const auto& entry : FullController.Entries()) {
    for (const auto& value : Domain) {
      for (const auto& type : Types) {
        const auto personality = With(FittingPersonality, {{entry.key, value}});
        const auto controller = With(FullController, {{entry.key, value}});
        ASSERT_EQ(
            TextOf(Dictionary(BuildMatchRecord(personality, FullController, type))),
            TextOf(Dictionary(reference::BuildMatchRecord(personality, FullController, type))))
            << Described(personality, FullController, type);
        ASSERT_EQ(
            TextOf(Dictionary(BuildMatchRecord(FittingPersonality, controller, type))),
            TextOf(Dictionary(reference::BuildMatchRecord(FittingPersonality, controller, type))))
            << Described(FittingPersonality, controller, type);
      }
    }
  }
}

// Properties from which the inventories fill a record that FittingPersonality fits, the version
// window apart: that of the Thunderbolt controller is a little above 2.
const Record PortProperties = {
    {"RID", 2},      {"Vendor ID", 2}, {"Device ID", 2}, {"Revision ID", 2},
    {"Revision", 2}, {"Version", 2},   {"UUID", "b0A1"},
};

const Record ThunderboltProperties = {
    {"Depth", 0},
    {"Route String", 0},
    {"Vendor ID", 2},
    {"Device ID", 2},
    {"Revision ID", 2},
    {"UID", 2},
    {"ROM Version", 2},
    {"EEPROM Revision", 0},
    {"Firmware Mode", true},
    {"Device Model Name", "b0A1"},
    {"Device Model ID", 2},
    {"Device Model Revision", 2},
};

// Computers and configurations of every shape, most of them near to a match.
class RandomPayloads {
 public:
  Computer NextComputer() {
    Computer computer;
    for (std::size_t i = choice_.Below(4); i > 0; --i) {
      const auto above = computer.AddThunderbolt("Ridge", Changed(ThunderboltProperties));
      AddPorts(computer, above, choice_.Below(2));
    }
    AddPorts(computer, computer.Services(), choice_.Below(4));
    return computer;
  }

  PropertyValue NextConfiguration() {
    if (choice_.OnceIn(50)) return choice_.OneOf(Domain);
    Keys keys = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC", "usbc", "Other", ""};
    choice_.Shuffle(keys);
    Record configuration;
    for (std::size_t i = choice_.Below(keys.size() + 1); i > 0; --i) {
      configuration.Set(Kept(keys[i - 1]), PersonalitiesFor(keys[i - 1]));
    }
    return Dict(configuration);
  }

  unsigned NextBoardRevision() {
    return static_cast<unsigned>(1 + choice_.Below(3) + 256 * choice_.Below(2));
  }

  bool NextBypass() { return choice_.OnceIn(3); }

 private:
  void AddPorts(Computer& computer, RegistryEntry parent, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const int address = parent == computer.Services() ? static_cast<int>(i + 1) : 0;
      computer.AddService(parent, "Port", PortControllerClass,
                          Changed(With(PortProperties, {{"Address", address}})));
    }
  }

  // One property in three computers is odd or missing; a "UID" is never missing.
  Record Changed(Record properties) {
    if (!choice_.OnceIn(3)) return properties;
    const auto key = choice_.OneOf(properties.Entries()).key;
    if (choice_.OnceIn(2) && key != "UID") {
      properties.SetOrRemove(key, nullptr);
    } else {
      properties.Set(key, choice_.OneOf(Domain));
    }
    return properties;
  }

  // Mostly of the shape that the key wants.
  PropertyValue PersonalitiesFor(std::string_view key) {
    if (choice_.OnceIn(20)) return choice_.OneOf(Domain);
    const bool isSingle = (key == "LegacyUSBC") != choice_.OnceIn(20);
    if (isSingle) return NextPersonality();
    std::vector<PropertyValue> personalities;
    for (std::size_t i = choice_.Below(4); i > 0; --i) {
      personalities.push_back(choice_.OnceIn(10) ? choice_.OneOf(Domain) : NextPersonality());
    }
    return List(personalities);
  }

  // Some of the keys that fit, in any order, with a few changes.
  PropertyValue NextPersonality() {
    std::vector<DictionaryEntry> entries;
    for (const auto& entry : candidates_.Entries()) {
      const bool isRequired = entry.key.find("Silicon") != std::string_view::npos;
      if (choice_.OnceIn(isRequired ? 40 : 3)) continue;
      entries.push_back(entry);
      if (choice_.OnceIn(25)) entries.back().value = choice_.OneOf(Domain);
    }
    choice_.Shuffle(entries);
    return Dictionary(testing::ValueArena().Copy(std::span<const DictionaryEntry>(entries)));
  }

  const Record candidates_ = With(FittingPersonality, {{"Existing Max Version", 2.5},
                                                       {"Port Address", List({2, 0, 1})},
                                                       {"Personality Type", "Grat"},
                                                       {"Firmware", "Grat.bin"},
                                                       {"Priority", 20}});
  RandomChoice choice_{20260918};
};

// What a matching returns and writes, in a form that is compared as a whole.
struct Outcome {
  std::string records;
  Calls inventories;
  std::string standardError;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

void PrintTo(const Outcome& matching, std::ostream* out) {
  *out << matching.records << "\nafter " << ::testing::PrintToString(matching.inventories)
       << ", standard error " << ::testing::PrintToString(matching.standardError);
}

// Matches for real, over a payload whose configuration for the host's board has this content.
class RealMatcher {
 public:
  Outcome Match(const Computer& computer, const PropertyValue& configuration,
                unsigned boardRevision, bool bypassVersionCheck) {
    payload_.Write("Zed-42/Config.plist", TextOf(configuration));
    LoggingRegistry registry(computer.Recorded());
    testing::TestConsole console;
    const auto matching = MatchPersonalities({registry, console, bypassVersionCheck}, "Zed-42",
                                             boardRevision, payload_.Path());
    EXPECT_TRUE(matching);
    return {TextOf(matching->matches), registry.CallsOf("MatchServicesByClass"), console.Error()};
  }

 private:
  const testing::TemporaryDirectory payload_;
};

reference::Controllers ControllersOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  return {CollectThunderboltControllers(registry)->records,
          CollectPortControllers(registry)->records};
}

Outcome InTheSameForm(const reference::Matching& matching) {
  Outcome same{TextOf(matching.records.value_or(Records())), {}, matching.diagnostics};
  for (const auto inventory : matching.inventories) {
    same.inventories.push_back(inventory == reference::Inventory::Ports
                                   ? "MatchServicesByClass QuinceHPMDevice"
                                   : "MatchServicesByClass IOThunderboltSwitch");
  }
  for (const auto& line : matching.log) same.standardError += "fernwick: " + line + "\n";
  return same;
}

void NoteTypes(const std::optional<Records>& records, std::set<std::string>& types) {
  for (const auto& record : records.value_or(Records{})) {
    types.emplace(*record.Find("Personality Type")->AsString());
  }
}

TEST(MatcherReference, AgreesOnRandomPayloadsAndComputers) {
  RandomPayloads payloads;
  RealMatcher matcher;
  std::set<std::string> matchedTypes;
  for (int i = 0; i < 4000; ++i) {
    const auto computer = payloads.NextComputer();
    const auto configuration = payloads.NextConfiguration();
    const auto boardRevision = payloads.NextBoardRevision();
    const bool bypass = payloads.NextBypass();

    const auto controllers = ControllersOf(computer);
    const auto expected =
        reference::MatchPersonalities(configuration, boardRevision, controllers, bypass);
    NoteTypes(expected.records, matchedTypes);
    ASSERT_EQ(matcher.Match(computer, configuration, boardRevision, bypass),
              InTheSameForm(expected))
        << "of the configuration\n"
        << TextOf(configuration) << "\non a board of revision " << boardRevision
        << (bypass ? ", version check bypassed" : "") << ", with the Thunderbolt controllers\n"
        << TextOf(controllers.thunderbolt) << "\nand the ports\n"
        << TextOf(controllers.ports);
  }
  EXPECT_EQ(matchedTypes, std::set<std::string>(Types.begin(), Types.end()));
}

}  // namespace
}  // namespace fernwick
