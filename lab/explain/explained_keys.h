#pragma once

#include <vector>

#include "lab/explain/explanation.h"
#include "lab/support/configuration_file.h"
#include "personality/match_recorder.h"
#include "registry/record_keys.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// What the matcher decided under each top-level key, with the places of everything. `file` is null
/// when no place is known. `boardRevision` is the property that gives the board's revision.
/// None when the configuration is not a dictionary. REQUIRES: one was loaded.
std::vector<ExplainedKey> ExplainKeys(const MatchRecorder& matching, const ConfigurationFile* file,
                                      const Recording& recording,
                                      const ExplainedSource& boardRevision);

/// What a property of an entry of the service plane holds.
ExplainedSource LookUpSource(const Recording& recording, const PropertySource& source);

}  // namespace fernwick::lab
