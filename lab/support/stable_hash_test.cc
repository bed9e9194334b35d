#include "lab/support/stable_hash.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

std::string HashOf(std::string_view text) {
  StableHash hash;
  hash.Add(text);
  return HashText(hash.Value());
}

// The published values of the function.
TEST(StableHash, IsTheSameOnEveryMachine) {
  EXPECT_EQ(HashOf(""), "cbf29ce484222325");
  EXPECT_EQ(HashOf("a"), "af63dc4c8601ec8c");
  EXPECT_EQ(HashOf("foobar"), "85944171f73967e8");
}

TEST(HashText, HasSixteenDigits) {
  EXPECT_EQ(HashText(0xA), "000000000000000a");
  EXPECT_EQ(HashText(~std::uint64_t{0}), "ffffffffffffffff");
}

}  // namespace
}  // namespace fernwick::lab
