#pragma once

#include <functional>
#include <string>

#include "lab/support/json_values.h"
#include "lab/survey/batch.h"
#include "platform/console.h"

namespace fernwick::lab {

/// What the result of a shard has besides its rows.
struct ShardFrame {
  std::string verb;
  std::string payload;  // the directory
  Json options;         // that change a row, without the payload
  std::function<Json()> totals = [] { return Json(nullptr); };  // is called after the last row
};

/// As RunBatch, for the shard of `options` if there is one: then what `work` prints has to be lines
/// of PrintShardRow, and the first and the last line of the result are printed, too. Fails as
/// PayloadHash as well.
int RunShardedBatch(const BatchOptions& options, const ShardFrame& frame, const BatchWork& work,
                    Console& console);

}  // namespace fernwick::lab
