#include <algorithm>
#include <string>

#include "driver/bypass_switch.h"
#include "lab/lint/checks.h"
#include "lab/lint/rules/nvram_rules.h"

namespace fernwick::lab {
namespace {

constexpr std::string_view Switches[] = {UpdatesSwitch, VersionSwitch};

// A computer with one NVRAM variable and nothing else.
class OneVariable final : public Registry {
 public:
  OneVariable(std::string_view name, const PropertyValue& value) : name_(name), value_(value) {}

  RegistryEntry LookupEntryByPath(std::string_view) override { return 1; }
  std::optional<PropertyValue> GetProperty(RegistryEntry, std::string_view key) override {
    return key == name_ ? std::optional(value_) : std::nullopt;
  }
  std::optional<PropertyValue> SearchProperty(RegistryEntry, std::string_view, std::string_view,
                                              std::uint32_t) override {
    return std::nullopt;
  }
  RegistryStatus GetParentEntry(RegistryEntry, std::string_view, RegistryEntry& parent) override {
    parent = 0;
    return RegistryNotFound;
  }
  RegistryStatus MatchServicesByClass(std::string_view, RegistryEntry& iterator) override {
    iterator = 0;
    return RegistryNotFound;
  }
  void ResetIterator(RegistryEntry) override {}
  RegistryEntry NextEntry(RegistryEntry) override { return 0; }
  bool ConformsToClass(RegistryEntry, std::string_view) override { return false; }
  void ReleaseEntry(RegistryEntry) override {}

 private:
  std::string_view name_;
  PropertyValue value_;
};

// The variables "efi-quince-payload0-data", "efi-quince-payload1-data" and so on.
bool IsPayloadVariable(std::string_view name) {
  constexpr std::string_view Start = "efi-quince-payload";
  constexpr std::string_view End = "-data";
  if (!name.starts_with(Start) || !name.ends_with(End)) return false;
  if (name.size() <= Start.size() + End.size()) return false;
  const auto index = name.substr(Start.size(), name.size() - Start.size() - End.size());
  return std::ranges::all_of(index, [](char c) { return c >= '0' && c <= '9'; });
}

bool IsSwitch(std::string_view name) {
  return std::ranges::find(Switches, name) != std::end(Switches);
}

void LintAnyUse(std::string_view name, std::size_t offset, ConfigurationFindings& findings) {
  if (name.find_first_not_of(' ') == std::string_view::npos) {
    findings.Add(LintRuleOf::NvramEmptyName, offset,
                 Quoted(name) + " is not the name of an NVRAM variable");
  } else if (IsPayloadVariable(name)) {
    findings.Add(LintRuleOf::NvramPayloadVariable, offset,
                 "through " + Quoted(name) + " the plan itself passes an image");
  } else if (name == "boot-args") {
    findings.Add(LintRuleOf::NvramBootArgs, offset,
                 "\"boot-args\" has the boot arguments of the computer, which are lost");
  }
}

// What the variable does to the later runs of the tool.
void LintSetting(const LocatedEntry& entry, ConfigurationFindings& findings) {
  OneVariable computer(entry.key, *entry.value);
  for (const auto name : Switches) {
    const auto isSet = ReadBypassSwitch(computer, name);
    if (!isSet) {
      findings.Add(
          LintRuleOf::NvramBareSwitch, entry.valueOffset,
          Quoted(name) + " without a value in the boot arguments ends every later run abnormally");
    } else if (*isSet) {
      findings.Add(LintRuleOf::NvramBypassSwitch, entry.valueOffset,
                   Quoted(entry.key) + " sets " + Quoted(name) + " for every later run");
    } else if (entry.key == name) {
      findings.Add(LintRuleOf::NvramIdleBypassSwitch, entry.valueOffset,
                   Quoted(entry.key) + " is a bypass switch, and this value does not set it");
    }
  }
}

}  // namespace

void LintNvramNames(const LocatedPersonality& personality, ConfigurationFindings& findings) {
  const auto* toSet = personality.Find("SetNVRAM");
  const auto variables = toSet == nullptr ? std::nullopt : toSet->value->AsDictionary();
  if (variables) {
    for (const auto& entry : LocatedEntries(*variables, *toSet->location)) {
      LintAnyUse(entry.key, entry.keyOffset, findings);
      LintSetting(entry, findings);
    }
  }
  const auto* toClear = personality.Find("ClearNVRAM");
  const auto names = toClear == nullptr ? std::nullopt : toClear->value->AsArray();
  if (!names) return;
  for (std::size_t i = 0; i < names->size(); ++i) {
    const auto name = (*names)[i].AsString();
    if (!name) continue;
    LintAnyUse(*name, OffsetOfElement(*toClear, i), findings);
    if (!IsSwitch(*name)) continue;
    findings.Add(LintRuleOf::NvramIdleBypassSwitch, OffsetOfElement(*toClear, i),
                 Quoted(*name) + " is a bypass switch, which the plan clears");
  }
}

}  // namespace fernwick::lab
