#include "value/key_interner.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "value/key_hash.h"

namespace fernwick {
namespace {

SharedBytes Text(std::string text) {
  return SharedBytes(std::move(text));
}

TEST(KeyInterner, EqualKeysAreOne) {
  KeyInterner interner;
  const auto version = interner.Intern(Text("Version"));
  const auto priority = interner.Intern(Text("Priority"));
  EXPECT_EQ(interner.Intern(Text("Version")).Address(), version.Address());
  EXPECT_EQ(interner.Intern(Text("Priority")).Address(), priority.Address());
}

TEST(KeyInterner, KeysOutliveIt) {
  const auto intern = [] {
    KeyInterner interner;
    return interner.Intern(Text("a key that is too long to be held in place"));
  };
  EXPECT_EQ(intern().View(), "a key that is too long to be held in place");
}

TEST(KeyInterner, AKeyStaysWhatItIs) {
  KeyInterner interner;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 2000; ++i) {
      const auto text = std::to_string(i * 37);
      EXPECT_EQ(interner.Intern(Text(text)).View(), text);
    }
  }
}

TEST(KeyInterner, KeysOfOneHashAreToldApart) {
  ASSERT_EQ(KeyHash("abcdefgh"), KeyHash("Xbcdefgh"));
  KeyInterner interner;
  EXPECT_EQ(interner.Intern(Text("abcdefgh")).View(), "abcdefgh");
  EXPECT_EQ(interner.Intern(Text("Xbcdefgh")).View(), "Xbcdefgh");
  EXPECT_EQ(interner.Intern(Text("abcdefgh")).View(), "abcdefgh");
}

TEST(KeyInterner, AnEmptyKeyIsAKey) {
  KeyInterner interner;
  EXPECT_EQ(interner.Intern({}).View(), "");
  EXPECT_EQ(interner.Intern(Text("x")).View(), "x");
  EXPECT_EQ(interner.Intern(Text("")).View(), "");
}

}  // namespace
}  // namespace fernwick
