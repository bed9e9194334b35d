#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "lab/lint/finding.h"
#include "lab/lint/report.h"
#include "lab/report/bounded_list.h"

namespace fernwick::lab {

/// What lint finds in the payload, the errors first.
class LintSection {
 public:
  void Add(const Finding& finding);

  const LintTotals& Totals() const { return totals_; }

  std::string Markup(const std::string& command) const;

 private:
  // The findings of a severity.
  struct Findings {
    ListLimit limit = ListLimit(1000, 50'000);
    BoundedList list = {};
    std::size_t violations = 0;  // of all, and of those that are listed
    std::size_t listed = 0;
  };

  LintTotals totals_;
  std::array<Findings, 3> bySeverity_ = {};
};

}  // namespace fernwick::lab
