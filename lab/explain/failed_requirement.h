#pragma once

#include <compare>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "personality/requirements.h"
#include "value/result.h"

namespace fernwick::lab {

/// One requirement that a personality does not meet. The values view the personality and the
/// hardware record. Of a version bound without `found` no version is known to compare it with, and
/// none that the controller could report would meet it.
struct FailedRequirement {
  const Requirement* requirement;  // a row of a type's table
  FailureReason reason;
  std::optional<PropertyValue> wanted;  // what the personality has under the key
  std::optional<PropertyValue> found;   // what the controller has, or the board's revision
};

/// All requirements of the type that the personality does not meet, in the order of the table,
/// where the tool stops at the first. What the table tests twice is listed once.
///
/// Where the controller reports no version, the tool tests no bound. Then a bound is listed that
/// fails for every version that the controller could report, as a maximum of -1 does, and "Version"
/// is not newer if it is newer than none of them: the pair matches once everything that is listed
/// is fixed.
std::vector<FailedRequirement> FailedRequirements(TypeSet type, Dictionary personality,
                                                  const RequirementContext& context);

/// Whether the version and the bounds of the personality, those that are numbers, allow a version
/// that the controller could report.
bool AllowsAnyVersion(TypeSet type, Dictionary personality, Dictionary hardware);

/// How far a pair is from a match; less is nearer. What no controller could meet counts first. Then
/// what a controller is counts before its version and the board's revision, so that another port
/// with the right version is farther than the right port with a version that is too new.
struct Distance {
  std::size_t neverMet = 0;      // requirements that the personality itself makes impossible
  std::size_t ofController = 0;  // requirements of what the controller is
  std::size_t whole = 0;         // all that fail

  friend auto operator<=>(const Distance&, const Distance&) = default;
};

Distance DistanceOf(std::span<const FailedRequirement> failures);

/// Where a value of a configuration is from: a location of the file or, where the option is not
/// empty, an option of the command line.
struct ValueOrigin : FileLocation {
  ValueOrigin(const FileLocation& location) : FileLocation(location) {}  // NOLINT: it is one
  explicit ValueOrigin(std::string_view byOption) : option(byOption) {}

  std::string_view option = {};
};

/// What is wrong, with both sides, to follow the requirement's key: "wants 0 at 27:13, finds 1".
/// The location is that of the personality's value. Safe to show, on one line.
std::string FailureText(const FailedRequirement& failure,
                        const std::optional<ValueOrigin>& location = std::nullopt);

/// " at 27:13", " by --personality"; empty when no location is known.
std::string AtLocation(const std::optional<ValueOrigin>& location);

}  // namespace fernwick::lab
