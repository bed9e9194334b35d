#pragma once

#include <string>

#include "lab/lint/rules/rules.h"

namespace fernwick::lab {

/// All rules, one a line: ID, severity, title.
std::string ListLintRules();

/// Why the rule matters and how to fix a violation, with an example.
std::string ExplainLintRule(const LintRule& rule);

/// All rules as Markdown, a section each: what docs/lint.md has at its end.
std::string LintRulesAsMarkdown();

}  // namespace fernwick::lab
