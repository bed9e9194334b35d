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
/// which they first came. Optionally collects what is printed, of each stream at most MaxKept
/// bytes: a run prints a diagnostic for each pair that it rejects.
class DiagnosticConsole : public Console {
 public:
  static constexpr std::size_t MaxKept = std::size_t{1} << 20;

  explicit DiagnosticConsole(bool keepsTexts) : keepsTexts_(keepsTexts) {}

  void WriteError(std::string_view text) override;
  void Log(const std::string& message) override;

  /// What was written to standard output and flushed, and to standard error; empty unless texts are
  /// kept. The last line of the latter says how many texts are not in it, if there are any.
  std::string TakeOutput() { return std::move(output_); }
  std::string TakeError();

  std::vector<DiagnosticCount> TakeCounts() { return std::move(counts_); }

 private:
  int Send(std::string_view text) override;

  bool keepsTexts_;
  std::string output_;
  std::string error_;
  std::size_t errorsLeftOut_ = 0;
  std::vector<DiagnosticCount> counts_;
  std::map<std::string, std::size_t, std::less<>> indexes_;  // in counts_, by text
};

}  // namespace fernwick::lab
