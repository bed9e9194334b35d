#include "value/xml/names.h"

#include <gtest/gtest.h>

#include <string>

#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

std::string Encoded(char32_t character) {
  std::string text;
  AppendUtf8(text, character);
  return text;
}

struct NameRow {
  std::string text;
  std::size_t length;
};

TEST(XmlNames, NameIsTheLongestRunAtTheStart) {
  const NameRow rows[] = {
      {"", 0},
      {"a", 1},
      {"plist>", 5},
      {"a b", 1},
      {"a-b.c_d:e9/>", 10},
      {"_a", 2},
      {":a", 2},
      {"-a", 0},
      {".a", 0},
      {"9a", 0},
      {" a", 0},
      {"<a", 0},
      {"a=", 1},
      {"a\n", 1},
      {"\xC3\xA4"
       "b c",
       3},
      {"a\xC2\xB7", 3},
      {"\xC2\xB7"
       "a",
       0},
      {"a\xC3\x97", 1},
      {"xml:lang='", 8},
      {"A\tB", 1},
  };
  for (const auto& [text, length] : rows) EXPECT_EQ(XmlNameLength(text), length) << text;
}

TEST(XmlNames, NameEndsWithItsText) {
  EXPECT_EQ(XmlNameLength(std::string_view("ab").substr(0, 1)), 1u);
  EXPECT_EQ(XmlNameLength(std::string_view("ab").substr(0, 0)), 0u);
}

// The first and the last character of each range that may begin a name.
constexpr char32_t NameStartBounds[][2] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

// ... and of each that may only follow.
constexpr char32_t NameFollowBounds[][2] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <typename Bounds>
bool IsWithin(const Bounds& bounds, char32_t character) {
  for (const auto& [first, last] : bounds) {
    if (character >= first && character <= last) return true;
  }
  return false;
}

TEST(XmlNames, EveryCharacterBeginsOrFollowsAsItsRangeSays) {
  for (char32_t character = 1; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    const auto text = Encoded(character);
    const bool begins = IsWithin(NameStartBounds, character);
    const bool follows = begins || IsWithin(NameFollowBounds, character);
    ASSERT_EQ(XmlNameLength(text), begins ? text.size() : 0) << unsigned{character};
    ASSERT_EQ(XmlNameLength("a" + text), follows ? 1 + text.size() : 1) << unsigned{character};
  }
}

}  // namespace
}  // namespace fernwick
