#include "value/unicode/source_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace fernwick {
namespace {

struct SourceRow {
  std::string bytes;
  std::string text;
  bool hasByteOrderMark;
  bool endsInInvalidUtf16;
};

TEST(SourceText, FollowsTheByteOrderMarkAndNothingElse) {
  const SourceRow rows[] = {
      {"", "", false, false},
      {"abc", "abc", false, false},
      {"\xEF\xBB\xBF"
       "abc",
       "abc", true, false},
      {"\xEF\xBB\xBF", "", true, false},
      {"\xEF\xBB\xBF\xEF\xBB\xBF", "\xEF\xBB\xBF", true, false},  // the second one is text
      {"\xEF\xBB", "\xEF\xBB", false, false},
      {"a\xEF\xBB\xBF", "a\xEF\xBB\xBF", false, false},
      {"\xFF", "\xFF", false, false},
      {"a\xFF\x80", "a\xFF\x80", false, false},
      {{"\0a\0b", 4}, {"\0a\0b", 4}, false, false},  // UTF-16 without a mark is not guessed
      {"\xFE\xFF", "", true, false},
      {"\xFF\xFE", "", true, false},
      {{"\xFE\xFF\0a\x20\xAC", 6}, "a\xE2\x82\xAC", true, false},
      {{"\xFF\xFE"
        "a\0\xAC\x20",
        6},
       "a\xE2\x82\xAC",
       true,
       false},
      {{"\xFF\xFE\0\0", 4}, {"\0", 1}, true, false},
      {{"\xFE\xFF\0a\0", 5}, "a", true, true},
      {{"\xFE\xFF\0a\xD8\0\0b", 8}, "a", true, true},
      {{"\xFF\xFE"
        "a\0\0\xDC"
        "b\0",
        8},
       "a",
       true,
       true},
  };
  for (const auto& [bytes, text, hasByteOrderMark, endsInInvalidUtf16] : rows) {
    SCOPED_TRACE(::testing::PrintToString(bytes));
    Arena arena;
    const auto source = DecodeSource(bytes, arena);
    EXPECT_EQ(source.text, text);
    EXPECT_EQ(source.hasByteOrderMark, hasByteOrderMark);
    EXPECT_EQ(source.endsInInvalidUtf16, endsInInvalidUtf16);
  }
}

TEST(SourceText, BytesThatNeedNoTranscodingAreNotCopied) {
  const std::string_view bytes =
      "\xEF\xBB\xBF"
      "abc";
  Arena arena;
  EXPECT_EQ(DecodeSource(bytes, arena).text.data(), bytes.data() + 3);
  EXPECT_EQ(arena.Size(), 0u);
}

TEST(SourceText, TranscodedTextIsKeptInTheArena) {
  Arena arena;
  SourceText source;
  {
    const std::string bytes("\xFE\xFF\0a", 4);
    source = DecodeSource(bytes, arena);
  }
  const Arena moved = std::move(arena);
  EXPECT_EQ(source.text, "a");
}

}  // namespace
}  // namespace fernwick
