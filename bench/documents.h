#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "value/property_list_reader.h"

namespace fernwick::bench {

/// A property list to read, in both serialisations.
struct Document {
  std::string name;  // "recording of 20 MB"
  std::string xml;
  std::string binary;
};

/// A configuration of so many personalities, divided among the four types.
PropertyList Configuration(std::size_t personalities, std::uint64_t seed);

/// A recorded computer with so many entries below the root of its registry, rounded up to a
/// multiple of 200.
PropertyList Recording(std::size_t entries, std::uint64_t seed);

/// A configuration and a recording, whose XML is about `megabytes` (of 10^6 bytes) long each. The
/// same in every run.
std::vector<Document> DocumentsOf(std::size_t megabytes);

}  // namespace fernwick::bench
