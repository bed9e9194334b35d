#pragma once

#include <string>

#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// Where the entry stands in the service plane: "IOService:/bridge0/ridge0". The steps are the
/// names, which siblings may share. REQUIRES: it stands there.
std::string EntryPath(const Recording& recording, RegistryEntry entry);

}  // namespace fernwick::lab
