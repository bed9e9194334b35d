#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"

/// The reference implementation of what a recorded registry returns: the walks and
/// class chains of a recording, as plain as possible.
namespace fernwick::testing::reference {

/// Handles of a recording's entries.
using Entries = std::vector<RegistryEntry>;

/// The entry of that handle. REQUIRES: it is one of the recording's.
const RecordedEntry& EntryOf(const Recording& recording, RegistryEntry entry);

/// The entry and all below it in the plane, parents before children. REQUIRES: it is in the plane.
Entries SubtreeOf(const RecordedPlane& plane, RegistryEntry entry);

/// The class that one derives from; empty when it derives from nothing.
std::optional<std::string_view> SuperclassOf(const Recording& recording, std::string_view name);

/// Whether the class is among those on the chain up from the entry's own.
bool Conforms(const Recording& recording, RegistryEntry entry, std::string_view className);

/// The entries of the service plane that conform to the class.
Entries ServicesOfClass(const Recording& recording, std::string_view className);

}  // namespace fernwick::testing::reference
