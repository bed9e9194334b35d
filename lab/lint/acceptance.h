#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "lab/lint/subject.h"
#include "lab/support/controller_values.h"
#include "personality/requirements.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

/// Why no controller can have a value that equals `element`, a single value or an element of a list
/// that a personality of the type has under the key, as in "it is not a number". Empty when one
/// can.
std::string UnmatchableReason(const PropertyValue& element, const Key& key, TypeSet type);

/// The requirement of the type that the controller's value under the key equals one of the
/// personality's; null when there is none.
const Requirement* FindSetRequirement(TypeSet type, std::string_view key);

/// The keys of which any type has such a requirement, in the order of the schema.
const std::vector<const Key*>& SetKeys();

/// The index of the key in SetKeys(). REQUIRES: it is there.
std::size_t SetIndexOf(std::string_view key);

/// An order of values: numbers by their value, then strings by their bytes. REQUIRES: each is a
/// string or a number other than NaN.
bool IsBefore(const PropertyValue* a, const PropertyValue* b);

/// A number for each value, the same for equal ones, sorted, each once.
using ValueSet = std::vector<std::uint32_t>;

/// The sets of values that the personalities of a configuration accept. Equal sets are one object,
/// so that they are compared by their addresses. It views the values, which have to outlive it.
class ValueSets {
 public:
  /// The set of the values, which stays valid as long as this. REQUIRES: as IsBefore.
  const ValueSet* SetOf(const std::vector<const PropertyValue*>& values);

  /// The first of the values with that number.
  const PropertyValue& ValueOf(std::uint32_t number) const { return *values_[number]; }

 private:
  struct Before {
    bool operator()(const PropertyValue* a, const PropertyValue* b) const { return IsBefore(a, b); }
  };

  std::map<const PropertyValue*, std::uint32_t, Before> numbers_;
  std::vector<const PropertyValue*> values_;
  std::set<ValueSet> sets_;
};

/// What a controller, and the computer, must be for a personality to match.
struct Acceptance {
  VersionWindow window;  // of the installed version, always with the image's version
  VersionScales scales;
  RevisionRange revisions;
  std::vector<const ValueSet*> sets;  // by SetKeys; null: no constraint

  /// Whether any controller is accepted, without the version check bypassed. If not, there are no
  /// sets.
  bool acceptsAny = false;
};

/// What the personality accepts. It views the personality's values and the sets, which have to
/// outlive it.
Acceptance AcceptanceOf(const LocatedPersonality& personality, ValueSets& sets);

/// Whether `wide` accepts every installed version and board revision that `narrow` accepts, with
/// the version check bypassed or not. REQUIRES: both accept any.
bool CoversWindow(const Acceptance& wide, const Acceptance& narrow);

/// Whether `wide` accepts every controller that `narrow` accepts, with the version check bypassed
/// or not. Sound, but not complete: false does not say that there is a controller that only
/// `narrow` accepts. REQUIRES: both are of one type and accept any.
bool Covers(const Acceptance& wide, const Acceptance& narrow);

/// Whether the sets have a common value.
bool HaveCommonValue(const ValueSet& a, const ValueSet& b);

/// A personality that can match and is not shadowed, with what it accepts.
struct LivePersonality {
  const LocatedPersonality* personality;
  Acceptance acceptance;
};

}  // namespace fernwick::lab
