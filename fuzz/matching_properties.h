#pragma once

#include <string>

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// Holds the matcher over the computer to what its plain second implementation makes of the same
/// controllers: the records and every diagnostic, with and without the version check.
/// `configuration` is what stands in the directory for the computer's board. REQUIRES: taking the
/// inventories that the configuration asks for does not end abnormally.
void HoldMatching(const Recording& recording, const std::string& personalitiesDirectory,
                  const Dictionary& configuration);

}  // namespace fernwick::fuzz
