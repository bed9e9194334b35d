// The match record and the whole matcher beside the plain reference: the records with the order of
// their keys, the inventories taken, and all that reaches standard error.

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "personality/matcher.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/capture.h"
#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/inputs/fitting_personality.h"
#include "testing/inputs/random_choice.h"
#include "testing/inputs/value_domain.h"
#include "testing/logging_registry.h"
#include "testing/reference/matcher.h"
#include "testing/temporary_directory.h"
#include "value/xml/writer.h"

namespace fernwick {
namespace {

using testing::Computer;
using testing::FittingPersonality;
using testing::FullController;
using testing::List;
using testing::LoggingRegistry;
using testing::RandomChoice;
using testing::ValueDomain;
using testing::VersionCheckBypass;
using testing::With;

namespace reference = testing::reference;

using Calls = std::vector<std::string>;
using Keys = std::vector<std::string>;
using Records = std::vector<Dictionary>;

const Array Domain = ValueDomain();

const Keys Types = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC", "USBC"};

// Dictionaries compare by this text: it tells every kind from every other and keeps the order of
// the keys, and in it NaN is itself.
std::string TextOf(const PropertyValue& value) {
  return WriteXmlPropertyList(value);
}

std::string TextOf(const std::optional<Records>& records) {
  return records ? TextOf(PropertyValue(Array(records->begin(), records->end()))) : "none";
}

// The keys whose bit is set, each with the value.
Dictionary SubsetOf(const Keys& keys, unsigned bits, int value) {
  Dictionary subset;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if ((bits >> i & 1) != 0) subset.Set(keys[i], value);
  }
  return subset;
}

std::string Describe(const Dictionary& personality, const Dictionary& controller,
                     std::string_view type) {
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
            << Describe(personality, controller, type);
      }
    }
  }
}

// The keys whose presence bears on one another, in the order of the overlay and against it, with
// one more key.
TEST(MatchRecordReference, AgreesOnEverySubsetOfItsKeys) {
  Keys others = {"Personality Type", "Firmware"};
  for (const auto& entry : FullController.Entries()) others.emplace_back(entry.key.View());
  for (const auto& other : others) {
    CompareSubsets({"RID", "Version", "Port Address", "Firmware Mode", other});
    CompareSubsets({other, "Firmware Mode", "Port Address", "Version", "RID"});
  }
}

TEST(MatchRecordReference, AgreesOnEveryValueUnderEachKey) {
  for (const auto& entry : FullController.Entries()) {
    for (const auto& value : Domain) {
      for (const auto& type : Types) {
        const auto personality = With(FittingPersonality, {{entry.key.View(), value}});
        const auto controller = With(FullController, {{entry.key.View(), value}});
        ASSERT_EQ(TextOf(BuildMatchRecord(personality, FullController, type)),
                  TextOf(reference::BuildMatchRecord(personality, FullController, type)))
            << Describe(personality, FullController, type);
        ASSERT_EQ(TextOf(BuildMatchRecord(FittingPersonality, controller, type)),
                  TextOf(reference::BuildMatchRecord(FittingPersonality, controller, type)))
            << Describe(FittingPersonality, controller, type);
      }
    }
  }
}

// Properties from which the inventories fill a record that FittingPersonality fits, the version
// window apart: that of the Thunderbolt controller is a little above 2.
const Dictionary PortProperties = {
    {"RID", 2},      {"Vendor ID", 2}, {"Device ID", 2}, {"Revision ID", 2},
    {"Revision", 2}, {"Version", 2},   {"UUID", "b0A1"},
};

const Dictionary ThunderboltProperties = {
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
    Dictionary configuration;
    for (std::size_t i = choice_.Below(keys.size() + 1); i > 0; --i) {
      configuration.Set(keys[i - 1], PersonalitiesFor(keys[i - 1]));
    }
    return configuration;
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
  Dictionary Changed(Dictionary properties) {
    if (!choice_.OnceIn(3)) return properties;
    const std::string key(choice_.OneOf(properties.Entries()).key.View());
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
    Array personalities;
    for (std::size_t i = choice_.Below(4); i > 0; --i) {
      personalities.push_back(choice_.OnceIn(10) ? choice_.OneOf(Domain) : NextPersonality());
    }
    return personalities;
  }

  // Some of the keys that fit, in any order, with a few changes.
  PropertyValue NextPersonality() {
    std::vector<DictionaryEntry> entries;
    for (const auto& entry : candidates_.Entries()) {
      const bool isRequired = entry.key.View().find("Silicon") != std::string_view::npos;
      if (choice_.OnceIn(isRequired ? 40 : 3)) continue;
      entries.push_back(entry);
      if (choice_.OnceIn(25)) entries.back().value = choice_.OneOf(Domain);
    }
    choice_.Shuffle(entries);
    return Dictionary(std::move(entries));
  }

  const Dictionary candidates_ = With(FittingPersonality, {{"Existing Max Version", 2.5},
                                                           {"Port Address", List({2, 0, 1})},
                                                           {"Personality Type", "Grat"},
                                                           {"Firmware", "Grat.bin"},
                                                           {"Priority", 20}});
  RandomChoice choice_{20260918};
};

// What a matching gives and does, in a form that compares whole.
struct Matching {
  std::string records;
  Calls inventories;
  std::string standardError;

  friend bool operator==(const Matching&, const Matching&) = default;
};

void PrintTo(const Matching& matching, std::ostream* out) {
  *out << matching.records << "\nafter " << ::testing::PrintToString(matching.inventories)
       << ", standard error " << ::testing::PrintToString(matching.standardError);
}

// Matches for real, over a payload whose configuration for the host's board has this content.
class RealMatcher {
 public:
  Matching Match(const Computer& computer, const PropertyValue& configuration,
                 unsigned boardRevision) {
    payload_.Write("Zed-42/Config.plist", TextOf(configuration));
    LoggingRegistry registry(computer.Recorded());
    const auto records = MatchPersonalities(registry, "Zed-42", boardRevision, payload_.Path());
    return {TextOf(records), registry.CallsOf("MatchServicesByClass"),
            standardError_.TakeNewText()};
  }

 private:
  const testing::TemporaryDirectory payload_;
  testing::StandardErrorCapture standardError_;
};

reference::Controllers ControllersOf(const Computer& computer) {
  RecordedRegistry registry(computer.Recorded());
  return {CollectThunderboltControllers(registry).value_or(Records{}),
          CollectPortControllers(registry).value_or(Records{})};
}

Matching InTheSameForm(const reference::Matching& matching) {
  Matching same{TextOf(matching.records), {}, matching.diagnostics};
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
    std::optional<VersionCheckBypass> bypass;
    if (payloads.NextBypass()) bypass.emplace();

    const auto controllers = ControllersOf(computer);
    const auto expected = reference::MatchPersonalities(configuration, boardRevision, controllers,
                                                        bypass.has_value());
    NoteTypes(expected.records, matchedTypes);
    ASSERT_EQ(matcher.Match(computer, configuration, boardRevision), InTheSameForm(expected))
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
