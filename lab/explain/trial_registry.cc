#include "lab/explain/trial_registry.h"

#include <algorithm>

#include "driver/bypass_switch.h"

namespace fernwick::lab {
namespace {

bool EndsTheRun(std::string_view bootArgument) {
  const bool isBypass = bootArgument.substr(0, bootArgument.find('=')) == UpdatesSwitch;
  return isBypass || bootArgument == VersionSwitch;
}

// The arguments that end no run, separated by blanks as in `arguments`.
std::string WithoutThoseThatEndTheRun(std::string_view arguments) {
  std::string kept;
  for (std::size_t begin = 0; begin <= arguments.size();) {
    const auto end = std::min(arguments.find(' ', begin), arguments.size());
    const auto argument = arguments.substr(begin, end - begin);
    if (!EndsTheRun(argument)) kept.append(begin == 0 ? "" : " ").append(argument);
    begin = end + 1;
  }
  return kept;
}

}  // namespace

TrialRegistry::TrialRegistry(const Recording& recording) : RecordedRegistry(recording) {
  const auto options = LookupEntryByPath(BootOptionsPath);
  const auto arguments = RecordedRegistry::GetProperty(options, "boot-args");
  const auto text = arguments ? arguments->AsString() : std::nullopt;
  if (text) harmlessArguments_ = WithoutThoseThatEndTheRun(*text);
}

std::optional<PropertyValue> TrialRegistry::GetProperty(RegistryEntry entry, std::string_view key) {
  if (IsHidden(key)) return std::nullopt;
  if (hidesWhatEndsTheRun_ && key == "boot-args" && harmlessArguments_) {
    return PropertyValue(std::string_view(*harmlessArguments_));
  }
  auto value = RecordedRegistry::GetProperty(entry, key);
  if (suppliesUids_ && key == "UID" && !value) value = SupplyUid(entry);
  return value;
}

PropertyValue TrialRegistry::SupplyUid(RegistryEntry entry) {
  if (seenWithoutUid_.insert(entry).second) withoutUid_.push_back(entry);
  return 0;
}

bool TrialRegistry::IsHidden(std::string_view key) const {
  if (key == UpdatesSwitch) return hidesVariables_ || hidesWhatEndsTheRun_;
  return key == VersionSwitch && hidesVariables_;
}

}  // namespace fernwick::lab
