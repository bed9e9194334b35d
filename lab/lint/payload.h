#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "lab/lint/finding.h"

namespace fernwick::lab {

/// What was found in a payload.
struct PayloadLinting {
  std::vector<Finding> findings;  // by path, then by location, then by ID
  std::size_t boards = 0;         // how many were looked at
  int status = 0;                 // LabStatus: Done; UnreadableInput when something could not be
                                  // read, or else MalformedInput when a configuration is malformed
  std::string error;  // "PATH: what is wrong" when nothing could be looked at; else empty
};

/// Looks at the boards of that name, or at all when none is named.
PayloadLinting LintPayload(const std::string& payload, std::vector<std::string> boards);

}  // namespace fernwick::lab
