#pragma once

#include "value/parse_outcome.h"
#include "value/shared_bytes.h"
#include "value/value_places.h"

namespace fernwick {

/// Reads a binary property list. Counts, offsets and sizes are checked before anything is allocated
/// for them; an object may be shared, but what it stands for counts each time it is reached,
/// against 2^24 values in all. ASCII strings and data view the file and share its buffer.
ParseOutcome ParseBinaryPropertyList(const SourceBuffer& file, PlaceRecorder* places = nullptr);

}  // namespace fernwick
