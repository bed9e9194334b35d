#include "lab/recordings/identifiers.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::List;

TEST(IdentifiesComputer, AUniqueIdASerialNumberAHardwareAddress) {
  for (const auto* key : {"UID", "uid", "UUID", "Port UUID", "platform-uuid", "Unique ID",
                          "serial-number", "SerialNumber", "Serial", "local-mac-address"}) {
    EXPECT_TRUE(IdentifiesComputer(key)) << key;
  }
}

TEST(IdentifiesComputer, NothingElse) {
  for (const auto* key : {"RID", "Vendor ID", "Device Model ID", "board-id", "board-rev", "Address",
                          "Serial Bus", "UID Mask", "", "Version", "boot-args"}) {
    EXPECT_FALSE(IdentifiesComputer(key)) << key;
  }
}

// The text after the value's identifiers are replaced in it.
std::string Replaced(const PropertyValue& value, std::string_view text) {
  Identifiers identifiers;
  identifiers.Add(value);
  Pseudonyms pseudonyms;
  return identifiers.Replaced(text, pseudonyms).value_or("unchanged");
}

TEST(Identifiers, OfATextAreFoundInAnyLetterCase) {
  EXPECT_EQ(Replaced("5F1C-9a04", "at 5f1c-9A04, 5F1C-9A04!"), "at 0000-0001, 0000-0001!");
  EXPECT_EQ(Replaced("5F1C-9a04", "5F1C-9a05"), "unchanged");
}

TEST(Identifiers, OfAnIntegerAreFoundInDecimalAndHexadecimal) {
  EXPECT_EQ(Replaced(0x1B2C3D4E, "ridge@1B2C3D4E"), "ridge@00000001");
  EXPECT_EQ(Replaced(0x1B2C3D4E, "ridge 455884110"), "ridge 000000001");
  EXPECT_EQ(Replaced(0xFFFFFFF, "fffffff"), "unchanged");
}

TEST(Identifiers, OfDataAreFoundInHexadecimalAndAsText) {
  const auto address = Bytes(std::string("\x00\x1B\x2C\x3D\x4E\x5F", 6));
  EXPECT_EQ(Replaced(address, "en0 001b2c3d4e5f"), "en0 000000000001");
  EXPECT_EQ(Replaced(address, "en0 00:1B:2C:3D:4E:5F"), "en0 00:00:00:00:00:01");
  EXPECT_EQ(Replaced(address, "en0 00-1b-2c-3d-4e-5f"), "en0 00-00-00-00-00-01");
  EXPECT_EQ(Replaced(Bytes(std::string("C02XK1JG\0", 9)), "of C02XK1JG"), "of 00000001");
}

TEST(Identifiers, InsideContainersAreFound) {
  EXPECT_EQ(Replaced(List({Dict({{"k", "12345678"}}), "87654321"}), "12345678 87654321"),
            "00000001 00000002");
}

TEST(Identifiers, ThatContainAnotherAreReplacedWhole) {
  EXPECT_EQ(Replaced(List({"12345678", "0-12345678"}), "0-12345678"), "0-00000001");
}

TEST(Identifiers, OfThoseThatBeginAlikeTheLongestIsReplaced) {
  const auto identifiers = List({"abcdefgh", "abcdefghij", "abcdefghijklmn", "abcdefghix"});
  EXPECT_EQ(Replaced(identifiers, "abcdefghijklm abcdefghz abcdefghijklmn abcdefghi"),
            "0000000001klm 00000002z 00000000000003 00000002i");
  EXPECT_EQ(Replaced(identifiers, "abcdefg"), "unchanged");
  EXPECT_EQ(Replaced(identifiers, "aaaaaaaa zzzzzzzz abcdefga"), "unchanged");
}

TEST(Identifiers, ThatAreLongAreFoundByTheirFirstCharacters) {
  const auto begin = std::string(64, 'A');
  const auto identifiers = List({testing::Kept(begin + "BBBB"), testing::Kept(begin + "CC")});
  const auto pseudonym = [](std::size_t length, char number) {
    return std::string(length - 1, '0') + number;
  };
  EXPECT_EQ(Replaced(identifiers, begin + "bbbb!"), pseudonym(68, '1') + "!");
  EXPECT_EQ(Replaced(identifiers, begin + "bbx" + begin + "CC"),
            pseudonym(66, '1') + "x" + pseudonym(66, '2'));
  EXPECT_EQ(Replaced(identifiers, begin.substr(1) + "b"), "unchanged");
}

// Against a search for each spelling at each character.
TEST(Identifiers, AreThoseThatAPlainSearchFinds) {
  std::uint32_t state = 1;
  const auto random = [&](std::uint32_t limit) {
    state = state * 1664525 + 1013904223;
    return (state >> 16) % limit;
  };
  const auto word = [&](std::size_t length) {
    std::string text;
    while (text.size() < length) text += static_cast<char>('a' + random(2));
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> spellings;
    Identifiers identifiers;
    for (int i = 0; i < 20; ++i) {
      spellings.push_back(word(8 + random(4)));
      identifiers.Add(PropertyValue(std::string_view(spellings.back())));
    }
    const auto text = word(100);
    std::string expected;
    Pseudonyms pseudonyms;
    for (std::size_t i = 0; i < text.size();) {
      std::string longest;
      for (const auto& each : spellings) {
        if (text.compare(i, each.size(), each) == 0 && each.size() > longest.size()) longest = each;
      }
      expected += longest.empty() ? text.substr(i, 1) : pseudonyms.OfText(longest);
      i += longest.empty() ? 1 : longest.size();
    }
    Pseudonyms others;
    EXPECT_EQ(identifiers.Replaced(text, others).value_or(text), expected);
  }
}

TEST(Identifiers, ShorterThanEightCharactersAreNotReplaced) {
  EXPECT_EQ(Replaced(List({"1234567", 1234567, Bytes("abc"), true}), "1234567 616263"),
            "unchanged");
}

std::string FormsReplaced(std::string_view name) {
  Pseudonyms pseudonyms;
  return ReplaceIdentifierForms(name, pseudonyms).value_or("unchanged");
}

TEST(IdentifierForms, AreUuidsAddressesAndLongNumbers) {
  EXPECT_EQ(FormsReplaced("disk 5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A04"),
            "disk 00000000-0000-0000-0000-000000000001");
  EXPECT_EQ(FormsReplaced("en@00:1b:2c:3d:4e:5f,x"), "en@00:00:00:00:00:01,x");
  EXPECT_EQ(FormsReplaced("en@00-1b-2c-3d-4e-5f"), "en@00-00-00-00-00-01");
  EXPECT_EQ(FormsReplaced("ridge@1b2c3d4e5f60"), "ridge@000000000001");
  EXPECT_EQ(FormsReplaced("0x1b2c3d4e5f60 1B2C3D4E5F60"), "00000000000001 000000000002");
}

TEST(IdentifierForms, AreNothingElse) {
  for (const auto* name :
       {"", "options", "bridge0", "ridge@1b2c3d4e5f6", "x1b2c3d4e5f60", "1b2c3d4e5f60x",
        "deadbeefcafe", "00:1b:2c:3d:4e", "00:1b:2c:3d:4e-5f", "00:1b:2c:3d:4e:5", "0x",
        "5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A0", "5F1C9A04-7C15-4E0C-9C2F"}) {
    EXPECT_EQ(FormsReplaced(name), "unchanged") << name;
  }
}

}  // namespace
}  // namespace fernwick::lab
