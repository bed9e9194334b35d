#pragma once

namespace fernwick {

/// What makes a run end abnormally. It travels up to the program's main, which logs it and aborts.
enum class Fault {
  MissingUid,  // a Thunderbolt controller has no "UID"
  BareSwitch,  // a boot argument is the bare name of a switch
};

/// The line for the system log.
constexpr const char* Describe(Fault fault) {
  // coverage: 1 of 3 branches: The enumeration has no third value.
  switch (fault) {
    case Fault::MissingUid: return "a Thunderbolt controller has no UID";
    case Fault::BareSwitch: break;
  }
  return "a boot argument is a switch name without a value";
}

}  // namespace fernwick
