#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "lab/lint/finding.h"

namespace fernwick::lab {

/// The result of linting a payload, apart from the findings.
struct PayloadLinting {
  std::size_t boards = 0;  // how many were looked at
  int status = 0;          // LabStatus: Done; UnreadableInput when something could not be read, or
                           // else MalformedInput when a configuration is malformed
  std::string error;       // "PATH: what is wrong" when nothing could be looked at, or memory or
                           // descriptors were lacking (OutOfResources); else empty
};

/// Receives findings.
using FindingSink = std::function<void(Finding)>;

/// Looks at the boards of that name, or at all when none is named. Passes on what is found in the
/// payload as a whole and then in each board, by path, then by location, then by ID; nothing when
/// nothing could be looked at. `filter` may be empty.
PayloadLinting LintPayload(const std::string& payload, std::vector<std::string> boards,
                           const FindingSink& sink, const FindingFilter& filter = {});

}  // namespace fernwick::lab
