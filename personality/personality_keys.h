#pragma once

#include <span>
#include <string_view>

namespace fernwick {

/// A set of the types of personalities, one bit each.
using TypeSet = unsigned;

namespace Types {
inline constexpr TypeSet None = 0;
inline constexpr TypeSet LegacyThunderbolt = 1;
inline constexpr TypeSet Thunderbolt = 2;
inline constexpr TypeSet LegacyUsbc = 4;
inline constexpr TypeSet Usbc = 8;
/// Those that are held against ports.
inline constexpr TypeSet Ports = Thunderbolt | LegacyUsbc | Usbc;
inline constexpr TypeSet All = LegacyThunderbolt | Ports;
}  // namespace Types

/// The type that a top-level key of a configuration names, exactly; Types::None when it names none.
TypeSet TypeNamed(std::string_view topLevelKey);

/// What a personality has to hold under a key for it to have an effect. An integer, a real and a
/// boolean are numbers.
enum class KeyKind {
  OneNumber,
  NumberOrList,     // a number or an array of numbers
  StringOrList,     // a string or an array of strings
  ListOfStrings,    // an array of strings; a single string matches nothing
  FileName,         // a string, not empty
  Priority,         // a number, of which the low 32 bits count
  NvramDictionary,  // a dictionary: name of an NVRAM variable to its value
  NameList,         // an array of names of NVRAM variables
};

/// A key that a personality may have, and who reads it.
struct PersonalityKey {
  std::string_view name;
  KeyKind kind;
  TypeSet checkedBy;   // the types whose requirement check reads it
  TypeSet requiredBy;  // those that cannot do without: nothing matches ("Version": unless the
                       // version check is bypassed) or, without "Firmware", there is no plan
  TypeSet plannedBy;   // the types of whose matches the plan takes it from the personality
};

/// Every key that anything reads from a personality. A key that is not here is carried into the
/// match record and has no effect on what matches or on the plan.
std::span<const PersonalityKey> PersonalityKeys();

/// The key of that name, exactly; null when nothing reads it.
const PersonalityKey* FindPersonalityKey(std::string_view name);

}  // namespace fernwick
