#pragma once

#include <string>

#include "lab/report/computer_groups.h"
#include "lab/report/computer_lists.h"
#include "lab/survey/diff/diff_format.h"
#include "lab/survey/diff/diff_row.h"

namespace fernwick::lab {

/// What differs from the old payload, equal changes of the computers of a board as one.
class ChangeSection {
 public:
  void Add(const DiffRow& row, const ComputerName& computer);

  const DiffTotals& Totals() const { return totals_; }

  std::string Markup(const std::string& command) const;

 private:
  DiffTotals totals_;
  ComputerGroups changes_ = ComputerGroups("changes", 150'000);
};

}  // namespace fernwick::lab
