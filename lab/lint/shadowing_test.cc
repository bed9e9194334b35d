// What is reported of personalities that can never match or are never reached, compared with the
// real matcher over random configurations and computers.

#include "lab/lint/shadowing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "personality/matcher.h"
#include "personality/requirements.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/computer.h"
#include "testing/named_rows.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::Kept;
using testing::List;

constexpr std::string_view Board = "Zed-42";

// The same sequence on every machine.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  int Below(int count) { return static_cast<int>(engine_() % static_cast<unsigned>(count)); }
  bool OneIn(int count) { return Below(count) == 0; }

  template <typename Value>
  const Value& Pick(const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
  }

 private:
  std::mt19937 engine_;
};

PropertyValue Letter(Dice& dice) {
  return Kept(std::string(1, static_cast<char>('a' + dice.Below(3))));
}

// Few values, so that personalities often accept the same; now and then one that matches nothing.
PropertyValue RandomElement(Dice& dice, const Key& key) {
  const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (dice.OneIn(20)) return isText ? PropertyValue(1) : PropertyValue("1");
  if (isText) return Letter(dice);
  static const std::vector<PropertyValue> numbers = {0,   1,    2,   0.0, 1.0,
                                                     2.0, true, 0.5, 16,  std::nan("")};
  return dice.OneIn(4) ? dice.Pick(numbers) : PropertyValue(dice.Below(3));
}

PropertyValue RandomSet(Dice& dice, const Key& key) {
  if (key.kind != KeyKind::ListOfStrings && dice.OneIn(3)) return RandomElement(dice, key);
  std::vector<PropertyValue> list;
  for (int count = dice.OneIn(30) ? 0 : 1 + dice.Below(3); count > 0; --count) {
    list.push_back(RandomElement(dice, key));
  }
  return List(list);
}

PropertyValue RandomBound(Dice& dice) {
  static const std::vector<PropertyValue> odd = {"1", std::nan(""), -1, 1e9, 1.01, 1.02, 300};
  return dice.OneIn(8) ? dice.Pick(odd) : PropertyValue(dice.Below(4));
}

Record RandomPersonality(Dice& dice, TypeSet type) {
  Record personality;
  if (!dice.OneIn(20)) personality.Set("Version", 1 + dice.Below(4));
  for (const char* key :
       {"Existing Min Version", "Existing Max Version", "MinBoardRevision", "MaxBoardRevision"}) {
    if (dice.OneIn(4)) personality.Set(key, RandomBound(dice));
  }
  for (const auto* tested : SetKeys()) {
    const auto& key = *tested;
    if (FindSetRequirement(type, key.name) == nullptr) continue;
    const bool isRequired = (key.requiredBy & type) != 0;
    if (isRequired && !dice.OneIn(3)) {
      personality.Set(key.name, List({0, 1, 2}));  // or hardly any would match
    } else if (isRequired ? !dice.OneIn(30) : dice.OneIn(4)) {
      personality.Set(key.name, RandomSet(dice, key));
    }
  }
  return personality;
}

// The personality with a requirement more, or one that accepts less.
Record Narrowed(Dice& dice, Record personality, TypeSet type) {
  for (const auto* tested : SetKeys()) {
    const auto& key = *tested;
    if (FindSetRequirement(type, key.name) == nullptr) continue;
    const auto* values = personality.Find(key.name);
    const bool isOptional = (key.requiredBy & type) == 0;
    if (values == nullptr && isOptional && dice.OneIn(4)) {
      personality.Set(key.name, RandomSet(dice, key));
    } else if (values != nullptr && values->AsArray() && dice.OneIn(2)) {
      const auto list = *values->AsArray();
      const auto left = list.empty() ? 0 : list.size() - 1;
      personality.Set(key.name, Array(std::span(list.begin(), left)));
    }
  }
  if (personality.Find("Existing Min Version") == nullptr && dice.OneIn(2)) {
    personality.Set("Existing Min Version", 0);
  }
  return personality;
}

