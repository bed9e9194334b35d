#include "lab/support/diagnostics.h"

namespace fernwick::lab {

void DiagnosticConsole::WriteError(std::string_view text) {
  if (keepsTexts_) error_ += text;
  if (text.ends_with('\n')) text.remove_suffix(1);
  const auto known = indexes_.find(text);
  if (known != indexes_.end()) {
    ++counts_[known->second].count;
    return;
  }
  indexes_.emplace(text, counts_.size());
  counts_.push_back({std::string(text), 1});
}

void DiagnosticConsole::Log(const std::string& message) {
  WriteError(LogLine(message));
}

int DiagnosticConsole::Send(std::string_view text) {
  if (keepsTexts_) output_ += text;
  return 0;
}

}  // namespace fernwick::lab
