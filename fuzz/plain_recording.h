#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// What can plainly be read in a recording, without the registry that is made of it.

/// Handles of a recording's entries.
using Entries = std::vector<RegistryEntry>;

/// The entry of that handle. REQUIRES: it is one of the recording's.
const RecordedEntry& EntryOf(const Recording& recording, RegistryEntry entry);

/// The entry and all below it in the plane, parents before children. REQUIRES: it stands there.
Entries SubtreeOf(const RecordedPlane& plane, RegistryEntry entry);

/// The class that one derives from; none when it derives from nothing.
std::optional<std::string> SuperclassOf(const Recording& recording, std::string_view name);

/// Whether the class is among those on the chain up from the entry's own.
bool Conforms(const Recording& recording, RegistryEntry entry, std::string_view className);

/// The entries of the service plane that conform to the class.
Entries ServicesOfClass(const Recording& recording, std::string_view className);

}  // namespace fernwick::fuzz
