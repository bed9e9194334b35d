#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "registry/hardware_record.h"
#include "value/number.h"

namespace fernwick {

/// A set of the types of personalities, one bit each.
using TypeSet = unsigned;

namespace Types {
inline constexpr TypeSet None = 0;
inline constexpr TypeSet LegacyThunderbolt = 1;
inline constexpr TypeSet Thunderbolt = 2;
inline constexpr TypeSet LegacyUsbc = 4;
inline constexpr TypeSet Usbc = 8;
/// Those that are matched against ports.
inline constexpr TypeSet Ports = Thunderbolt | LegacyUsbc | Usbc;
inline constexpr TypeSet All = LegacyThunderbolt | Ports;
}  // namespace Types

/// The top-level keys of a configuration that name a type, exact and case-sensitive.
namespace PersonalityType {
inline constexpr std::string_view LegacyThunderbolt = "LegacyThunderbolt";
inline constexpr std::string_view Thunderbolt = "Thunderbolt";
inline constexpr std::string_view LegacyUsbc = "LegacyUSBC";
inline constexpr std::string_view Usbc = "USBC";
}  // namespace PersonalityType

/// A type with its name.
struct NamedType {
  std::string_view name;
  TypeSet type;
};

/// All types.
inline constexpr NamedType NamedTypes[] = {
    {PersonalityType::LegacyThunderbolt, Types::LegacyThunderbolt},
    {PersonalityType::Thunderbolt, Types::Thunderbolt},
    {PersonalityType::LegacyUsbc, Types::LegacyUsbc},
    {PersonalityType::Usbc, Types::Usbc},
};

/// How a record's value is converted from the property that it comes from.
enum class Conversion {
  None,                // there is no property
  Signed32,            // the low 32 bits of a number, as a signed integer
  Bcd,                 // those, decoded as packed BCD
  LowNibble,           // the low 4 bits of a number
  NonZero,             // whether a number is not 0
  Text,                // a string as it is
  AsIs,                // any value as it is, or a fault of the run when there is none
  ThunderboltVersion,  // the real of ThunderboltFirmwareVersion, of this property and that of
                       // "Engineering Version"; without this one there is neither key
  EngineeringBits,     // bits 6 and 7 of a number
};

/// The property of a controller that a value of a record comes from.
struct PropertyOrigin {
  std::string_view property = {};  // empty: none
  Conversion conversion = Conversion::None;
};

/// Integers, both ends included.
struct IntegerRange {
  Integer lowest;
  Integer highest;
};

/// What a personality must have under a key for it to have an effect. An integer, a real and a
/// boolean are numbers.
enum class KeyKind {
  NotRead,  // a key of hardware records only
  OneNumber,
  NumberOrList,     // a number or an array of numbers
  StringOrList,     // a string or an array of strings
  ListOfStrings,    // an array of strings; a single string matches nothing
  FileName,         // a string, not empty
  Priority,         // a number, of which the low 32 bits count
  NvramDictionary,  // a dictionary: name of an NVRAM variable to its value
  NameList,         // an array of names of NVRAM variables
};

/// Whose value a match record has under a key that the personality has.
enum class MatchValue {
  OfPersonality,
  OfController,  // the key is removed when the controller has none
  ByOwnRule,     // BuildMatchRecord has a rule for this key
};

/// The facts of one key of hardware records and personalities that several parts share.
struct Key {
  std::string_view name;
  PropertyOrigin port = {};         // of a port controller
  PropertyOrigin thunderbolt = {};  // of a Thunderbolt controller, the one above a port included
  KeyKind kind = KeyKind::NotRead;
  TypeSet checkedBy = Types::None;   // the types with a requirement of this key
  TypeSet requiredBy = Types::None;  // those that need the key: without it nothing matches
                                     // ("Version": unless the version check is bypassed) or,
                                     // without "Firmware", there is no plan
  TypeSet plannedBy = Types::None;  // the types of whose matches the plan contains the value of the
                                    // personality
  MatchValue inMatch = MatchValue::OfPersonality;
};

/// Every key that a hardware record can have and every key that anything reads from a personality,
/// in the order in which an inventory reads the properties. A key of a personality that is not here
/// is copied into the match record and has no effect on what matches or on the plan.
std::span<const Key> KeySchema();

/// The key of that name, compared exactly; null when there is none.
const Key* FindKey(std::string_view name);

/// The key of that name where something reads it from a personality; null otherwise.
const Key* FindPersonalityKey(std::string_view name);

/// The numbers that a controller which a personality of the type is matched against can have under
/// the key, as its conversion limits them; empty: any number. REQUIRES: the key is a NumberOrList
/// and the type one that checks it.
std::optional<IntegerRange> NumbersOfControllers(const Key& key, TypeSet type);

/// The type that a top-level key of a configuration names, compared exactly; Types::None when it
/// names none.
TypeSet TypeNamed(std::string_view topLevelKey);

/// A property of an entry that a value was read from.
struct PropertySource {
  RegistryEntry entry;
  std::string_view property;
  std::string_view conversion;  // how the value is converted; empty: it is the property's own

  friend bool operator==(const PropertySource&, const PropertySource&) = default;
};

/// What the value under the key was read from or, where the record lacks the key, every property
/// that could have provided it: empty when there is no controller that has it, and for a key that
/// no record has. "RID" of a port is its own or else its Thunderbolt controller's; "Version" is
/// that controller's where it reports one, and then comes from two properties.
std::vector<PropertySource> SourcesOf(std::string_view key, const RecordSource& source);

}  // namespace fernwick
