#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "lab/lint/finding.h"
#include "lab/lint/rules/rules.h"
#include "platform/console.h"

namespace fernwick::lab {

/// How much was found.
struct LintTotals {
  std::size_t boards = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t notes = 0;
  std::size_t known = 0;  // not reported, because they are in the baseline
};

/// Adds the number of violations of a finding to the totals of its severity.
void Count(const Finding& finding, LintTotals& totals);

/// An output format. Nothing is stored: a finding is printed when it is added, and nothing before
/// the first. The console must outlive the format.
class LintFormat {
 public:
  explicit LintFormat(Console& console) : console_(console) {}
  virtual ~LintFormat() = default;

  /// REQUIRES: findings of one path are added one after the other.
  virtual void Add(const Finding& finding) = 0;

  /// To be called once, after the last finding.
  virtual void Finish(const LintTotals& totals) = 0;

 protected:
  Console& Out() const { return console_; }

 private:
  Console& console_;
};

/// Lines "PATH:LINE:COLUMN: SEVERITY: MESSAGE [ID]", as editors and build logs know them, with
/// "byte N" for line and column in a binary file; then a line that counts them.
std::unique_ptr<LintFormat> MakeLintText(Console& console);

/// A JSON document.
std::unique_ptr<LintFormat> MakeLintJson(Console& console);

/// The Static Analysis Results Interchange Format, version 2.1.0, with all rules.
std::unique_ptr<LintFormat> MakeLintSarif(Console& console);

}  // namespace fernwick::lab
