#pragma once

#include <span>
#include <string_view>

namespace fernwick::lab {

/// How much a finding matters: an error keeps an update from working as it is written, a warning is
/// probably not what was meant, a note is worth knowing. In rising order.
enum class Severity { Note, Warning, Error };

/// "note", "warning" or "error".
std::string_view NameOf(Severity severity);

/// One thing that `lint` looks for. The ID is stable: scripts and suppressions rely on it.
struct LintRule {
  std::string_view id;
  Severity severity;
  std::string_view title;   // what is wrong, in half a line
  std::string_view reason;  // why it matters; one paragraph
  std::string_view remedy;  // how to fix it; one paragraph
  std::string_view wrong;   // an example, one line or several, without a newline at the end
  std::string_view right;   // the example fixed
};

/// All rules, sorted by ID.
std::span<const LintRule* const> LintRules();

/// The rule of that ID; null when there is none.
const LintRule* FindLintRule(std::string_view id);

}  // namespace fernwick::lab
