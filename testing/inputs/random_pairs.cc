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

  // A value of a kind that fits rarely or never.
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
                                                      Array(),
                                                      List({"A0", 1}),
                                                      List({List({1})}),
                                                      Dictionary(),
                                                      Dict({{"a", 1}}),
                                                      Date{5}};
    return OneOf(values);
  }

 private:
  std::mt19937_64& random_;
};

// The properties with one or another changed to another number, to an odd value, or left out.
Record RandomlyChanged(const Record& properties, int oneIn, Dice& dice) {
  Record perturbed;
  for (const auto& [key, value] : properties.Entries()) {
    if (!dice.OneIn(oneIn)) {
      perturbed.Set(key, value);
    } else if (dice.OneIn(2)) {
      perturbed.Set(key, dice.OneIn(2) ? dice.Odd() : PropertyValue(dice.Below(4)));
    }
  }
  return perturbed;
}

// The values that controllers and personalities share unless they are changed.
constexpr int PortVendor = 0x3C05;
constexpr int PortDevice = 0x12;
constexpr int RidgeVendor = 0x2A01;
constexpr int RidgeDevice = 0x310;
constexpr int Revision = 3;

RegistryEntry AddRidge(Computer& computer, int number, Dice& dice) {
  auto properties = RandomlyChanged({{"Depth", 0},
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
  return computer.AddThunderbolt("ridge" + std::to_string(number), properties);
}

void AddPort(Computer& computer, const std::vector<RegistryEntry>& ridges, int number, Dice& dice) {
  auto properties = RandomlyChanged({{"Vendor ID", PortVendor},
                                     {"Device ID", PortDevice},
                                     {"Revision ID", Revision},
                                     {"Revision", 1},
                                     {"Address", dice.OneIn(6) ? 1 : 0},
                                     {"Version", 0x41},
                                     {"UUID", Kept("A" + std::to_string(number))}},
                                    24, dice);
  if (dice.OneIn(2)) properties.Set("RID", 4 + number);
  if (dice.OneIn(12)) properties.Set("Route String", dice.Below(2));
  const bool isBelow = !ridges.empty() && !dice.OneIn(3);
  const auto parent = isBelow ? dice.OneOf(ridges) : computer.Services();
  computer.AddService(parent, "hpm" + std::to_string(number), "QuinceHPMDevice", properties);
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
Record SomeConstraints(Dice& dice) {
  static const Record all = {{"Existing Min Version", 41},
                             {"Existing Max Version", 41.06},
                             {"Port Address", List({0, 1})},
                             {"RID", List({0, 1, 4, 5})},
                             {"MinBoardRevision", 1},
                             {"MaxBoardRevision", 3},
                             {"Port OTP Revision", 1},
                             {"Port UUID", List({"A0", "A1", "A2"})},
                             {"Ridge UID", List({0x100, 0x101})},
                             {"Device Model Name", "Slate"},
                             {"Device Model ID", List({1, 2})},
                             {"Device Model Revision", 1},
                             {"Firmware Mode", 1},
                             {"Colour", "blue"}};
  Record some;
  for (const auto& [key, value] : all.Entries()) {
    if (dice.OneIn(8)) some.Set(key, value);
  }
  return some;
}

PropertyValue MakePersonality(const std::string& name, Dice& dice) {
  if (dice.OneIn(30)) return dice.Odd();
  Record personality = {{"Version", dice.OneIn(6) ? 41 : 42},
                        {"Port Silicon Vendor ID", PortVendor},
                        {"Port Silicon Device ID", List({PortDevice, 0x13})},
                        {"Port Silicon Revision", Revision},
                        {"Ridge Silicon Vendor ID", RidgeVendor},
                        {"Ridge Silicon Device ID", RidgeDevice},
                        {"Ridge Silicon Revision", List({Revision})}};
  personality.Merge(SomeConstraints(dice));
  personality = RandomlyChanged(personality, 24, dice);
  if (!dice.OneIn(30)) personality.Set("Firmware", Kept(name + ".bin"));
  if (dice.OneIn(3)) personality.Set("Priority", dice.Below(100));
  return Dict(personality);
}

PropertyValue MakeValue(const std::string& key, Dice& dice) {
  if (dice.OneIn(30)) return dice.Odd();
  if (key == "LegacyUSBC") return MakePersonality(key, dice);
  std::vector<PropertyValue> personalities;
  const int count = dice.Below(5);
  for (int i = 0; i < count; ++i) {
    personalities.push_back(MakePersonality(key + std::to_string(i), dice));
  }
  return List(personalities);
}

PropertyValue MakeConfiguration(Dice& dice) {
  if (dice.OneIn(100)) return dice.Odd();
  static const std::vector<std::string> keys = {"LegacyThunderbolt", "Thunderbolt", "LegacyUSBC",
                                                "USBC", "Unknown"};
  Record configuration;
  const int count = dice.Below(4);
  for (int i = 0; i < count; ++i) {
    const auto& key = dice.OneOf(keys);
    configuration.Set(key, MakeValue(key, dice));
  }
  return Dict(configuration);
}

}  // namespace

RandomPair MakeRandomPair(std::mt19937_64& random) {
  Dice dice(random);
  auto computer = MakeComputer(dice);
  auto configuration = MakeConfiguration(dice);
  return {computer, configuration, dice.OneIn(6)};
}

}  // namespace fernwick::testing
