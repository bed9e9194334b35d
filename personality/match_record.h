#pragma once

#include <string_view>

#include "personality/personality.h"
#include "registry/hardware_record.h"

namespace fernwick {

/// A personality that applies, overlaid with the values of the controller that it applies to and
/// labelled with its "Personality Type". It views what the two view. Unread keys are copied from
/// the personality as well, except for those that `WithoutUnreadKeys` has removed.
using MatchRecord = Record;

/// Builds the record of a personality found under `type` and a controller that passed its check.
/// The value of each key is the personality's, except:
///
///   "Personality Type"               `type`
///   "RID"                            the controller's
///   "Version"                        the controller's, where the personality has no number
///   "Port Address"                   the controller's, where the controller has a "RID"
///   silicon, "Port OTP Revision",    the controller's, where the personality has the key: those
///     "Port UUID", "Ridge UID"       that the schema marks MatchValue::OfController
///   "Firmware Mode"                  the controller's, under "Thunderbolt" and where it has one
///
/// A key that should have the controller's value is removed where the controller has none. `type`
/// outlives the record.
MatchRecord BuildMatchRecord(const Personality& personality, const HardwareRecord& controller,
                             std::string_view type);

}  // namespace fernwick
