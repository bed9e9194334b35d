#pragma once

#include <string_view>

#include "personality/personality.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// A personality that applies, overlaid with the values of the controller that it applies to and
/// labelled with its "Personality Type".
using MatchRecord = Dictionary;

/// Builds the record of a personality found under `type` and a controller that passed its check.
/// Keys that describe the controller take its values; all others stay as the file has them.
MatchRecord BuildMatchRecord(const Personality& personality, const HardwareRecord& controller,
                             std::string_view type);

}  // namespace fernwick
