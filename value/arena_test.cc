#include "value/arena.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "value/property_value.h"

namespace fernwick {
namespace {

constexpr std::size_t Megabyte = std::size_t{1} << 20;

template <typename T>
bool IsAligned(const T* pointer) {
  return reinterpret_cast<std::uintptr_t>(pointer) % alignof(T) == 0;
}

// Texts of growing length with a character of their own each, over several blocks of an arena.
class ManyTexts {
 public:
  explicit ManyTexts(Arena& arena) {
    for (std::size_t i = 0; i < 2000; ++i) texts_.push_back(arena.Copy(TextOf(i)));
  }

  bool AreIntact() const {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      if (texts_[i] != TextOf(i)) return false;
    }
    return true;
  }

 private:
  static std::string TextOf(std::size_t i) {
    std::string text;
    text.assign(i, static_cast<char>('a' + i % 26));
    return text;
  }

  std::vector<std::string_view> texts_;
};

TEST(Arena, AllocationsDoNotOverlap) {
  Arena arena;
  const ManyTexts texts(arena);
  EXPECT_TRUE(texts.AreIntact());
}

TEST(Arena, AllocationsOfEveryTypeAreAligned) {
  Arena arena;
  for (std::size_t i = 0; i < 3000; ++i) {
    arena.Allocate<char>(i % 17);
    EXPECT_TRUE(IsAligned(arena.Allocate<std::uint16_t>(1)));
    EXPECT_TRUE(IsAligned(arena.Allocate<double>(i % 3)));
    arena.Allocate<char>(1);
    EXPECT_TRUE(IsAligned(arena.Allocate<std::max_align_t>(i % 5)));
    EXPECT_TRUE(IsAligned(arena.Allocate<std::uint32_t>(2)));
  }
}

TEST(Arena, AllocationOfAnySizeMayBeWritten) {
  Arena arena;
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{1023}, std::size_t{1024}, std::size_t{1025}, std::size_t{4095},
        std::size_t{4096}, std::size_t{4097}, Megabyte / 4, Megabyte / 4 + 1, Megabyte,
        Megabyte + 1, 5 * Megabyte}) {
    char* bytes = arena.Allocate<char>(size);
    std::memset(bytes, 0x5A, size);
    EXPECT_EQ(bytes[size - 1], 0x5A);
  }
}

TEST(Arena, LargeAllocationLeavesTheCurrentBlockInUse) {
  Arena arena;
  const char* before = arena.Copy("before").data();
  char* large = arena.Allocate<char>(5 * Megabyte);
  std::memset(large, 0x5A, 5 * Megabyte);
  const char* after = arena.Copy("after").data();
  EXPECT_EQ(after, before + 6);
}

TEST(Arena, AllocationOfNothingCostsNothing) {
  Arena arena;
  arena.Allocate<PropertyValue>(0);
  EXPECT_TRUE(arena.Copy("").empty());
  EXPECT_TRUE(arena.Copy(std::span<const PropertyValue>()).empty());
  EXPECT_EQ(arena.Size(), 0u);
}

TEST(Arena, CopiesTheElements) {
  Arena arena;
  std::vector<PropertyValue> elements = {1, true, "text"};
  const auto copy = arena.Copy(std::span<const PropertyValue>(elements));
  elements[0] = 2;
  EXPECT_NE(copy.data(), elements.data());
  EXPECT_EQ(Array(copy), Array(std::vector<PropertyValue>{1, true, "text"}));
}

TEST(Arena, CopiesTheText) {
  Arena arena;
  std::string text = "text";
  const auto copy = arena.Copy(text);
  text = "else";
  EXPECT_EQ(copy, "text");
}

TEST(Arena, AdoptsALongTextWithoutACopy) {
  Arena arena;
  std::string text(1000, 'x');
  const char* characters = text.data();
  EXPECT_EQ(arena.Adopt(std::move(text)).data(), characters);
  EXPECT_EQ(arena.Size(), 1000u);
}

// A short text is kept inside the std::string itself, which must not move with the arena.
TEST(Arena, AdoptedTextsStayAtTheirAddress) {
  Arena arena;
  std::vector<std::string_view> texts;
  for (std::size_t length = 0; length < 100; ++length) {
    texts.push_back(arena.Adopt(std::string(length, 'x')));
  }
  const Arena moved = std::move(arena);
  for (std::size_t length = 0; length < 100; ++length) {
    EXPECT_EQ(texts[length], std::string(length, 'x'));
  }
}

TEST(Arena, WhatItReturnedStaysValidWhenItIsMoved) {
  Arena arena;
  const ManyTexts texts(arena);
  Arena constructed = std::move(arena);
  EXPECT_TRUE(texts.AreIntact());
  Arena assigned;
  assigned.Copy("something that is freed");
  assigned.Adopt("something short");
  assigned = std::move(constructed);
  EXPECT_TRUE(texts.AreIntact());
}

TEST(Arena, MovedToOneGoesOnInTheSameBlock) {
  Arena arena;
  const char* before = arena.Copy("before").data();
  const std::size_t size = arena.Size();
  Arena moved = std::move(arena);
  EXPECT_EQ(moved.Copy("after").data(), before + 6);
  EXPECT_EQ(moved.Size(), size);
}

TEST(Arena, MovedFromOneIsEmptyAndOfUse) {
  Arena arena;
  const auto text = arena.Copy("text");
  const Arena moved = std::move(arena);
  EXPECT_EQ(arena.Size(), 0u);           // NOLINT(bugprone-use-after-move): that is what is tested
  const auto another = arena.Copy("2");  // of one byte: not even that is left of the old block
  EXPECT_EQ(text, "text");
  EXPECT_EQ(another, "2");

  Arena assigned;
  assigned = std::move(arena);
  EXPECT_EQ(arena.Size(), 0u);  // NOLINT(bugprone-use-after-move)
  const auto third = arena.Copy("3");
  EXPECT_EQ(another, "2");
  EXPECT_EQ(third, "3");
}

TEST(Arena, BlocksDoubleUpToAMegabyte) {
  Arena arena;
  std::vector<std::size_t> sizes;  // after each block
  while (arena.Size() < 4 * Megabyte) {
    arena.Copy("abcdefgh");
    if (sizes.empty() || sizes.back() != arena.Size()) sizes.push_back(arena.Size());
  }
  std::vector<std::size_t> expected;
  for (std::size_t size = 4096; size < Megabyte; size *= 2) expected.push_back(size);
  for (std::size_t size = Megabyte; size <= 4 * Megabyte; size += Megabyte) {
    expected.push_back(size);
  }
  EXPECT_EQ(sizes, expected);
}

}  // namespace
}  // namespace fernwick
