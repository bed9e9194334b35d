#include "lab/support/diagnostics.h"

namespace fernwick::lab {

void DiagnosticConsole::WriteError(std::string_view text) {
  const bool isKept = keepsTexts_ && errorsLeftOut_ == 0 && error_.size() + text.size() <= MaxKept;
  if (isKept) error_ += text;
  if (!isKept) ++errorsLeftOut_;
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

std::string DiagnosticConsole::TakeError() {
  if (keepsTexts_ && errorsLeftOut_ > 0) {
    error_ += "(" + std::to_string(errorsLeftOut_) + " more)\n";
  }
  return std::move(error_);
}

int DiagnosticConsole::Send(std::string_view text) {
  if (keepsTexts_) output_ += text.substr(0, MaxKept - output_.size());
  return 0;
}

}  // namespace fernwick::lab
