#pragma once

#include "lab/support/json_values.h"
#include "lab/survey/coverage/board_coverage.h"

namespace fernwick::lab {

/// The counts of a board, without its personalities.
Json CountsToJson(const BoardCoverage& coverage);

/// Adds such counts to the coverage of the same configuration. Returns false, with a part of the
/// counts added, where they are of another one or are no counts.
bool AddCountsOf(const Json& counts, BoardCoverage& coverage);

}  // namespace fernwick::lab
