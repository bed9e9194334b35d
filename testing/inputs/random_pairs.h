#pragma once

#include <random>

#include "testing/computer.h"
#include "value/property_value.h"

namespace fernwick::testing {

/// A computer of the board "Zed-42" and a configuration for it, similar enough that every outcome
/// of a personality and a controller occurs.
struct RandomPair {
  Computer computer;
  PropertyValue configuration;
  bool bypassVersion;
};

/// The same pairs from the same state of the generator, on every platform.
RandomPair MakeRandomPair(std::mt19937_64& random);

}  // namespace fernwick::testing
