#include "lab/survey/settle/settle_row.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(SettleTotals, CountOutcomesAndRuns) {
  SettleTotals totals;
  totals.Add(SettleOutcome::Settled, 1);
  totals.Add(SettleOutcome::Stuck, 1);
  totals.Add(SettleOutcome::Settled, 0);
  totals.Add(SettleOutcome::NeverSettles, 2);
  EXPECT_EQ(totals.endedByPlans, 0u);
  EXPECT_EQ(totals.Count(SettleOutcome::Settled), 2u);
  EXPECT_EQ(totals.Count(SettleOutcome::Refused), 0u);
  EXPECT_EQ(Describe(totals),
            "4 computers: 2 settled, 1 stuck, 1 never settles\n"
            "  1 after 0 runs\n"
            "  2 after 1 run\n");
  totals.Add(SettleOutcome::Bypassed, 0);
  totals.Add(SettleOutcome::Bypassed, 1);
  totals.Add(SettleOutcome::AbnormalEnd, 1);
  EXPECT_EQ(totals.endedByPlans, 2u);
}

}  // namespace
}  // namespace fernwick::lab
