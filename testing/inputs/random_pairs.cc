#include "testing/inputs/random_pairs.h"

#include <string>
#include <utility>
#include <vector>

namespace fernwick::testing {
namespace {

// The distributions of the standard library differ between platforms.
class Dice {
 public:
  explicit Dice(std::mt19937_64& random) : random_(random) {}

  int Below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  bool OneIn(int count) { return Below(count) == 0; }

  template <typename Value>
  const Value& OneOf(const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
  }

  // A value of a kind that fits nowhere or only by chance.
  PropertyValue Odd() {
    static const std::vector<PropertyValue> values = {"5",
                                                      "",
                                                      true,
                                                      false,
                                                      2.5,
                                                      -1,
                                                      0,
                                                      0xFFFFFFFFFFFFFFFF,
                                                      Bytes("x"),
                                                      Array{},
                                                      Array{"A0", 1},
                                                      Array{Array{1}},
                                                      Dictionary{},
                                                      Dictionary{{"a", 1}},
                                                      Date{5}};
    return OneOf(values);
  }

 private:
  std::mt19937_64& random_;
};

// The properties with one or another changed to another number, to an odd value, or left out.
Dictionary Perturbed(const Dictionary& properties, int oneIn, Dice& dice) {
  Dictionary perturbed;
  for (const auto& [key, value] : properties.Entries()) {
    if (!dice.OneIn(oneIn)) {
      perturbed.Set(key.View(), value);
    } else if (dice.OneIn(2)) {
      perturbed.Set(key.View(), dice.OneIn(2) ? dice.Odd() : PropertyValue(dice.Below(4)));
    }
  }
  return perturbed;
}

// What the controllers and the personalities have in common where nothing is changed.
constexpr int PortVendor = 0x3C05;
constexpr int PortDevice = 0x12;
constexpr int RidgeVendor = 0x2A01;
constexpr int RidgeDevice = 0x310;
constexpr int Revision = 3;

RegistryEntry AddRidge(Computer& computer, int number, Dice& dice) {
  auto properties = Perturbed({{"Depth", 0},
                               {"Route String", 0},
                               {"Vendor ID", RidgeVendor},
                               {"Device ID", RidgeDevice},
                               {"Revision ID", Revision},
                               {"Device Model Name", "Slate"},
                               {"Device Model ID", 1},
                               {"Device Model Revision", 1},
                               {"Firmware Mode", dice.OneIn(2)},
                               {"ROM Version", 0x41},
                               {"EEPROM Revision", dice.OneIn(8) ? 0x45 : 5}},
                              24, dice);
  if (!dice.OneIn(200)) {
    properties.Set("UID", dice.OneIn(20) ? dice.Odd() : PropertyValue(0x100 + number));
  }
  return computer.AddThunderbolt("ridge" + std::to_string(number), std::move(properties));
}

void AddPort(Computer& computer, const std::vector<RegistryEntry>& ridges, int number, Dice& dice) {
  auto properties = Perturbed({{"Vendor ID", PortVendor},
                               {"Device ID", PortDevice},
                               {"Revision ID", Revision},
                               {"Revision", 1},
                               {"Address", dice.OneIn(6) ? 1 : 0},
                               {"Version", 0x41},
                               {"UUID", "A" + std::to_string(number)}},
                              24, dice);
  if (dice.OneIn(2)) properties.Set("RID", 4 + number);
  if (dice.OneIn(12)) properties.Set("Route String", dice.Below(2));
  const bool isBelow = !ridges.empty() && !dice.OneIn(3);
  const auto parent = isBelow ? dice.OneOf(ridges) : computer.Services();
  computer.AddService(parent, "hpm" + std::to_string(number), "QuinceHPMDevice",
                      std::move(properties));
}

void SetSwitches(Computer& computer, Dice& dice) {
  if (dice.OneIn(100)) {
    const std::vector<const char*> arguments = {
        "fernwick_bypass_usbc_updates=1", "fernwick_bypassversioncheck", "-v x=1",
        "fernwick_bypass_usbc_updates", "fernwick_bypassversioncheck=0"};
    computer.Set(computer.Options(), "boot-args", dice.OneOf(arguments));
  }
  if (dice.OneIn(40)) computer.Set(computer.Options(), "fernwick_bypassversioncheck", "1");
}

Computer MakeComputer(Dice& dice) {
  Computer computer;
  computer.SetBoard(dice.OneIn(100) ? "Zed-43" : "Zed-42",
                    static_cast<unsigned char>(dice.Below(5)));
  SetSwitches(computer, dice);
  std::vector<RegistryEntry> ridges;
  const int ridgeCount = dice.Below(5);
  for (int i = 0; i < ridgeCount; ++i) ridges.push_back(AddRidge(computer, i, dice));
  const int portCount = dice.Below(5);
  for (int i = 0; i < portCount; ++i) AddPort(computer, ridges, i, dice);
  return computer;
}

// Constraints that fit some of the controllers.
Dictionary SomeConstraints(Dice& dice) {
  static const Dictionary all = {{"Existing Min Version", 41},
                                 {"Existing Max Version", 41.06},
                                 {"Port Address", Array{0, 1}},
                                 {"RID", Array{0, 1, 4, 5}},
                                 {"MinBoardRevision", 1},
                                 {"MaxBoardRevision", 3},
                                 {"Port OTP Revision", 1},
                                 {"Port UUID", Array{"A0", "A1", "A2"}},
                                 {"Ridge UID", Array{0x100, 0x101}},
                                 {"Device Model Name", "Slate"},
                                 {"Device Model ID", Array{1, 2}},
                                 {"Device Model Revision", 1},
                                 {"Firmware Mode", 1},
                                 {"Colour", "blue"}};
  Dictionary some;
  for (const auto& [key, value] : all.Entries()) {
    if (dice.OneIn(8)) some.Set(key.View(), value);
  }
  return some;
}

PropertyValue MakePersonality(const std::string& name, Dice& dice) {
  if (dice.OneIn(30)) return dice.Odd();
  Dictionary personality = {{"Version", dice.OneIn(6) ? 41 : 42},
                            {"Port Silicon Vendor ID", PortVendor},
                            {"Port Silicon Device ID", Array{PortDevice, 0x13}},
                            {"Port Silicon Revision", Revision},
                            {"Ridge Silicon Vendor ID", RidgeVendor},
                            {"Ridge Silicon Device ID", RidgeDevice},
                            {"Ridge Silicon Revision", Array{Revision}}};
  personality.Merge(SomeConstraints(dice));
  personality = Perturbed(personality, 24, dice);
  if (!dice.OneIn(30)) personality.Set("Firmware", name + ".bin");
  if (dice.OneIn(3)) personality.Set("Priority", dice.Below(100));
  return personality;
}

PropertyValue MakeValue(const std::string& key, Dice& dice) {
  if (dice.OneIn(30)) return dice.Odd();
  if (key == "LegacyUSBC") return MakePersonality(key, dice);
  Array personalities;
  const int count = dice.Below(5);
  for (int i = 0; i < count; ++i) {
    personalities.push_back(MakePersonality(key + std::to_string(i), dice));
  }
  return personalities;
}

PropertyValue MakeConfiguration(Dice& dice) {
  if (dice.OneIn(100)) return dice.Odd();
  static const std::vector<std::string> keys = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC",
                                                "USBC", "Unknown"};
  Dictionary configuration;
  const int count = dice.Below(4);
  for (int i = 0; i < count; ++i) {
    const auto& key = dice.OneOf(keys);
    configuration.Set(key, MakeValue(key, dice));
  }
  return configuration;
}

}  // namespace

RandomPair MakeRandomPair(std::mt19937_64& random) {
  Dice dice(random);
  auto computer = MakeComputer(dice);
  auto configuration = MakeConfiguration(dice);
  return {std::move(computer), std::move(configuration), dice.OneIn(6)};
}

}  // namespace fernwick::testing
