#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::lab {

/// The names of the switches that a computer may set.
inline constexpr std::string_view UpdatesSwitch = "fernwick_bypass_usbc_updates";
inline constexpr std::string_view VersionSwitch = "fernwick_bypassversioncheck";

/// A recorded computer that can be changed a little, to try what the tool would do then.
class TrialRegistry : public RecordedRegistry {
 public:
  /// REQUIRES: as RecordedRegistry.
  explicit TrialRegistry(const Recording& recording);

  /// From now on the computer has no NVRAM variable that is a switch.
  void HideSwitchVariables() { hidesVariables_ = true; }

  /// From now on nothing ends the run before it reads its options: neither a bypass of the updates,
  /// from either source, nor a boot argument that is the bare name of a switch.
  void HideWhatEndsTheRun() { hidesWhatEndsTheRun_ = true; }

  /// From now on every controller has a "UID". Those that got theirs by it are in
  /// ControllersWithoutUid() when it was read.
  void SupplyUids() { suppliesUids_ = true; }

  /// In the order in which they were read, each once.
  const std::vector<RegistryEntry>& ControllersWithoutUid() const { return withoutUid_; }

  std::optional<PropertyValue> GetProperty(RegistryEntry entry, std::string_view key) override;

 private:
  PropertyValue SupplyUid(RegistryEntry entry);
  bool IsHidden(std::string_view key) const;

  bool hidesVariables_ = false;
  bool hidesWhatEndsTheRun_ = false;
  bool suppliesUids_ = false;
  std::optional<std::string> harmlessArguments_;  // the boot arguments that end no run
  std::vector<RegistryEntry> withoutUid_;
  std::set<RegistryEntry> seenWithoutUid_;
};

}  // namespace fernwick::lab
