#pragma once

#include <string_view>

#include "registry/recorded_registry.h"

namespace fernwick::fuzz {

/// What a run does with a computer, as far as its hardware is concerned.
struct Outlook {
  std::string_view fault;   // the abnormal end, in the words of the system log; empty: none
  bool isBypassed = false;  // a switch ends the run before it begins
};

/// How far a run comes before it asks for hardware, and what it asks for.
struct RunRequest {
  bool accepted = false;                      // the command line was
  bool verbose = false;                       // the hardware is listed
  const Dictionary* configuration = nullptr;  // null: none could be loaded
};

/// Foresees the two faults that end a run abnormally, from the recording alone.
Outlook ForeseeRun(const Recording& recording, const RunRequest& request);

}  // namespace fernwick::fuzz
