#pragma once

#include <string>
#include <string_view>

#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// The path of the entry in the service plane: "IOService:/bridge0/ridge0". Its components are
/// names, which siblings may share. REQUIRES: the entry is in that plane.
std::string EntryPath(const Recording& recording, RegistryEntry entry);

/// The same in another plane.
std::string EntryPath(const Recording& recording, std::string_view plane, RegistryEntry entry);

}  // namespace fernwick::lab
