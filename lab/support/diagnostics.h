#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"

namespace fernwick::lab {

/// A diagnostic and how often it came. Its text has no line feed at the end; one inside it, as a
/// board identifier may contain, does not begin another diagnostic.
struct DiagnosticCount {
  std::string text;
  std::size_t count;

  friend bool operator==(const DiagnosticCount&, const DiagnosticCount&) = default;
};

/// Counts the diagnostics of a run and the lines of its system log, each text once, in the order in
/// which they first came. Optionally collects everything that is printed.
class DiagnosticConsole : public Console {
 public:
  explicit DiagnosticConsole(bool keepsTexts) : keepsTexts_(keepsTexts) {}

  void WriteError(std::string_view text) override;
  void Log(const std::string& message) override;

  /// What was written to standard output and flushed, and to standard error; empty unless texts are
  /// kept.
  std::string TakeOutput() { return std::move(output_); }
  std::string TakeError() { return std::move(error_); }

  std::vector<DiagnosticCount> TakeCounts() { return std::move(counts_); }

 private:
  int Send(std::string_view text) override;

  bool keepsTexts_;
  std::string output_;
  std::string error_;
  std::vector<DiagnosticCount> counts_;
  std::map<std::string, std::size_t, std::less<>> indexes_;  // in counts_, by text
};

}  // namespace fernwick::lab
