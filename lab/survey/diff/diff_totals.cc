#include <algorithm>

#include "lab/support/words.h"
#include "lab/survey/diff/diff_format.h"

namespace fernwick::lab {

void DiffTotals::Add(const DiffRow& row) {
  const auto has = [&](ChangeKind kind) {
    return std::ranges::find(row.changes, kind, &DiffChange::kind) != row.changes.end();
  };
  gained += has(ChangeKind::GainsPlan);
  lost += has(ChangeKind::LosesPlan);
  ++(!row.refusal.empty()       ? refused
     : !row.abnormalEnd.empty() ? abnormal
     : row.changes.empty()      ? unchanged
                                : changed);
}

std::string Describe(const DiffTotals& totals) {
  return Counted(totals.Computers(), "computer", "computers") + ": " +
         std::to_string(totals.changed) + " changed (" + std::to_string(totals.gained) +
         " gained a plan, " + std::to_string(totals.lost) + " lost it), " +
         std::to_string(totals.unchanged) + " unchanged, " + std::to_string(totals.refused) +
         " refused, " + std::to_string(totals.abnormal) + " ended abnormally\n";
}

}  // namespace fernwick::lab
