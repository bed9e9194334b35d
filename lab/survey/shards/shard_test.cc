#include "lab/survey/shards/shard.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace fernwick::lab {
namespace {

TEST(Shard, HasEachNameOnce) {
  for (std::size_t count = 1; count <= 7; ++count) {
    std::array<std::size_t, 7> names = {};
    for (int i = 0; i < 700; ++i) {
      std::size_t owners = 0;
      for (std::size_t number = 1; number <= count; ++number) {
        if (!Shard{number, count}.Has("computers/" + std::to_string(i))) continue;
        ++owners;
        ++names[number - 1];
      }
      EXPECT_EQ(owners, 1u);
    }
    for (std::size_t number = 1; number <= count; ++number) EXPECT_GT(names[number - 1], 50u);
  }
}

// A directory for each computer, with a recording of its name.
TEST(Shard, HasItsPartOfNamesWithANumberTwice) {
  for (const std::size_t count : {2u, 4u, 16u}) {
    for (std::size_t number = 1; number <= count; ++number) {
      std::size_t names = 0;
      for (int i = 0; i < 1600; ++i) {
        const auto host = std::to_string(i);
        names += Shard{number, count}.Has("computers/" + host + "/" + host) ? 1 : 0;
      }
      EXPECT_GT(names, 1600 / count / 2);
      EXPECT_LT(names, 1600 / count * 2);
    }
  }
}

TEST(Shard, IsReadFromTwoNumbers) {
  const auto shard = ParseShard("2/3");
  ASSERT_TRUE(shard);
  EXPECT_EQ(shard->number, 2u);
  EXPECT_EQ(shard->count, 3u);
  EXPECT_TRUE(ParseShard("999999/999999"));
  for (const auto* text : {"", "/", "1", "1/", "/1", "0/1", "2/1", "1/2 ", "-1/2", "1/1000000"}) {
    EXPECT_FALSE(ParseShard(text)) << text;
  }
}

}  // namespace
}  // namespace fernwick::lab
