#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/lint/rules/rules.h"
#include "lab/support/configuration_file.h"

namespace fernwick::lab {

/// One violation of a rule.
struct Finding {
  const LintRule* rule;
  std::string path;                   // of a file or directory, as it was named or found
  std::optional<FileLocation> place;  // nullopt: the file or directory as a whole
  std::string message;                // one sentence, fit for a terminal
  Severity severity = rule->severity;
};

/// What was found in one configuration, by the offsets of its values.
class ConfigurationFindings {
 public:
  /// One finding; the offset is in bytes, as ValueLocation has it.
  struct Row {
    const LintRule* rule;
    std::size_t offset;
    std::string message;
  };

  void Add(const LintRule& rule, std::size_t offset, std::string message) {
    rows_.push_back({&rule, offset, std::move(message)});
  }

  /// By offset, then by ID, then by message.
  std::vector<Row> TakeSorted();

 private:
  std::vector<Row> rows_;
};

/// "Excerpt" in double quotes: a text from a file, short and fit for a terminal.
std::string Quoted(std::string_view text);

/// A number or another value, as a message shows it: short and on one line.
std::string Shown(const PropertyValue& value);

}  // namespace fernwick::lab
