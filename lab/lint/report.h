#pragma once

#include <string>

#include "lab/lint/payload.h"
#include "lab/lint/rules/rules.h"

namespace fernwick::lab {

/// Findings as lines "PATH:LINE:COLUMN: SEVERITY: MESSAGE [ID]", as editors and build logs know
/// them, with "byte N" for line and column in a binary file; then a line that counts them.
std::string LintAsText(const PayloadLinting& linting);

/// The same as a JSON document.
std::string LintAsJson(const PayloadLinting& linting);

/// The same in the Static Analysis Results Interchange Format, version 2.1.0, with all rules.
std::string LintAsSarif(const PayloadLinting& linting);

/// All rules, one a line: ID, severity, title.
std::string ListLintRules();

/// Why the rule matters and how to fix a violation, with an example.
std::string ExplainLintRule(const LintRule& rule);

/// All rules as Markdown, a section each: what docs/lint.md has at its end.
std::string LintRulesAsMarkdown();

}  // namespace fernwick::lab
