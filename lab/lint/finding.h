#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/lint/fingerprint.h"
#include "lab/lint/rules/rules.h"
#include "lab/lint/subject.h"
#include "lab/support/configuration_file.h"

namespace fernwick::lab {

/// One violation of a rule, or the violations of one rule in one file that are not listed each.
struct Finding {
  const LintRule* rule;
  std::string path;                      // of a file or directory, as it was named or found
  std::optional<FileLocation> location;  // nullopt: the file or directory as a whole
  std::string message;                   // one sentence, fit for a terminal
  std::uint64_t fingerprint = 0;         // of its identity
  std::size_t count = 1;                 // violations
  Severity severity = rule->severity;
};

/// Decides whether a violation is reported. It is called once for each.
using FindingFilter = std::function<bool(const FindingIdentity&)>;

/// How many violations of a rule in one file are listed at most.
inline constexpr std::size_t MaxListed = 100;

/// The message of the finding that summarises `count` violations which are not listed.
std::string MessageOfUnlisted(std::size_t count);

/// What was found in one configuration, by the offsets of its values. Its memory is bounded: of
/// each rule the first MaxListed violations are stored, and the number of the others.
class ConfigurationFindings {
 public:
  /// One finding; the offset is in bytes, as ValueLocation has it.
  struct Row {
    const LintRule* rule;
    std::size_t offset;
    std::string message;
    std::uint64_t fingerprint = 0;
    std::size_t count = 1;
  };

  /// `path` is that of the configuration, relative to the payload.
  explicit ConfigurationFindings(std::string path = {}, FindingFilter filter = {})
      : path_(std::move(path)), filter_(std::move(filter)) {}

  /// The violations that are added next are in this personality, or (null) in none. It must exist
  /// as long as they are added.
  void Enter(const LocatedPersonality* personality);

  void Add(const LintRule& rule, std::size_t offset, std::string message);

  /// There was not enough memory, or not enough descriptors, for the file at the path: the findings
  /// say nothing.
  void SetResourceError(const std::string& path, const Error& error) {
    resourceError_ = path + ": " + error.message;
  }

  /// "PATH: what is not enough"; empty while there was enough.
  const std::string& ResourceError() const { return resourceError_; }

  /// By offset, then by ID, then by message. What is not listed of a rule is one row where it
  /// begins.
  std::vector<Row> TakeSorted();

 private:
  struct RowsOfRule {
    std::vector<Row> rows;
    std::size_t unlisted = 0;
    std::size_t unlistedOffset = 0;  // of the first of them
  };

  static void Shorten(RowsOfRule& ofRule);

  std::string path_;
  FindingFilter filter_;  // may be empty: everything is reported
  const LocatedPersonality* personality_ = nullptr;
  std::optional<std::uint64_t> identity_;  // of the personality, once it is computed
  std::map<const LintRule*, RowsOfRule> found_;
  std::string resourceError_;
};

/// "Excerpt" in double quotes: a text from a file, short and fit for a terminal.
std::string Quoted(std::string_view text);

/// A number or another value, as a message shows it: short and on one line.
std::string Shown(const PropertyValue& value);

}  // namespace fernwick::lab
