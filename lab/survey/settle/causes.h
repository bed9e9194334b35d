#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "lab/survey/settle/settling.h"

namespace fernwick::lab {

/// Why a match never becomes unnecessary, however often its plan is carried out.
enum class RepetitionCause {
  Undone,                // another personality sets the controller to another version
  ComparesVersionAbove,  // a port's firmware does not change the version of the controller above it
  NotStorable,           // the controller stores less than what is offered
  VersionUnchecked,      // what is not newer matches, since the version check is bypassed
};

/// "undone", "compares version above", "not storable" and "version unchecked".
std::string_view NameOf(RepetitionCause cause);

/// A match that is planned again and again, and why.
struct Repetition {
  RepetitionCause cause;
  const AppliedMatch* match;
  const AppliedMatch* other = nullptr;  // what undoes it
};

/// The causes of a computer that never settles, in the order of the plans, each controller once for
/// each. They point into `settling`. REQUIRES: its end is StateComesBack.
std::vector<Repetition> FindRepetitions(const Settling& settling);

}  // namespace fernwick::lab
