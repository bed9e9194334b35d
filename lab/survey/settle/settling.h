#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "driver/options.h"
#include "lab/support/controller_values.h"
#include "lab/support/tool_run.h"
#include "lab/what_if/changed_computer.h"
#include "personality/configuration.h"
#include "registry/key_schema.h"

namespace fernwick::lab {

/// The version that the controller itself reports, a number; of a port, also of one below a
/// Thunderbolt controller, its own.
std::optional<PropertyValue> ReportedVersion(Registry& registry, RegistryEntry entry, bool isPort);

/// A match of a plan, and what carrying it out changes.
struct AppliedMatch {
  TypeSet type;
  std::size_t personality;   // index in its type
  RegistryEntry controller;  // that it matched
  RegistryEntry changed;     // the controller that gets the image
  // The version that decided is that of the Thunderbolt controller above a port, but the image is
  // the port's.
  bool comparesVersionAbove = false;
  bool isStored = false;                       // the offered version, or as much of it as fits
  std::optional<PropertyValue> offered = {};   // the personality's version, if that is a number
  std::optional<PropertyValue> compared = {};  // the version that it was compared with
  std::optional<PropertyValue> before = {};    // what `changed` reports as its version; numbers
  std::optional<PropertyValue> after = {};
};

/// Whether the version is lower than the other. False where one is not known.
bool IsOlder(const std::optional<PropertyValue>& version,
             const std::optional<PropertyValue>& other);

/// An NVRAM variable that a plan changes, with its values as texts of limited length.
struct NvramChange {
  std::string name;
  std::optional<std::string> before;  // empty: the variable is absent
  std::optional<std::string> after;
};

/// A run that planned something, and what carrying out the plan changes.
struct SettleStep {
  std::vector<AppliedMatch> matches;       // in the order of the plan
  std::vector<NvramChange> nvram = {};     // the first ones, where they are wanted
  std::size_t otherNvram = 0;              // how many more there are
  std::vector<std::string> switches = {};  // the changed variables that may set a switch
};

/// How repeating the run ends.
enum class SettleEnd {
  NothingMatches,  // the computer is settled
  NoPlan,          // though there are matches, or since there is no configuration
  StateComesBack,  // and so everything else does
  GivenUp,         // after MaxPlans plans, or as many pairs as are allowed
  Bypassed,        // a switch ends the run
  AbnormalEnd,
  Failure,  // a run says nothing about the computer
};

/// A controller of the inventories, with the version that it reports itself. A port below a
/// Thunderbolt controller is compared with the version of that one.
struct ControllerVersion {
  RegistryEntry entry;
  bool isPort;
  std::optional<PropertyValue> before;  // a number
  std::optional<PropertyValue> after = {};
};

/// That a plan changed the variables that set a switch.
struct SwitchChange {
  std::size_t run = 0;                      // from 1, the one with the plan
  std::vector<std::string> variables = {};  // "boot-args" and the names of switches
};

/// What happens to a computer when every plan for it is carried out. The runs view the computer.
struct Settling {
  SettleEnd end = SettleEnd::NothingMatches;
  std::vector<SettleStep> steps = {};               // the runs with a plan
  std::size_t stepsBeforeCycle = 0;                 // of a state that comes back: those that led to
                                                    // it the first time
  std::vector<ControllerVersion> controllers = {};  // ports first, each in registry order
  std::optional<SwitchChange> endedBy = {};         // of an end that a plan brings about
  std::optional<SwitchChange> uncheckedBy = {};     // where a plan made the last run bypass the
                                                    // version check
  ToolRun last = {};  // of a state that comes back, the one that led to it
};

/// The runs end undecided after MaxPlans plans, and after MinPlans once they have tested more pairs
/// of a controller and a personality than one of these. With the version check versions only
/// increase, which ends after as many plans as there are versions.
inline constexpr std::size_t MaxPlans = 1'000;
inline constexpr std::size_t MinPlans = 4;
inline constexpr std::size_t MaxCheckedPairs = 20'000'000;
inline constexpr std::size_t MaxUncheckedPairs = 200'000;  // while the check is bypassed

/// How a computer is settled.
struct SettleOptions {
  const Options& tool;
  const ConfigurationLoader& load;  // what it returns must outlive the computer
  bool listsNvram = false;          // store what changes in the NVRAM
};

/// Runs the tool, changes the computer as if the plan were carried out, and repeats that until
/// nothing is planned or a state comes back.
///
/// Each match, in the order of the plan, changes the version of a controller: of the port that it
/// matched for the types "LegacyUSBC" and "USBC", of the Thunderbolt controller, which of a port is
/// the one above it, for the others. The new version is the greatest that the controller can store
/// and that is at most the one that the personality offers; a Thunderbolt controller is then no
/// longer marked as running engineering firmware. Of several matches that change one controller the
/// last counts. Then the variables of "SetNVRAM" are set and those of "ClearNVRAM" removed.
Settling Settle(ChangedComputer& computer, const SettleOptions& options);

}  // namespace fernwick::lab
