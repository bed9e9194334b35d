#include "testing/reference/bypass_switch.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::testing::reference {
namespace {

TEST(ReferenceBypassSwitch, BareNameIsATokenWithoutAValue) {
  for (const char* text : {"a", "a b", "b a", "  a  ", "a=1 a"})
    EXPECT_TRUE(HasBareName(text, "a"));
  for (const char* text : {"", "a=", "b=a", "A", "ab", "ba", "a\tb"}) {
    EXPECT_FALSE(HasBareName(text, "a")) << text;
  }
}

TEST(ReferenceBypassSwitch, AnyValueOfATokenButTheCharacter0SetsIt) {
  for (const char* text : {"a=", "a=1", "a=00", "a==0", "b a=1", "a=0 a=1", "a=1 a=0",
                           "a=0 "
                           " a= "}) {
    EXPECT_TRUE(IsSwitchSet(text, nullptr, "a")) << text;
  }
  for (const char* text : {"", "a=0", "a=0=1", "b=1", "ba=1", "A=1", "b=a=1", "a=0 a=0"}) {
    EXPECT_FALSE(IsSwitchSet(text, nullptr, "a")) << text;
  }
}

TEST(ReferenceBypassSwitch, VariableIsAStringOrDataInUtf8) {
  const PropertyValue setting[] = {"", "1", testing::Bytes(""), testing::Bytes({"0\0", 2})};
  for (const auto& variable : setting) EXPECT_TRUE(IsSwitchSet("a=0", &variable, "a"));
  const PropertyValue other[] = {"0", 1, true, testing::Bytes("0"), testing::Bytes("\xFF")};
  for (const auto& variable : other) EXPECT_FALSE(IsSwitchSet("a=0", &variable, "a"));
}

}  // namespace
}  // namespace fernwick::testing::reference
