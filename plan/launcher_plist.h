#pragma once

#include <string>
#include <vector>

#include "plan/plan_values.h"
#include "platform/console.h"

namespace fernwick {

/// Writes the property list of the firmware-update launcher as XML and flushes it; in verbose mode
/// under a title. Returns the status of the run: 0, or 1 when the argument vector is empty and
/// there is nothing to write; that of InvocationBuilder never is. `console` remembers a write that
/// failed.
int WritePlan(Console& console, bool verbose, const std::vector<std::string>& arguments,
              const PlanValues& plan);

}  // namespace fernwick
