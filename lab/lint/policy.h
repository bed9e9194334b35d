#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/lint/rules/rules.h"
#include "lab/support/messages.h"

namespace fernwick::lab {

/// Which findings a caller of lint does not want, and the severities of others.
class LintPolicy {
 public:
  /// Both are lists as on the command line: IDs, and "ID=LEVEL" with one of the names of the
  /// severities. Returns what is wrong with them, or nullopt.
  std::optional<std::string> Read(const std::vector<std::string>& ignored,
                                  const std::vector<std::string>& severities);

  /// Reads the configuration file of a payload, {"ignore": [ID...], "severity": {ID: LEVEL...}};
  /// both members are optional. What Read has read overrides it. Returns why it cannot be used, or
  /// nullopt.
  std::optional<LabError> ReadFile(const std::string& path);

  bool Ignores(const LintRule& rule) const;

  /// The severity of the findings of the rule. REQUIRES: they are not ignored.
  Severity SeverityOf(const LintRule& rule) const;

 private:
  struct Change {
    const LintRule* rule;
    std::optional<Severity> severity;  // nullopt: ignored
  };

  // The last one of the rule, which counts; null when there is none.
  const Change* Find(const LintRule& rule) const;

  std::vector<Change> changes_;
};

/// Reads the file of settings in the payload directory, if there is one. Returns LabStatus::Done,
/// or the status of a file that cannot be used, after a line on standard error.
int ReadSettings(const std::string& payload, LintPolicy& policy);

/// The severity of that name; nullopt when there is none.
std::optional<Severity> SeverityNamed(std::string_view name);

}  // namespace fernwick::lab
