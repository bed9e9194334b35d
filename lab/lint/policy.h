#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/lint/finding.h"

namespace fernwick::lab {

/// Which findings a caller of lint does not want, and the severities that it gives to others.
class LintPolicy {
 public:
  /// Both are lists as on the command line: IDs, and "ID=LEVEL" with one of the names of the
  /// severities. Returns what is wrong with them, or nullopt.
  std::optional<std::string> Read(const std::vector<std::string>& ignored,
                                  const std::vector<std::string>& severities);

  /// Removes the ignored findings and sets the severities of the others.
  void ApplyTo(std::vector<Finding>& findings) const;

 private:
  struct Change {
    const LintRule* rule;
    std::optional<Severity> severity;  // nullopt: ignored
  };

  std::vector<Change> changes_;  // of one rule the last counts
};

/// The severity of that name; nullopt when there is none.
std::optional<Severity> SeverityNamed(std::string_view name);

}  // namespace fernwick::lab
