#include "registry/hardware_record.h"

#include <gtest/gtest.h>

#include "testing/distinctness.h"

namespace fernwick {
namespace {

TEST(RecordSource, IsOfThePortOrElseOfTheThunderboltController) {
  EXPECT_EQ((RecordSource{.port = 1}.Controller()), 1u);
  EXPECT_EQ((RecordSource{.port = 1, .thunderbolt = 2}.Controller()), 1u);
  EXPECT_EQ((RecordSource{.thunderbolt = 2}.Controller()), 2u);
}

// What tests compare is compared whole.
TEST(HardwareInventory, DiffersByEachOfItsMembers) {
  testing::ExpectDistinct<RecordSource>({.port = 1}, {{.port = 2},
                                                      {.port = 1, .thunderbolt = 1},
                                                      {.port = 1, .rid = Origin::Port},
                                                      {.port = 1, .version = Origin::Port},
                                                      {.port = 1, .uuidFetched = false}});
  testing::ExpectDistinct<SkippedController>(
      {1, SkipReason::RouteString},
      {{2, SkipReason::RouteString}, {1, SkipReason::NotAtRootOfTopology}});
  testing::ExpectDistinct<HardwareInventory>({}, {{.records = {{{"RID", 1}}}},
                                                  {.sources = {{.port = 1}}},
                                                  {.skipped = {{1, SkipReason::RouteString}}}});
}

}  // namespace
}  // namespace fernwick
