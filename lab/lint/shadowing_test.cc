// What is said of personalities that can never match or are never reached, held to the real matcher
// over random configurations and computers.

#include "lab/lint/shadowing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "personality/legacy_thunderbolt_check.h"
#include "personality/matcher.h"
#include "personality/requirement_rules.h"
#include "personality/thunderbolt_check.h"
#include "personality/usbc_check.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/capture.h"
#include "testing/computer.h"
#include "testing/named_rows.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/version_check_bypass.h"

namespace fernwick::lab {
namespace {

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

// Few values, so that personalities often accept the same; now and then one that matches nothing.
PropertyValue RandomElement(Dice& dice, const PersonalityKey& key) {
  const bool isText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (dice.OneIn(20)) return isText ? PropertyValue(1) : PropertyValue("1");
  if (isText) return std::string(1, static_cast<char>('a' + dice.Below(3)));
  static const std::vector<PropertyValue> numbers = {0,   1,    2,   0.0, 1.0,
                                                     2.0, true, 0.5, 16,  std::nan("")};
  return dice.OneIn(4) ? dice.Pick(numbers) : PropertyValue(dice.Below(3));
}

PropertyValue RandomSet(Dice& dice, const PersonalityKey& key) {
  if (key.kind != KeyKind::ListOfStrings && dice.OneIn(3)) return RandomElement(dice, key);
  Array list;
  for (int count = dice.OneIn(30) ? 0 : 1 + dice.Below(3); count > 0; --count) {
    list.push_back(RandomElement(dice, key));
  }
  return list;
}

PropertyValue RandomBound(Dice& dice) {
  static const std::vector<PropertyValue> odd = {"1", std::nan(""), -1, 1e9, 1.01, 1.02, 300};
  return dice.OneIn(8) ? dice.Pick(odd) : PropertyValue(dice.Below(4));
}

Dictionary RandomPersonality(Dice& dice, TypeSet type) {
  Dictionary personality;
  if (!dice.OneIn(20)) personality.Set("Version", 1 + dice.Below(4));
  for (const char* key :
       {"Existing Min Version", "Existing Max Version", "MinBoardRevision", "MaxBoardRevision"}) {
    if (dice.OneIn(4)) personality.Set(key, RandomBound(dice));
  }
  for (const auto* key : SetKeys(type)) {
    const bool isRequired = (key->requiredBy & type) != 0;
    if (isRequired && !dice.OneIn(3)) {
      personality.Set(key->name, Array{0, 1, 2});  // or hardly any would match
    } else if (isRequired ? !dice.OneIn(30) : dice.OneIn(4)) {
      personality.Set(key->name, RandomSet(dice, *key));
    }
  }
  return personality;
}

// The personality with a requirement more, or one that holds more back.
Dictionary Narrowed(Dice& dice, Dictionary personality, TypeSet type) {
  for (const auto* key : SetKeys(type)) {
    const auto* values = personality.Find(key->name);
    const bool isOptional = (key->requiredBy & type) == 0;
    if (values == nullptr && isOptional && dice.OneIn(4)) {
      personality.Set(key->name, RandomSet(dice, *key));
    } else if (values != nullptr && values->AsArray() != nullptr && dice.OneIn(2)) {
      auto list = *values->AsArray();
      if (!list.empty()) list.pop_back();
      personality.Set(key->name, std::move(list));
    }
  }
  if (personality.Find("Existing Min Version") == nullptr && dice.OneIn(2)) {
    personality.Set("Existing Min Version", 0);
  }
  return personality;
}

Dictionary RandomThunderbolt(Dice& dice) {
  return {{"Depth", 0},
          {"Route String", 0},
          {"UID", dice.Below(3)},
          {"Vendor ID", dice.Below(3)},
          {"Device ID", dice.Below(3)},
          {"Revision ID", dice.Below(3)},
          {"Device Model Name", std::string(1, static_cast<char>('a' + dice.Below(3)))},
          {"Device Model ID", dice.Below(3)},
          {"Device Model Revision", dice.Below(3)},
          {"Firmware Mode", dice.Below(2)},
          {"ROM Version", dice.Below(4)},
          {"EEPROM Revision", dice.Below(3)}};
}

Dictionary RandomPort(Dice& dice) {
  Dictionary port = {{"Vendor ID", dice.Below(3)},
                     {"Device ID", dice.Below(3)},
                     {"Revision ID", dice.Below(3)},
                     {"Revision", dice.Below(3)},
                     {"Version", dice.Below(4)},
                     {"UUID", std::string(1, static_cast<char>('a' + dice.Below(3)))}};
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
                            const std::string& directory, std::size_t count) {
  RecordedRegistry registry(computer.Recorded());
  MatchRecorder recorder;
  testing::StandardErrorCapture diagnostics;
  MatchPersonalities(registry, std::string(Board), revision, directory + "/", &recorder);
  std::vector<bool> matched(count);
  for (const auto& controller : recorder.keys.at(0).controllers) {
    for (std::size_t i = 0; i < count; ++i) {
      if (controller.pairs[i].outcome == PairOutcome::Matched) matched[i] = true;
    }
  }
  return matched;
}

class Reach : public ::testing::TestWithParam<testing::Named<TypeSet>> {
 protected:
  // Writes the personalities as a configuration and loads it.
  LintSubject Subject(const Array& personalities) {
    const Dictionary configuration = {{GetParam().name, personalities}};
    file_ = LoadConfiguration(
                directory_.Write("Zed-42/Config.plist", WriteXmlPropertyList(configuration)))
                .file;
    return LintSubject(*file_);
  }

