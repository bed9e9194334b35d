#include "lab/lint/policy.h"

#include <algorithm>

namespace fernwick::lab {
namespace {

std::string NoSuchFinding(std::string_view id) {
  return "there is no finding \"" + std::string(id) + "\"; see fernwick-lab lint --list";
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

void LintPolicy::ApplyTo(std::vector<Finding>& findings) const {
  std::erase_if(findings, [&](Finding& finding) {
    const auto change =
        std::ranges::find(changes_.rbegin(), changes_.rend(), finding.rule, &Change::rule);
    if (change == changes_.rend()) return false;
    finding.severity = change->severity.value_or(finding.severity);
    return !change->severity;
  });
}

std::optional<Severity> SeverityNamed(std::string_view name) {
  for (const auto severity : {Severity::Note, Severity::Warning, Severity::Error}) {
    if (name == NameOf(severity)) return severity;
  }
  return std::nullopt;
}

}  // namespace fernwick::lab
