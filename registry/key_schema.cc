#include "registry/key_schema.h"

#include <algorithm>
#include <limits>

namespace fernwick {
namespace {

using enum KeyKind;
using enum Conversion;
using enum MatchValue;

constexpr TypeSet PortSilicon = Types::Thunderbolt | Types::Usbc;
constexpr TypeSet RidgeSilicon = Types::Thunderbolt | Types::LegacyThunderbolt;

// clang-format off
constexpr Key Keys[] = {
    // Keys of hardware records; a personality may test all but the last.
    {.name = "RID", .port = {"RID", Signed32}, .thunderbolt = {"UID", LowNibble},
     .kind = NumberOrList, .checkedBy = PortSilicon | RidgeSilicon, .inMatch = ByOwnRule},
    {.name = "Port Silicon Vendor ID", .port = {"Vendor ID", Signed32},
     .kind = NumberOrList, .checkedBy = PortSilicon, .requiredBy = PortSilicon, .inMatch = OfController},
    {.name = "Port Silicon Device ID", .port = {"Device ID", Signed32},
     .kind = NumberOrList, .checkedBy = PortSilicon, .requiredBy = PortSilicon, .inMatch = OfController},
    {.name = "Port Silicon Revision", .port = {"Revision ID", Signed32},
     .kind = NumberOrList, .checkedBy = PortSilicon, .requiredBy = PortSilicon, .inMatch = OfController},
    {.name = "Port OTP Revision", .port = {"Revision", Signed32},
     .kind = NumberOrList, .checkedBy = PortSilicon, .inMatch = OfController},
    {.name = "Port Address", .port = {"Address", Signed32},
     .kind = NumberOrList, .checkedBy = Types::Ports, .inMatch = ByOwnRule},
    {.name = "Version", .port = {"Version", Bcd}, .thunderbolt = {"ROM Version", ThunderboltVersion},
     .kind = OneNumber, .checkedBy = Types::All, .requiredBy = Types::All, .inMatch = ByOwnRule},
    {.name = "Port UUID", .port = {"UUID", Text},
     .kind = ListOfStrings, .checkedBy = PortSilicon, .inMatch = OfController},
    {.name = "Ridge Silicon Vendor ID", .thunderbolt = {"Vendor ID", Signed32},
     .kind = NumberOrList, .checkedBy = RidgeSilicon, .requiredBy = RidgeSilicon, .inMatch = OfController},
    {.name = "Ridge Silicon Device ID", .thunderbolt = {"Device ID", Signed32},
     .kind = NumberOrList, .checkedBy = RidgeSilicon, .requiredBy = RidgeSilicon, .inMatch = OfController},
    {.name = "Ridge Silicon Revision", .thunderbolt = {"Revision ID", Signed32},
     .kind = NumberOrList, .checkedBy = RidgeSilicon, .requiredBy = RidgeSilicon, .inMatch = OfController},
    {.name = "Device Model Name", .thunderbolt = {"Device Model Name", Text},
     .kind = StringOrList, .checkedBy = Types::Thunderbolt},
    {.name = "Device Model ID", .thunderbolt = {"Device Model ID", Signed32},
     .kind = NumberOrList, .checkedBy = Types::Thunderbolt},
    {.name = "Device Model Revision", .thunderbolt = {"Device Model Revision", Signed32},
     .kind = NumberOrList, .checkedBy = Types::Thunderbolt},
    // Under "Thunderbolt" the plan uses the controller's.
    {.name = "Firmware Mode", .thunderbolt = {"Firmware Mode", NonZero},
     .kind = NumberOrList, .checkedBy = Types::Thunderbolt, .plannedBy = Types::LegacyThunderbolt,
     .inMatch = ByOwnRule},
    {.name = "Ridge UID", .thunderbolt = {"UID", AsIs},
     .kind = NumberOrList, .checkedBy = RidgeSilicon, .inMatch = OfController},
    {.name = "Engineering Version", .thunderbolt = {"EEPROM Revision", EngineeringBits}},
    // Keys of personalities only.
    {.name = "Existing Min Version", .kind = OneNumber, .checkedBy = Types::All},
    {.name = "Existing Max Version", .kind = OneNumber, .checkedBy = Types::All},
    {.name = "MinBoardRevision", .kind = OneNumber, .checkedBy = PortSilicon},
    {.name = "MaxBoardRevision", .kind = OneNumber, .checkedBy = PortSilicon},
    {.name = "Firmware", .kind = FileName, .requiredBy = Types::All, .plannedBy = Types::All},
    {.name = "Priority", .kind = Priority, .plannedBy = Types::All},
    {.name = "SetNVRAM", .kind = NvramDictionary, .plannedBy = Types::All},
    {.name = "ClearNVRAM", .kind = NameList, .plannedBy = Types::All},
};
// clang-format on

constexpr char DecodedBcd[] = "decoded as BCD";

// How the value is converted from the property's, as messages describe it.
constexpr std::string_view Describe(Conversion conversion) {
  switch (conversion) {
    case Bcd:
    case ThunderboltVersion: return DecodedBcd;
    case LowNibble: return "the low 4 bits";
    case EngineeringBits: return "bits 6 and 7";
    default: return "";
  }
}

std::optional<IntegerRange> RangeOf(Conversion conversion) {
  switch (conversion) {
    case LowNibble: return IntegerRange{0, 15};
    case NonZero: return IntegerRange{0, 1};
    case AsIs: return std::nullopt;
    default:
      return IntegerRange{std::numeric_limits<std::int32_t>::min(),
                          std::numeric_limits<std::int32_t>::max()};
  }
}

// The controller that the value was read from, for the two keys that both kinds can have.
Origin OriginOf(std::string_view key, const RecordSource& source) {
  if (key == "RID") return source.rid;
  if (key == "Version") return source.version;
  return Origin::None;
}

PropertySource SourceIn(RegistryEntry entry, const PropertyOrigin& origin) {
  return {entry, origin.property, Describe(origin.conversion)};
}

}  // namespace

std::span<const Key> KeySchema() {
  return Keys;
}

const Key* FindKey(std::string_view name) {
  const auto* found = std::ranges::find(Keys, name, &Key::name);
  return found == std::end(Keys) ? nullptr : found;
}

const Key* FindPersonalityKey(std::string_view name) {
  const auto* key = FindKey(name);
  return key == nullptr || key->kind == NotRead ? nullptr : key;
}

std::optional<IntegerRange> NumbersOfControllers(const Key& key, TypeSet type) {
  // Such a personality only matches ports below a Thunderbolt controller, and of those only
  // ports with address 0 are listed.
  if (key.name == "Port Address" && type == Types::Thunderbolt) return IntegerRange{0, 0};
  const bool isFromPort =
      type != Types::LegacyThunderbolt && key.port.conversion != Conversion::None;
  return RangeOf(isFromPort ? key.port.conversion : key.thunderbolt.conversion);
}

TypeSet TypeNamed(std::string_view topLevelKey) {
  const auto* found = std::ranges::find(NamedTypes, topLevelKey, &NamedType::name);
  return found == std::end(NamedTypes) ? Types::None : found->type;
}

std::vector<PropertySource> SourcesOf(std::string_view name, const RecordSource& source) {
  const auto* key = FindKey(name);
  if (key == nullptr) return {};
  const auto origin = OriginOf(name, source);
  std::vector<PropertySource> sources;
  if (source.port != 0 && !key->port.property.empty() && origin != Origin::Thunderbolt) {
    sources.push_back(SourceIn(source.port, key->port));
  }
  if (source.thunderbolt != 0 && !key->thunderbolt.property.empty() && origin != Origin::Port) {
    sources.push_back(SourceIn(source.thunderbolt, key->thunderbolt));
    if (key->thunderbolt.conversion == ThunderboltVersion && origin == Origin::Thunderbolt) {
      sources.push_back({source.thunderbolt, FindKey("Engineering Version")->thunderbolt.property,
                         "the low 6 bits are hundredths; 1e-9 is added"});
    }
  }
  return sources;
}

}  // namespace fernwick
