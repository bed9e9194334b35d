#pragma once

#include <vector>

#include "lab/explain/explanation.h"
#include "lab/support/configuration_file.h"
#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// What the matcher decided under each top-level key, with the locations of everything; empty when
/// the configuration is not a dictionary. `file` is null when no location is known. `boardRevision`
/// is the property of the board's revision; `trial` is what the run was made with. What is returned
/// views the run and the recording. REQUIRES: the run loaded a configuration.
std::vector<ExplainedKey> ExplainKeys(const ToolRun& run, const ConfigurationFile* file,
                                      const Recording& recording,
                                      const ExplainedSource& boardRevision,
                                      const ExplainFilter& filter, const ExplainedTrial& trial);

/// The order in which pairs are shown: matches, then rejections, the nearest to a match first;
/// otherwise that of the file.
bool IsShownBefore(const ExplainedPair& a, const ExplainedPair& b);

/// The value of a property of an entry of the service plane.
ExplainedSource LookUpSource(const Recording& recording, const PropertySource& source);

}  // namespace fernwick::lab