  testing::TemporaryDirectory directory_;
  std::optional<ConfigurationFile> file_;
};

std::vector<Acceptance> AcceptancesOf(const LintSubject& subject) {
  std::vector<Acceptance> acceptances;
  for (const auto& personality : subject.types.at(0).personalities) {
    acceptances.push_back(AcceptanceOf(personality));
  }
  return acceptances;
}

// Some personalities, as many narrower forms of them in the same order, and as many that differ
// from them in one bound.
struct Planted {
  Array personalities;
  std::size_t firstPlanted;
};

Dictionary WithOtherBound(Dice& dice, Dictionary personality) {
  static const std::vector<std::string_view> bounds = {"Version", "Existing Min Version",
                                                       "Existing Max Version", "MinBoardRevision",
                                                       "MaxBoardRevision"};
  personality.Set(dice.Pick(bounds), dice.Below(5));
  return personality;
}

Planted RandomArray(Dice& dice, TypeSet type) {
  Planted planted = {{}, 6};
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    planted.personalities.push_back(RandomPersonality(dice, type));
  }
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    const auto& wide = *planted.personalities[i].AsDictionary();
    planted.personalities.push_back(Narrowed(dice, wide, type));
  }
  for (std::size_t i = 0; i < planted.firstPlanted; ++i) {
    const auto& other = *planted.personalities[i].AsDictionary();
    planted.personalities.push_back(WithOtherBound(dice, other));
  }
  return planted;
}

TEST_P(Reach, WhatIsShadowedOrDeadIsNeverMatched) {
  Dice dice(7);
  int shadowed = 0;
  int matched = 0;
  for (int round = 0; round < 120; ++round) {
    const auto [personalities, firstPlanted] = RandomArray(dice, GetParam().row);
    const auto acceptances = AcceptancesOf(Subject(personalities));
    const auto shadowing = FindShadowed(acceptances);
    for (int turn = 0; turn < 6; ++turn) {
      std::optional<testing::VersionCheckBypass> bypass;
      if (turn % 2 == 0) bypass.emplace();
      const auto found = MatchedBy(RandomComputer(dice), static_cast<std::uint32_t>(turn),
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
    const auto acceptances = AcceptancesOf(Subject(personalities));
    const auto shadowing = FindShadowed(acceptances);
    for (std::size_t i = firstPlanted; i < 2 * firstPlanted; ++i) {
      if (!acceptances[i].acceptsAny) continue;
      EXPECT_LE(shadowing.shadowedBy[i], i - firstPlanted) << round << " " << i;
      ++planted;
    }
  }
  EXPECT_GT(planted, 300);
}

bool Applies(TypeSet type, const Dictionary& personality, const HardwareRecord& controller,
             int revision) {
  if (type == Types::LegacyThunderbolt) {
    return CheckLegacyThunderboltRequirements(personality, controller, 0);
  }
  return (type == Types::Thunderbolt ? CheckThunderboltRequirements : CheckUsbcRequirements)(
      personality, controller, static_cast<unsigned>(revision), nullptr);
}

// A controller that the personality accepts by what is known of it.
HardwareRecord Witness(const Acceptance& acceptance, TypeSet type) {
  HardwareRecord controller;
  for (const auto& version : LowestInstalledVersions(type, acceptance.minimum)) {
    if (acceptance.maximum != nullptr && NumberLess(*acceptance.maximum, version)) continue;
    if (NumberGreater(*acceptance.version, version)) controller.Set("Version", version);
  }
  const auto keys = SetKeys(type);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!acceptance.sets[i]) continue;
    for (const auto* value : *acceptance.sets[i]) {
      if (WhyNothingEquals(*value, *keys[i], type).empty()) controller.Set(keys[i]->name, *value);
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
    const auto acceptances = AcceptancesOf(Subject(personalities));
    for (std::size_t i = 0; i < personalities.size(); ++i) {
      if (!acceptances[i].acceptsAny) continue;
      for (const int revision :
           {acceptances[i].revisions.lowest, acceptances[i].revisions.highest}) {
        EXPECT_TRUE(Applies(type, *personalities[i].AsDictionary(), Witness(acceptances[i], type),
                            revision))
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
