#include "lab/report/bounded_list.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(BoundedList, HasTheFirstItemsAndCountsAll) {
  ByteBudget shared(100);
  ListLimit limit(2);
  BoundedList list;
  EXPECT_TRUE(list.Add("a", limit, shared));
  EXPECT_TRUE(list.Add("b", limit, shared));
  EXPECT_FALSE(list.Add("c", limit, shared));
  EXPECT_EQ(list.Markup(), "ab");
  EXPECT_EQ(list.Listed(), 2U);
  EXPECT_EQ(list.Count(), 3U);
}

TEST(BoundedList, HasNoItemAfterOneThatIsTooLarge) {
  ByteBudget shared(3);
  ListLimit limit(9);
  BoundedList list;
  EXPECT_TRUE(list.Add("ab", limit, shared));
  EXPECT_FALSE(list.Add("cd", limit, shared));
  EXPECT_FALSE(list.Add("e", limit, shared));
  EXPECT_EQ(list.Markup(), "ab");
}

TEST(BoundedList, UsesItsOwnBytesFirst) {
  ByteBudget shared(1);
  ListLimit limit(9, 2);
  BoundedList list;
  EXPECT_TRUE(list.Add("ab", limit, shared));
  EXPECT_TRUE(list.Add("c", limit, shared));
  EXPECT_FALSE(shared.Use(1));
}

}  // namespace
}  // namespace fernwick::lab
