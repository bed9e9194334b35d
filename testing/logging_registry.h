#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"

namespace fernwick::testing {

/// A recorded computer that logs every call, so that a test can check what was read, how often
/// and in which order. A call reads "GetProperty Port0 UUID": the operation and its arguments,
/// entries by name (a root as "root"), iterators as "iterator 1" and so on, the handle 0 as "none".
class LoggingRegistry : public Registry {
 public:
  /// REQUIRES: `recording` outlives the registry.
  explicit LoggingRegistry(const Recording& recording)
      : recording_(recording), registry_(recording) {}
  explicit LoggingRegistry(const Recording&& recording) = delete;  // the reference would dangle

  const std::vector<std::string>& Calls() const { return calls_; }

  /// The calls that begin with `beginning`, in their order.
  std::vector<std::string> CallsOf(std::string_view beginning) const;

  /// From now on MatchServicesByClass returns this status, with an iterator or without one.
  void FailMatching(RegistryStatus status, bool withIterator);

  RegistryEntry LookupEntryByPath(std::string_view path) override;
  std::optional<PropertyValue> GetProperty(RegistryEntry entry, std::string_view key) override;
  std::optional<PropertyValue> SearchProperty(RegistryEntry entry, std::string_view plane,
                                              std::string_view key, std::uint32_t options) override;
  RegistryStatus GetParentEntry(RegistryEntry entry, std::string_view plane,
                                RegistryEntry& parent) override;
  RegistryStatus MatchServicesByClass(std::string_view className, RegistryEntry& iterator) override;
  void ResetIterator(RegistryEntry iterator) override;
  RegistryEntry NextEntry(RegistryEntry iterator) override;
  bool ConformsToClass(RegistryEntry entry, std::string_view className) override;
  void ReleaseEntry(RegistryEntry handle) override;

 private:
  struct MatchingFailure {
    RegistryStatus status;
    bool withIterator;
  };

  std::string NameOf(RegistryEntry handle) const;

  const Recording& recording_;
  RecordedRegistry registry_;
  std::vector<std::string> calls_;
  std::optional<MatchingFailure> failure_;
};

}  // namespace fernwick::testing
