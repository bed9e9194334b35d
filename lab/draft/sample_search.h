#pragma once

#include <cstddef>
#include <string>

#include "lab/lint/subject.h"
#include "registry/recorded_registry.h"
#include "value/result.h"

namespace fernwick::lab {

/// No more than this many earlier personalities are avoided at once.
inline constexpr std::size_t MaxObstacles = 128;

/// The board whose configuration is sampled.
struct SampledBoard {
  const LintSubject& configuration;
  std::string name;  // its identifier
};

/// The smallest recording of a computer of the board whose one controller matches the personality,
/// by its index in the array of the type, and no earlier one: a run of the tool over it says so. Or
/// why there is none, or none was found within the limits, as in "it can never match: ...". The
/// recording views the configuration.
Result<Recording, std::string> FindSample(const SampledBoard& board, const LocatedType& type,
                                          std::size_t index);

/// How many personalities the type has, also those that are no dictionaries; 0 where the value has
/// another shape.
std::size_t CountPersonalities(const LocatedType& type);

}  // namespace fernwick::lab
