#pragma once

#include "registry/host/host_registry.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

/// Which properties of a computer are recorded. A device tree and the EFI variables contain private
/// data that no run needs.
enum class RecordedProperties { ThoseOfTheTool, All };

/// The registry as a recording, which is always well-formed. With the properties that the tool
/// reads alone, it has no entries but the roots, "options" and those that have such a property
/// or lead to one that has. A run over it ends as a run over the registry. Owns all that it has.
PropertyList RecordHost(HostRegistry& registry, RecordedProperties recorded);

}  // namespace fernwick::lab
