#pragma once

#include <string_view>

#include "personality/personality.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// A personality that applies, overlaid with the values of the controller that it applies to and
/// labelled with its "Personality Type".
/// It views what the two view.
using MatchRecord = Record;

/// Builds the record of a personality found under `type` and a controller that passed its check.
/// Keys that describe the controller have its values, or are removed where it has none: "RID", what
/// the personality names of silicon, UUID and unique id, "Port Address" together with a "RID",
/// "Version" where the personality's is no number, and under "Thunderbolt" a "Firmware Mode" that
/// it has. All others stay as the file has them. `type` outlives the record.
MatchRecord BuildMatchRecord(const Personality& personality, const HardwareRecord& controller,
                             std::string_view type);

}  // namespace fernwick
