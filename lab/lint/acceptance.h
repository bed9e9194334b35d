#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/lint/subject.h"
#include "lab/support/controller_values.h"
#include "personality/requirements.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

/// Why no controller can have a value that equals `element`, a single value or an element of a list
/// that a personality of the type has under the key, as in "it is no number". Empty when one can.
std::string UnmatchableReason(const PropertyValue& element, const Key& key, TypeSet type);

/// The requirements of the type that the controller's value equals one of the personality's: each
/// key once, in the order of the type's table.
std::vector<const Requirement*> SetRequirements(TypeSet type);

/// The one of them with that key; null when there is none.
const Requirement* FindSetRequirement(TypeSet type, std::string_view key);

/// The values that a personality accepts under one key, sorted, each once.
using AcceptedValues = std::vector<const PropertyValue*>;

/// The order in which they are sorted: of numbers by their value, of strings by their bytes.
/// REQUIRES: both are numbers other than NaN or both are strings.
bool IsBefore(const PropertyValue* a, const PropertyValue* b);

/// What a controller, and the computer, must be for a personality to match.
struct Acceptance {
  const PropertyValue* version = nullptr;  // the image's
  const PropertyValue* minimum = nullptr;  // of the installed version; null without a limit, as is
  const PropertyValue* maximum = nullptr;  // NaN
  VersionScales scales;
  RevisionRange revisions;
  std::vector<std::optional<AcceptedValues>> sets;  // by SetRequirements; empty: no constraint

  /// Whether any controller is accepted, without the version check bypassed.
  bool acceptsAny = false;
};

/// What the personality accepts. It views the personality's values, which have to outlive it.
Acceptance AcceptanceOf(const LocatedPersonality& personality);

/// Whether `wide` accepts every controller that `narrow` accepts, with the version check bypassed
/// or not. Sound, but not complete: false does not say that there is a controller that only
/// `narrow` accepts. REQUIRES: both are of one type and accept any.
bool Covers(const Acceptance& wide, const Acceptance& narrow);

}  // namespace fernwick::lab
