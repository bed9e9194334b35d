#pragma once

#include <string>

#include "driver/options.h"
#include "lab/support/messages.h"
#include "lab/survey/selection.h"
#include "lab/survey/settle/settle_row.h"
#include "lab/what_if/changed_configurations.h"
#include "lab/what_if/changes.h"
#include "value/result.h"

namespace fernwick::lab {

/// What every computer of a settling is settled with.
struct SettleWork {
  const Options& options;
  const Changes& changes;
  ChangedConfigurations& configurations;  // with the changes
  bool listsSteps;
};

/// Settles the computer. What the selection refused, and a computer that cannot have the changes,
/// has a row too. A lack of memory, descriptors or permission is an error, as in SurveyComputer.
/// May be called on any thread.
Result<SettleRow, LabError> SettleComputer(Selected selected, const SettleWork& work);

/// The same of a recording that was loaded.
Result<SettleRow, LabError> SettleRecording(const std::string& path, Recording recording,
                                            const SettleWork& work);

}  // namespace fernwick::lab
