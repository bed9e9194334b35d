#include "personality/personality_keys.h"

#include <algorithm>

#include "personality/personality.h"

namespace fernwick {
namespace {

using enum KeyKind;

constexpr TypeSet PortSilicon = Types::Thunderbolt | Types::Usbc;
constexpr TypeSet RidgeSilicon = Types::Thunderbolt | Types::LegacyThunderbolt;

// clang-format off
constexpr PersonalityKey Keys[] = {
    {"Version", OneNumber, Types::All, Types::All, Types::None},
    {"Existing Min Version", OneNumber, Types::All, Types::None, Types::None},
    {"Existing Max Version", OneNumber, Types::All, Types::None, Types::None},
    {"Port Address", NumberOrList, Types::Ports, Types::None, Types::None},
    {"RID", NumberOrList, PortSilicon | RidgeSilicon, Types::None, Types::None},
    {"MinBoardRevision", OneNumber, PortSilicon, Types::None, Types::None},
    {"MaxBoardRevision", OneNumber, PortSilicon, Types::None, Types::None},
    {"Port Silicon Vendor ID", NumberOrList, PortSilicon, PortSilicon, Types::None},
    {"Port Silicon Device ID", NumberOrList, PortSilicon, PortSilicon, Types::None},
    {"Port Silicon Revision", NumberOrList, PortSilicon, PortSilicon, Types::None},
    {"Port OTP Revision", NumberOrList, PortSilicon, Types::None, Types::None},
    {"Port UUID", ListOfStrings, PortSilicon, Types::None, Types::None},
    {"Ridge Silicon Vendor ID", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None},
    {"Ridge Silicon Device ID", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None},
    {"Ridge Silicon Revision", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None},
    {"Ridge UID", NumberOrList, RidgeSilicon, Types::None, Types::None},
    {"Device Model Name", StringOrList, Types::Thunderbolt, Types::None, Types::None},
    {"Device Model ID", NumberOrList, Types::Thunderbolt, Types::None, Types::None},
    {"Device Model Revision", NumberOrList, Types::Thunderbolt, Types::None, Types::None},
    // Under "Thunderbolt" the plan has it from the controller.
    {"Firmware Mode", NumberOrList, Types::Thunderbolt, Types::None, Types::LegacyThunderbolt},
    {"Firmware", FileName, Types::None, Types::All, Types::All},
    {"Priority", Priority, Types::None, Types::None, Types::All},
    {"SetNVRAM", NvramDictionary, Types::None, Types::None, Types::All},
    {"ClearNVRAM", NameList, Types::None, Types::None, Types::All},
};
// clang-format on

}  // namespace

TypeSet TypeNamed(std::string_view topLevelKey) {
  if (topLevelKey == PersonalityType::LegacyThunderbolt) return Types::LegacyThunderbolt;
  if (topLevelKey == PersonalityType::Thunderbolt) return Types::Thunderbolt;
  if (topLevelKey == PersonalityType::LegacyUsbc) return Types::LegacyUsbc;
  if (topLevelKey == PersonalityType::Usbc) return Types::Usbc;
  return Types::None;
}

std::span<const PersonalityKey> PersonalityKeys() {
  return Keys;
}

const PersonalityKey* FindPersonalityKey(std::string_view name) {
  const auto* found = std::ranges::find(Keys, name, &PersonalityKey::name);
  return found == std::end(Keys) ? nullptr : found;
}

}  // namespace fernwick
