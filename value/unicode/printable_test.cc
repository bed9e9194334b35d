#include "value/unicode/printable.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

TEST(IsControlCharacter, AtItsBounds) {
  EXPECT_TRUE(IsControlCharacter(0));
  EXPECT_TRUE(IsControlCharacter(0x1F));
  EXPECT_FALSE(IsControlCharacter(' '));
  EXPECT_FALSE(IsControlCharacter('~'));
  EXPECT_TRUE(IsControlCharacter(0x7F));
  EXPECT_TRUE(IsControlCharacter(0x9F));
  EXPECT_FALSE(IsControlCharacter(0xA0));
}

TEST(AppendOctalEscape, HasThreeDigits) {
  std::string text = "a";
  AppendOctalEscape(text, 1);
  AppendOctalEscape(text, 0x9F);
  AppendOctalEscape(text, 0777);
  EXPECT_EQ(text, "a\\001\\237\\777");
}

}  // namespace
}  // namespace fernwick
