#include "value/key_interner.h"

#include <gtest/gtest.h>

#include <string>

#include "value/key_hash.h"

namespace fernwick {
namespace {

SharedBytes Key(std::string text) {
  return SharedBytes(std::move(text));
}

TEST(KeyInterner, EqualKeysHaveTheSameBytes) {
  KeyInterner interner;
  const auto version = interner.Intern(Key("Version"));
  const auto priority = interner.Intern(Key("Priority"));
  EXPECT_EQ(interner.Intern(Key("Version")).View().data(), version.View().data());
  EXPECT_EQ(interner.Intern(Key("Priority")).View().data(), priority.View().data());
}

TEST(KeyInterner, TheBytesOutliveIt) {
  SharedBytes key;
  {
    KeyInterner interner;
    interner.Intern(Key("a key that is too long to be held in place"));
    key = interner.Intern(Key("a key that is too long to be held in place"));
  }
  EXPECT_EQ(key.View(), "a key that is too long to be held in place");
}

TEST(KeyInterner, AKeyStaysWhatItIs) {
  KeyInterner interner;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 2000; ++i) {
      const auto text = std::to_string(i * 37);
      EXPECT_EQ(interner.Intern(Key(text)).View(), text);
    }
  }
}

TEST(KeyInterner, KeysOfOneHashAreToldApart) {
  ASSERT_EQ(KeyHash("abcdefgh"), KeyHash("Xbcdefgh"));
  KeyInterner interner;
  EXPECT_EQ(interner.Intern(Key("abcdefgh")).View(), "abcdefgh");
  EXPECT_EQ(interner.Intern(Key("Xbcdefgh")).View(), "Xbcdefgh");
  EXPECT_EQ(interner.Intern(Key("abcdefgh")).View(), "abcdefgh");
}

TEST(KeyInterner, AnEmptyKeyIsAKey) {
  KeyInterner interner;
  EXPECT_EQ(interner.Intern({}).View(), "");
  EXPECT_EQ(interner.Intern(Key("x")).View(), "x");
  EXPECT_EQ(interner.Intern(Key("")).View(), "");
}

}  // namespace
}  // namespace fernwick
