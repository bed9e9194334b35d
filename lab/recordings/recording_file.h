#pragma once

#include <string>

#include "lab/support/messages.h"
#include "registry/recorded_registry.h"
#include "value/property_list_reader.h"
#include "value/property_value.h"
#include "value/result.h"

namespace fernwick::lab {

/// Reads a recording, which is refused whole when it breaks a rule of the format. Stores its
/// serialisation in `form`, which may be null.
Result<Recording, LabError> LoadRecording(const std::string& path, Serialisation* form = nullptr);

/// Writes a recording whole or not at all, in XML with a newline at the end or in binary. Returns
/// the exit status: LabStatus::Done, or OutputLost after a line on standard error.
int WriteRecording(const std::string& path, const PropertyValue& value, Serialisation form);

}  // namespace fernwick::lab
