#pragma once

#include <optional>
#include <string>
#include <vector>

#include "personality/requirements.h"
#include "value/result.h"

namespace fernwick::lab {

/// One requirement that a personality does not meet. The values view the personality and the
/// hardware record.
struct FailedRequirement {
  const Requirement* requirement;  // a row of a type's table
  FailureReason reason;
  std::optional<PropertyValue> wanted;  // what the personality has under the key
  std::optional<PropertyValue> found;   // what the controller has, or the board's revision
};

/// All requirements of the type that the personality does not meet, in the order of the table,
/// where the tool stops at the first. What the table tests twice is there once.
std::vector<FailedRequirement> FailedRequirements(TypeSet type, Dictionary personality,
                                                  const RequirementContext& context);

/// What is wrong, with both sides, to follow the requirement's key: "wants 0 at 27:13, finds 1".
/// The location is that of the personality's value. Safe to show, on one line.
std::string FailureText(const FailedRequirement& failure,
                        const std::optional<FileLocation>& location = std::nullopt);

/// " at 27:13"; empty when no location is known.
std::string AtLocation(const std::optional<FileLocation>& location);

}  // namespace fernwick::lab
