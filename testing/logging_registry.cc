#include "testing/logging_registry.h"

#include <algorithm>
#include <iterator>

namespace fernwick::testing {

std::vector<std::string> LoggingRegistry::CallsOf(std::string_view beginning) const {
  std::vector<std::string> found;
  std::ranges::copy_if(calls_, std::back_inserter(found),
                       [&](const std::string& call) { return call.starts_with(beginning); });
  return found;
}

void LoggingRegistry::FailMatching(RegistryStatus status, bool withIterator) {
  failure_ = MatchingFailure{status, withIterator};
}

std::string LoggingRegistry::NameOf(RegistryEntry handle) const {
  if (handle == 0) return "none";
  const std::size_t entryCount = recording_.entries.size();
  if (handle > entryCount) return "iterator " + std::to_string(handle - entryCount);
  const auto name = recording_.entries[handle - 1].name;
  return name.empty() ? "root" : std::string(name);
}

RegistryEntry LoggingRegistry::LookupEntryByPath(std::string_view path) {
  calls_.push_back("LookupEntryByPath " + std::string(path));
  return registry_.LookupEntryByPath(path);
}

std::optional<PropertyValue> LoggingRegistry::GetProperty(RegistryEntry entry,
                                                          std::string_view key) {
  calls_.push_back("GetProperty " + NameOf(entry) + " " + std::string(key));
  return registry_.GetProperty(entry, key);
}

std::optional<PropertyValue> LoggingRegistry::SearchProperty(RegistryEntry entry,
                                                             std::string_view plane,
                                                             std::string_view key,
                                                             std::uint32_t options) {
  calls_.push_back("SearchProperty " + NameOf(entry) + " " + std::string(plane) + " " +
                   std::string(key) + " " + std::to_string(options));
  return registry_.SearchProperty(entry, plane, key, options);
}

RegistryStatus LoggingRegistry::GetParentEntry(RegistryEntry entry, std::string_view plane,
                                               RegistryEntry& parent) {
  calls_.push_back("GetParentEntry " + NameOf(entry) + " " + std::string(plane));
  return registry_.GetParentEntry(entry, plane, parent);
}

RegistryStatus LoggingRegistry::MatchServicesByClass(std::string_view className,
                                                     RegistryEntry& iterator) {
  calls_.push_back("MatchServicesByClass " + std::string(className));
  const RegistryStatus status = registry_.MatchServicesByClass(className, iterator);
  if (!failure_) return status;
  if (!failure_->withIterator) iterator = 0;
  return failure_->status;
}

void LoggingRegistry::ResetIterator(RegistryEntry iterator) {
  calls_.push_back("ResetIterator " + NameOf(iterator));
  registry_.ResetIterator(iterator);
}

RegistryEntry LoggingRegistry::NextEntry(RegistryEntry iterator) {
  calls_.push_back("NextEntry " + NameOf(iterator));
  return registry_.NextEntry(iterator);
}

bool LoggingRegistry::ConformsToClass(RegistryEntry entry, std::string_view className) {
  calls_.push_back("ConformsToClass " + NameOf(entry) + " " + std::string(className));
  return registry_.ConformsToClass(entry, className);
}

void LoggingRegistry::ReleaseEntry(RegistryEntry handle) {
  calls_.push_back("ReleaseEntry " + NameOf(handle));
  registry_.ReleaseEntry(handle);
}

}  // namespace fernwick::testing
