#include "lab/lint/policy.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

#include "lab/support/json_reading.h"
#include "platform/file_system.h"

namespace fernwick::lab {
namespace {

// In the payload directory.
constexpr char SettingsFile[] = ".fernwick-lint.json";

std::string NoSuchFinding(std::string_view id) {
  return "there is no finding \"" + std::string(id) + "\"; see fernwick-lab lint --list";
}

// The strings of an array; nullopt when it is something else.
std::optional<std::vector<std::string>> TextsIn(const Json& array) {
  if (!array.is_array()) return std::nullopt;
  std::vector<std::string> texts;
  for (const auto& element : array) {
    if (!element.is_string()) return std::nullopt;
    texts.push_back(element.get<std::string>());
  }
  return texts;
}

// The members of an object as "ID=LEVEL"; nullopt when it is something else.
std::optional<std::vector<std::string>> SettingsIn(const Json& object) {
  if (!object.is_object()) return std::nullopt;
  std::vector<std::string> settings;
  for (const auto& [key, value] : object.items()) {
    const auto level = value.is_string() ? value.get<std::string>() : std::string();
    if (!SeverityNamed(level)) return std::nullopt;
    settings.push_back(std::string(key).append("=").append(level));
  }
  return settings;
}

}  // namespace

std::optional<std::string> LintPolicy::Read(const std::vector<std::string>& ignored,
                                            const std::vector<std::string>& severities) {
  for (const auto& text : severities) {
    const auto equals = std::min(text.find('='), text.size());
    const auto id = std::string_view(text).substr(0, equals);
    const auto severity =
        SeverityNamed(std::string_view(text).substr(std::min(equals + 1, text.size())));
    if (FindLintRule(id) == nullptr) return NoSuchFinding(id);
    if (!severity) return "--severity: " + text + " is not ID=error, ID=warning or ID=note";
    changes_.push_back({FindLintRule(id), severity});
  }
  for (const auto& id : ignored) {
    if (FindLintRule(id) == nullptr) return NoSuchFinding(id);
    changes_.push_back({FindLintRule(id), std::nullopt});
  }
  return std::nullopt;
}

std::optional<LabError> LintPolicy::ReadFile(const std::string& path) {
  const auto refuse = [](std::string why) {
    return LabError{{std::move(why)}, LabStatus::MalformedInput};
  };
  const auto settings = ReadJsonFile(path);
  if (!settings) return settings.Error();
  if (!settings->is_object()) return refuse("it is not an object with \"ignore\" and \"severity\"");
  std::optional<std::vector<std::string>> ignored = std::vector<std::string>();
  auto severities = ignored;
  for (const auto& [key, value] : settings->items()) {
    if (key == "ignore") {
      ignored = TextsIn(value);
    } else if (key == "severity") {
      severities = SettingsIn(value);
    } else {
      return refuse("there is no setting \"" + key + "\"; there are \"ignore\" and \"severity\"");
    }
  }
  if (!ignored) return refuse("\"ignore\" is not an array of IDs");
  if (!severities)
    return refuse("\"severity\" is not an object from IDs to \"error\", \"warning\" or \"note\"");
  auto overriding = std::exchange(changes_, {});
  if (auto fault = Read(*ignored, *severities)) return refuse(*std::move(fault));
  std::ranges::move(overriding, std::back_inserter(changes_));
  return std::nullopt;
}

bool LintPolicy::Ignores(const LintRule& rule) const {
  const auto* change = Find(rule);
  return change != nullptr && !change->severity;
}

Severity LintPolicy::SeverityOf(const LintRule& rule) const {
  const auto* change = Find(rule);
  return change == nullptr ? rule.severity : change->severity.value_or(rule.severity);
}

const LintPolicy::Change* LintPolicy::Find(const LintRule& rule) const {
  const auto found = std::find_if(changes_.rbegin(), changes_.rend(),
                                  [&](const Change& change) { return change.rule == &rule; });
  return found == changes_.rend() ? nullptr : &*found;
}

int ReadSettings(const std::string& payload, LintPolicy& policy) {
  const auto path = AppendPathComponent(payload, SettingsFile);
  std::error_code error;
  if (!std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
    return LabStatus::Done;
  }
  const auto fault = policy.ReadFile(path);
  return fault ? PrintError(path, *fault) : LabStatus::Done;
}

std::optional<Severity> SeverityNamed(std::string_view name) {
  for (const auto severity : {Severity::Note, Severity::Warning, Severity::Error}) {
    if (name == NameOf(severity)) return severity;
  }
  return std::nullopt;
}

}  // namespace fernwick::lab
