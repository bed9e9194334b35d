#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lab/lint/rules/rules.h"
#include "lab/lint/subject.h"

namespace fernwick::lab {

/// What is the same about a violation of a rule in a later version of a payload, in which lines and
/// other personalities were added, removed or moved. Two violations may have equal identities.
struct FindingIdentity {
  const LintRule* rule;
  std::string_view path;      // relative to the payload
  std::uint64_t personality;  // IdentityOf the one that it is in; 0 when it is in none
  std::string_view message;   // the locations in it do not count
};

/// What is the same about a personality in a later version of a payload: its type and the values of
/// the keys that say for which controllers it is. The version, its window, the board revisions and
/// what the plan contains do not count.
std::uint64_t IdentityOf(const LocatedPersonality& personality);

/// A hash of the identity, which HashText shows. It is the same on every computer.
std::uint64_t FingerprintOf(const FindingIdentity& identity);

}  // namespace fernwick::lab
