#pragma once

#include <string>

#include "lab/report/computer_groups.h"
#include "lab/report/computer_lists.h"
#include "lab/survey/settle/settle_row.h"

namespace fernwick::lab {

/// What the computers become when every plan is carried out, and which never settle or are stuck.
class SettleSection {
 public:
  void Add(const SettleRow& row, const ComputerName& computer);

  const SettleTotals& Totals() const { return totals_; }

  std::string Markup(const std::string& command) const;

 private:
  SettleTotals totals_;
  ComputerGroups settled_ = ComputerGroups("settled-after", 40'000);
  ComputerGroups never_ = ComputerGroups("never-settles", 60'000);
  ComputerGroups stuck_ = ComputerGroups("stuck", 60'000);
  ComputerGroups undecided_ = ComputerGroups("undecided", 15'000);
  ComputerGroups noPlan_ = ComputerGroups("no-plan", 30'000);
  ComputerGroups bypassed_ = ComputerGroups("bypassed-after", 15'000);
  ComputerGroups abnormal_ = ComputerGroups("abnormal-after", 15'000);
};

}  // namespace fernwick::lab
