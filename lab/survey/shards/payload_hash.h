#pragma once

#include <string>

#include "lab/support/messages.h"
#include "value/result.h"

namespace fernwick::lab {

/// A hash of the configurations of a payload, with the names of their boards: equal for copies of
/// it in other directories. Images are not part of it. Reads one configuration at a time. Fails as
/// BoardsOf, and for lack of memory or descriptors.
Result<std::string, LabError> PayloadHash(const std::string& payload);

}  // namespace fernwick::lab
