#pragma once

#include <string>

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// Checks the matcher over the computer against its plain second implementation over the same
/// controllers: the records and every diagnostic, with and without the version check.
/// `configuration` is the one in the directory for the computer's board. REQUIRES: no inventory
/// that the configuration asks for is a fault.
void CheckMatching(const Recording& recording, const std::string& personalitiesDirectory,
                   Dictionary configuration);

}  // namespace fernwick::fuzz
