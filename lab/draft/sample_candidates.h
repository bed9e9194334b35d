#pragma once

#include <string_view>
#include <vector>

#include "lab/draft/avoidance.h"
#include "lab/draft/sample_controller.h"
#include "lab/lint/acceptance.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

/// A controller that is searched for: one that a personality accepts and none of some earlier ones.
struct SampleTask {
  TypeSet type;
  const Acceptance& wanted;                  // accepts any
  std::vector<const Acceptance*> obstacles;  // of the earlier ones, which accept any, too
  ValueSets& sets;                           // that they view
};

/// The shapes that a controller of a personality of the type may have, those with the fewest
/// entries and properties first.
std::vector<SampleShape> ShapesFor(TypeSet type, const Acceptance& wanted);

/// Searches for the controller among those of the shape. Every value that matters is a candidate:
/// where the search is complete and finds none, there is none. Nothing is chosen under a key that
/// the wanted personality does not constrain: a controller that lacks the key is rejected by every
/// personality that constrains it. `steps` as FindAvoidance.
struct SampleAttempt {
  std::optional<SampleController> controller = {};  // views the values of the personalities
  bool isCutShort = false;
};
SampleAttempt FindController(const SampleTask& task, const SampleShape& shape, std::size_t& steps);

}  // namespace fernwick::lab