Record RandomThunderbolt(Dice& dice) {
  return {{"Depth", 0},
          {"Route String", 0},
          {"UID", dice.Below(3)},
          {"Vendor ID", dice.Below(3)},
          {"Device ID", dice.Below(3)},
          {"Revision ID", dice.Below(3)},
          {"Device Model Name", Letter(dice)},
          {"Device Model ID", dice.Below(3)},
          {"Device Model Revision", dice.Below(3)},
          {"Firmware Mode", dice.Below(2)},
          {"ROM Version", dice.Below(4)},
          {"EEPROM Revision", dice.Below(3)}};
}

Record RandomPort(Dice& dice) {
  Record port = {{"Vendor ID", dice.Below(3)},   {"Device ID", dice.Below(3)},
                 {"Revision ID", dice.Below(3)}, {"Revision", dice.Below(3)},
                 {"Version", dice.Below(4)},     {"UUID", Letter(dice)}};
  if (dice.OneIn(2)) port.Set("RID", dice.Below(3));
  if (dice.OneIn(2)) port.Set("Address", dice.Below(3));
  return port;
}

testing::Computer RandomComputer(Dice& dice) {
  testing::Computer computer;
  computer.SetBoard(Board, static_cast<unsigned char>(dice.Below(4)));
  for (int i = 0; i < 6; ++i) {
    const auto controller = computer.AddThunderbolt("Ridge", RandomThunderbolt(dice));
    for (int j = 0; j < 4; ++j) {
      computer.AddService(controller, "Port", PortControllerClass, RandomPort(dice));
    }
    computer.AddPort("Lone", RandomPort(dice));
  }
  return computer;
}

// For each personality of the one type whether the matcher pairs it with a controller.
std::vector<bool> MatchedBy(const testing::Computer& computer, std::uint32_t revision,
                            bool bypassVersionCheck, const std::string& directory,
                            std::size_t count) {
  RecordedRegistry registry(computer.Recorded());
  RunTrace trace;
  testing::TestConsole console;
  const auto matching = MatchPersonalities({registry, console, bypassVersionCheck, &trace},
                                           std::string(Board), revision, directory + "/");
  EXPECT_TRUE(matching);
  std::vector<bool> matched(count);
  for (const auto index : trace.keys.at(0).matched) {
    if (index != KeyTrace::NoMatch) matched[index] = true;
  }
  return matched;
}

class Reach : public ::testing::TestWithParam<testing::Named<TypeSet>> {
 protected:
  // Writes the personalities as a configuration and loads it.
  LintSubject Subject(const std::vector<PropertyValue>& personalities) {
    const auto configuration = Dict({{GetParam().name, List(personalities)}});
    file_.emplace(*LoadConfiguration(
        directory_.Write("Zed-42/Config.plist", WriteXmlPropertyList(configuration))));
    return LintSubject(*file_);
  }

  testing::TemporaryDirectory directory_;
  std::optional<ConfigurationFile> file_;
};

std::vector<Acceptance> AcceptancesOf(const LintSubject& subject, ValueSets& sets) {
  std::vector<Acceptance> acceptances;
  for (const auto& personality : subject.types.at(0).personalities) {
    acceptances.push_back(AcceptanceOf(personality, sets));
  }
  return acceptances;
}

// Some personalities, as many narrower forms of them in the same order, and as many that differ
// from them in one bound.
struct Planted {
  std::vector<PropertyValue> personalities;
  std::size_t firstPlanted;
};

Record WithOtherBound(Dice& dice, Record personality) {
  static const std::vector<std::string_view> bounds = {"Version", "Existing Min Version",
                                                       "Existing Max Version", "MinBoardRevision",
                                                       "MaxBoardRevision"};
  personality.Set(dice.Pick(bounds), dice.Below(5));
  return personality;
}

Planted RandomArray(Dice& dice, TypeSet type) {
  Planted planted = {{}, 6};
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    planted.personalities.push_back(Dict(RandomPersonality(dice, type)));
  }
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    const Record wide(*planted.personalities[i].AsDictionary());
    planted.personalities.push_back(Dict(Narrowed(dice, wide, type)));
  }
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    const Record other(*planted.personalities[i].AsDictionary());
    planted.personalities.push_back(Dict(WithOtherBound(dice, other)));
  }
  return planted;
}

