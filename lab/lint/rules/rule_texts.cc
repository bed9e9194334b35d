#include "lab/lint/rules/rule_texts.h"

#include <algorithm>
#include <string_view>

namespace fernwick::lab {
namespace {

constexpr std::size_t LineWidth = 80;

void AppendPadded(std::string& text, std::string_view word, std::size_t width) {
  text.append(word);
  text.append(width - std::min(width, word.size()), ' ');
}

// Wrapped at blanks.
void AppendParagraph(std::string& text, std::string_view paragraph) {
  std::size_t column = 0;
  while (!paragraph.empty()) {
    const auto word = paragraph.substr(0, paragraph.find(' '));
    if (column > 0 && column + 1 + word.size() > LineWidth) {
      text += '\n';
      column = 0;
    }
    if (column > 0) text += ' ';
    text += word;
    column += word.size() + (column > 0 ? 1 : 0);
    paragraph.remove_prefix(std::min(paragraph.size(), word.size() + 1));
  }
  text += '\n';
}

void AppendIndented(std::string& text, std::string_view lines) {
  while (!lines.empty()) {
    const auto line = lines.substr(0, lines.find('\n'));
    text.append("    ").append(line).append("\n");
    lines.remove_prefix(std::min(lines.size(), line.size() + 1));
  }
}

void AppendCode(std::string& text, std::string_view head, std::string_view code) {
  text.append(head).append("\n\n```text\n").append(code).append("\n```\n\n");
}

}  // namespace

std::string ListLintRules() {
  std::size_t width = 0;
  for (const auto* rule : LintRules()) width = std::max(width, rule->id.size());
  std::string text;
  for (const auto* rule : LintRules()) {
    AppendPadded(text, rule->id, width + 2);
    AppendPadded(text, NameOf(rule->severity), std::string_view("warning").size() + 2);
    text.append(rule->title).append("\n");
  }
  return text;
}

std::string ExplainLintRule(const LintRule& rule) {
  std::string text(rule.id);
  text.append(" (").append(NameOf(rule.severity)).append("): ").append(rule.title).append("\n\n");
  AppendParagraph(text, rule.reason);
  text += '\n';
  AppendParagraph(text, rule.remedy);
  text += "\nInstead of\n\n";
  AppendIndented(text, rule.wrong);
  if (rule.right.empty()) return text + "\nwrite nothing.\n";
  text += "\nwrite\n\n";
  AppendIndented(text, rule.right);
  return text;
}

std::string LintRulesAsMarkdown() {
  std::string text;
  for (const auto* rule : LintRules()) {
    text.append("### ").append(rule->id).append("\n\n");
    text.append("*").append(NameOf(rule->severity)).append(":* ").append(rule->title);
    text.append(".\n\n").append(rule->reason).append("\n\n").append(rule->remedy).append("\n\n");
    AppendCode(text, "Wrong:", rule->wrong);
    if (!rule->right.empty()) AppendCode(text, "Right:", rule->right);
  }
  text.pop_back();
  return text;
}

}  // namespace fernwick::lab
