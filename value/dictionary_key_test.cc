#include "value/dictionary_key.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

namespace fernwick {
namespace {

TEST(DictionaryKey, IsItsText) {
  EXPECT_EQ(DictionaryKey("Version").View(), "Version");
  EXPECT_EQ(DictionaryKey("").View(), "");
  EXPECT_EQ(DictionaryKey(std::string("a\0b", 3)).View(), std::string("a\0b", 3));
}

TEST(DictionaryKey, SharesBytesThatAreShared) {
  const SharedBytes bytes("Version");
  EXPECT_EQ(DictionaryKey(bytes).View().data(), bytes.View().data());
}

TEST(DictionaryKey, KeepsBytesThatItShares) {
  const auto make = [] { return DictionaryKey(SharedBytes("text of more than sixteen bytes")); };
  EXPECT_EQ(make().View(), "text of more than sixteen bytes");
}

TEST(DictionaryKey, ItsTextOutlivesIt) {
  const auto text = DictionaryKey("text of more than sixteen bytes").Text();
  EXPECT_EQ(text.View(), "text of more than sixteen bytes");
}

TEST(DictionaryKey, HoldsACopyOfOthers) {
  std::string text = "Version";
  const DictionaryKey key{std::string_view(text)};
  text = "changed";
  EXPECT_EQ(key.View(), "Version");
}

TEST(DictionaryKey, CopiesAreOneAndOutliveIt) {
  auto key = std::make_unique<DictionaryKey>("a key that is too long to be held in place");
  const auto* address = key->Address();
  const auto copy = *key;
  key = nullptr;
  EXPECT_EQ(copy.Address(), address);
  EXPECT_EQ(copy.View(), "a key that is too long to be held in place");
}

TEST(DictionaryKey, IsEqualByItsText) {
  const DictionaryKey key("RID");
  EXPECT_EQ(key, DictionaryKey("RID"));
  EXPECT_NE(key.Address(), DictionaryKey("RID").Address());
  EXPECT_FALSE(key == DictionaryKey("Rid"));
}

TEST(DictionaryKey, TakesTheRoomOfAPointer) {
  EXPECT_EQ(sizeof(DictionaryKey), sizeof(void*));
}

}  // namespace
}  // namespace fernwick
