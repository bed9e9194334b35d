#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::lab {

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

  /// From now on every controller has a "UID". One that has none of its own is added to
  /// ControllersWithoutUid() when its "UID" is read.
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
