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
    {"Version", OneNumber, Types::All, Types::All, Types::None,
     "version of the firmware image, newer than the installed one"},
    {"Existing Min Version", OneNumber, Types::All, Types::None, Types::None,
     "lowest installed version that may be updated"},
    {"Existing Max Version", OneNumber, Types::All, Types::None, Types::None,
     "highest installed version that may be updated"},
    {"Port Address", NumberOrList, Types::Ports, Types::None, Types::None,
     "addresses of port controllers"},
    {"RID", NumberOrList, PortSilicon | RidgeSilicon, Types::None, Types::None,
     "RIDs of controllers"},
    {"MinBoardRevision", OneNumber, PortSilicon, Types::None, Types::None,
     "lowest board revision"},
    {"MaxBoardRevision", OneNumber, PortSilicon, Types::None, Types::None,
     "highest board revision"},
    {"Port Silicon Vendor ID", NumberOrList, PortSilicon, PortSilicon, Types::None,
     "vendors of the port silicon"},
    {"Port Silicon Device ID", NumberOrList, PortSilicon, PortSilicon, Types::None,
     "devices of the port silicon"},
    {"Port Silicon Revision", NumberOrList, PortSilicon, PortSilicon, Types::None,
     "revisions of the port silicon"},
    {"Port OTP Revision", NumberOrList, PortSilicon, Types::None, Types::None,
     "OTP revisions of the port silicon"},
    {"Port UUID", ListOfStrings, PortSilicon, Types::None, Types::None,
     "UUIDs of port controllers"},
    {"Ridge Silicon Vendor ID", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None,
     "vendors of the Thunderbolt silicon"},
    {"Ridge Silicon Device ID", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None,
     "devices of the Thunderbolt silicon"},
    {"Ridge Silicon Revision", NumberOrList, RidgeSilicon, RidgeSilicon, Types::None,
     "revisions of the Thunderbolt silicon"},
    {"Ridge UID", NumberOrList, RidgeSilicon, Types::None, Types::None,
     "unique ids of Thunderbolt controllers"},
    {"Device Model Name", StringOrList, Types::Thunderbolt, Types::None, Types::None,
     "model names of Thunderbolt controllers"},
    {"Device Model ID", NumberOrList, Types::Thunderbolt, Types::None, Types::None,
     "model ids of Thunderbolt controllers"},
    {"Device Model Revision", NumberOrList, Types::Thunderbolt, Types::None, Types::None,
     "model revisions of Thunderbolt controllers"},
    // Under "Thunderbolt" the plan has it from the controller.
    {"Firmware Mode", NumberOrList, Types::Thunderbolt, Types::None, Types::LegacyThunderbolt,
     "firmware modes of Thunderbolt controllers; for the plan of a legacy one, how to flash"},
    {"Firmware", FileName, Types::None, Types::All, Types::All,
     "file name of the firmware image"},
    {"Priority", Priority, Types::None, Types::None, Types::All,
     "launch priority; the smallest of all matches holds, absent counts as 0"},
    {"SetNVRAM", NvramDictionary, Types::None, Types::None, Types::All,
     "NVRAM variables to set"},
    {"ClearNVRAM", NameList, Types::None, Types::None, Types::All,
     "NVRAM variables to remove"},
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
