#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/draft/drafted_computers.h"
#include "lab/draft/drafted_configuration.h"
#include "lab/support/messages.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

/// A draft, or why there is none.
struct DraftOutcome {
  std::optional<PropertyList> configuration = {};  // views the computers and the target
  int status = LabStatus::Done;               // or Negative, or BadUsage for an impossible version
  std::string refusal = {};                   // why there is none; else empty
  std::vector<std::string> unmatchable = {};  // which wanted controllers are left out, and why
  std::vector<std::string> indistinguishable = {};  // wanted and excepted: there is no draft
};

/// A configuration whose personalities match every wanted controller of the type that can match,
/// and no excepted one, as the checks of the tool have confirmed. To be called once, after the last
/// computer was added.
DraftOutcome MakeDraft(DraftedComputers& computers, const DraftTarget& target);

}  // namespace fernwick::lab
