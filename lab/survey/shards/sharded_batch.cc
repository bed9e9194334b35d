#include "lab/survey/shards/sharded_batch.h"

#include "lab/support/messages.h"
#include "lab/survey/shards/payload_hash.h"
#include "lab/survey/shards/shard_result.h"

namespace fernwick::lab {

int RunShardedBatch(const BatchOptions& options, const ShardFrame& frame, const BatchWork& work,
                    Console& console) {
  const auto& shard = options.limits.shard;
  if (!shard) return RunBatch(options, work, console);
  const auto hash = PayloadHash(frame.payload);
  if (!hash) return PrintError(hash.Error());
  auto header = frame.options;
  header["payload"] = *hash;
  console.Write(PrintShardHeader({*shard, frame.verb, header}));
  BatchSummary summary;
  const int status = RunBatch(options, work, console, &summary);
  if (status != LabStatus::Done) return status;
  console.Write(PrintShardEnd({summary.rows, summary.computers, summary.names, frame.totals()}));
  return LabStatus::Done;
}

}  // namespace fernwick::lab