TEST_P(Reach, WhatIsShadowedOrDeadIsNeverMatched) {
  Dice dice(7);
  int shadowed = 0;
  int matched = 0;
  for (int round = 0; round < 120; ++round) {
    const auto [personalities, firstPlanted] = RandomArray(dice, GetParam().row);
    ValueSets sets;
    const auto acceptances = AcceptancesOf(Subject(personalities), sets);
    const auto shadowing = FindShadowed(acceptances);
    for (int turn = 0; turn < 6; ++turn) {
      const bool bypass = turn % 2 == 0;
      const auto found = MatchedBy(RandomComputer(dice), static_cast<std::uint32_t>(turn), bypass,
                                   directory_.Path(), personalities.size());
      for (std::size_t i = 0; i < personalities.size(); ++i) {
        const bool isShadowed = shadowing.shadowedBy[i] != i;
        EXPECT_FALSE(found[i] && isShadowed) << round << " " << i;
        EXPECT_FALSE(found[i] && !bypass && !acceptances[i].acceptsAny) << round << " " << i;
        shadowed += isShadowed;
        matched += found[i];
      }
    }
  }
  EXPECT_GT(shadowed, 500);
  EXPECT_GT(matched, 500);
}

TEST_P(Reach, APlantedNarrowerPersonalityIsFoundShadowed) {
  Dice dice(11);
  int planted = 0;
  for (int round = 0; round < 300; ++round) {
    const auto [personalities, firstPlanted] = RandomArray(dice, GetParam().row);
    ValueSets sets;
    const auto acceptances = AcceptancesOf(Subject(personalities), sets);
    const auto shadowing = FindShadowed(acceptances);
    for (std::size_t i = firstPlanted; i < 2 * firstPlanted; ++i) {
      if (!acceptances[i].acceptsAny) continue;
      EXPECT_LE(shadowing.shadowedBy[i], i - firstPlanted) << round << " " << i;
      ++planted;
    }
  }
  EXPECT_GT(planted, 300);
}

bool Applies(TypeSet type, Dictionary personality, const HardwareRecord& controller, int revision) {
  testing::TestConsole console;
  return ControllerCheck(type, {controller, static_cast<std::uint8_t>(revision)})
      .Applies(personality, console);
}

// A controller that the personality accepts by what is known of it.
HardwareRecord Witness(const Acceptance& acceptance, const ValueSets& sets, TypeSet type) {
  HardwareRecord controller;
  for (const auto& version :
       LowestInstalledVersions(acceptance.scales, acceptance.window.minimum)) {
    if (acceptance.window.Contains(version)) controller.Set("Version", version);
  }
  for (std::size_t i = 0; i < SetKeys().size(); ++i) {
    if (acceptance.sets[i] == nullptr) continue;
    const auto& key = *SetKeys()[i];
    for (const auto number : *acceptance.sets[i]) {
      const auto& value = sets.ValueOf(number);
      if (UnmatchableReason(value, key, type).empty()) controller.Set(key.name, value);
    }
  }
  return controller;
}

TEST_P(Reach, WhatIsNotDeadMatchesSomething) {
  Dice dice(13);
  const auto type = GetParam().row;
  int alive = 0;
  for (int round = 0; round < 300; ++round) {
    const auto [personalities, firstPlanted] = RandomArray(dice, type);
    ValueSets sets;
    const auto acceptances = AcceptancesOf(Subject(personalities), sets);
    for (std::size_t i = 0; i < personalities.size(); ++i) {
      if (!acceptances[i].acceptsAny) continue;
      for (const int revision :
           {acceptances[i].revisions.lowest, acceptances[i].revisions.highest}) {
        EXPECT_TRUE(Applies(type, *personalities[i].AsDictionary(),
                            Witness(acceptances[i], sets, type), revision))
            << round << " " << ::testing::PrintToString(personalities[i]);
      }
      ++alive;
    }
  }
  EXPECT_GT(alive, 300);
}

const testing::Named<TypeSet> ArrayTypes[] = {
    {"LegacyThunderbolt", Types::LegacyThunderbolt},
    {"Thunderbolt", Types::Thunderbolt},
    {"USBC", Types::Usbc},
};

INSTANTIATE_TEST_SUITE_P(OfEachType, Reach, ::testing::ValuesIn(ArrayTypes), testing::RowName);

}  // namespace
}  // namespace fernwick::lab
