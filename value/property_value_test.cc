#include "value/property_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::Kept;
using testing::List;

// "a=1 b=2", in the order of the entries.
std::string Spelt(std::span<const DictionaryEntry> entries) {
  std::string text;
  for (const auto& [key, value] : entries) {
    if (!text.empty()) text += ' ';
    text += std::string(key) + '=' + std::to_string(value.AsInteger()->Bits());
  }
  return text;
}

std::string SpeltWithoutRepeatedKeys(std::vector<DictionaryEntry> entries) {
  return Spelt(WithoutRepeatedKeys(entries));
}

// What is left of these entries when each is set, one after the other.
std::string SpeltSetOneByOne(const std::vector<DictionaryEntry>& entries) {
  Record record;
  for (const auto& [key, value] : entries) record.Set(key, value);
  return Spelt(record.Entries());
}

std::vector<DictionaryEntry> DistinctEntries(std::size_t count) {
  std::vector<DictionaryEntry> entries;
  for (std::size_t i = 0; i < count; ++i) entries.push_back({Kept("key" + std::to_string(i)), i});
  return entries;
}

// `length` keys out of "a", "b" and "c", as the digits of `choice` to the base 3 pick them.
std::vector<DictionaryEntry> ChosenEntries(std::size_t choice, std::size_t length) {
  std::vector<DictionaryEntry> entries;
  for (std::size_t i = 0; i < length; ++i, choice /= 3) {
    entries.push_back({std::string_view("abc").substr(choice % 3, 1), i});
  }
  return entries;
}

TEST(RepeatedKeys, KeepTheirFirstLocationAndTheirLastValue) {
  EXPECT_EQ(SpeltWithoutRepeatedKeys({{"a", 1}, {"b", 2}, {"a", 3}}), "a=3 b=2");
  EXPECT_EQ(SpeltWithoutRepeatedKeys({{"a", 1}, {"a", 2}, {"a", 3}}), "a=3");
  EXPECT_EQ(SpeltWithoutRepeatedKeys({{"a", 1}, {"b", 2}, {"b", 3}, {"a", 4}, {"c", 5}, {"b", 6}}),
            "a=4 b=6 c=5");
}

TEST(RepeatedKeys, OfOneCharacterMayBeAnyCharacter) {
  for (int character = 0; character < 256; ++character) {
    const std::string key(1, static_cast<char>(character));
    std::vector<DictionaryEntry> entries = {{key, 1}, {key, 2}};
    const auto left = WithoutRepeatedKeys(entries);
    ASSERT_EQ(left.size(), 1u) << character;
    EXPECT_EQ(left.front(), (DictionaryEntry{key, 2})) << character;
  }
}

TEST(RepeatedKeys, AmongFewAreAsIfSetOneByOne) {
  constexpr std::size_t Length = 6;
  for (std::size_t choice = 0; choice < 729; ++choice) {
    const auto entries = ChosenEntries(choice, Length);
    EXPECT_EQ(SpeltWithoutRepeatedKeys(entries), SpeltSetOneByOne(entries));
  }
}

TEST(RepeatedKeys, AmongManyAreAsIfSetOneByOne) {
  for (std::size_t choice = 0; choice < 729; ++choice) {
    auto entries = DistinctEntries(40);
    const auto chosen = ChosenEntries(choice, 6);
    for (std::size_t i = 0; i < chosen.size(); ++i) {
      entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(i * 7), chosen[i]);
    }
    EXPECT_EQ(SpeltWithoutRepeatedKeys(entries), SpeltSetOneByOne(entries));
  }
}

TEST(RepeatedKeys, WithoutAnyTheEntriesStayAsTheyAre) {
  for (std::size_t count = 0; count < 40; ++count) {
    auto entries = DistinctEntries(count);
    const auto original = entries;
    const auto left = WithoutRepeatedKeys(entries);
    EXPECT_EQ(left.data(), entries.data());
    EXPECT_EQ(left.size(), count);
    EXPECT_EQ(entries, original);
  }
}

TEST(RepeatedKeys, AreFoundAmongKeysThatLookAlike) {
  // Of the same length, first and last character; of any length; without a character.
  const std::vector<std::vector<std::string_view>> families = {
      {"axxz", "ayyz", "azzz", "a--z"}, {"", "a", "aa", "aaa"}, {"\xC3\xA4", "\xC3\xA5", "\x80"}};
  for (const auto& keys : families) {
    for (const auto& repeated : keys) {
      std::vector<DictionaryEntry> entries;
      for (const auto& key : keys) entries.push_back({key, entries.size()});
      EXPECT_EQ(SpeltWithoutRepeatedKeys(entries), Spelt(entries));
      entries.push_back({repeated, 99});
      EXPECT_EQ(SpeltWithoutRepeatedKeys(entries), SpeltSetOneByOne(entries));
    }
  }
}

TEST(RepeatedKeys, EveryOneAmongManyKeepsTheLastValue) {
  auto entries = DistinctEntries(1000);
  for (std::size_t i = 0; i < 1000; ++i) entries.push_back({entries[i].key, i + 1000});
  const auto left = WithoutRepeatedKeys(entries);
  ASSERT_EQ(left.size(), 1000u);
  EXPECT_EQ(left.front(), (DictionaryEntry{"key0", 1000}));
  EXPECT_EQ(left.back(), (DictionaryEntry{"key999", 1999}));
}

TEST(Dictionary, KeepsTheOrderInWhichTheKeysCame) {
  EXPECT_EQ(Spelt(Dict({{"b", 1}, {"", 2}, {"a", 3}, {"B", 4}}).Entries()), "b=1 =2 a=3 B=4");
}

TEST(Dictionary, ViewsItsEntries) {
  const std::vector<DictionaryEntry> entries = {{"a", 1}, {"b", 2}};
  const Dictionary dictionary(entries);
  EXPECT_EQ(dictionary.Size(), 2u);
  EXPECT_EQ(dictionary.Entries().data(), entries.data());
  EXPECT_EQ(dictionary.Find("b"), &entries[1].value);
}

TEST(Dictionary, EmptyOneHasNoEntry) {
  EXPECT_EQ(Dictionary().Size(), 0u);
  EXPECT_TRUE(Dictionary().Entries().empty());
  EXPECT_EQ(Dictionary().Find(""), nullptr);
}

TEST(Dictionary, FindIsExactAndCaseSensitive) {
  const Dictionary dictionary = Dict({{"Key", 1}});
  ASSERT_NE(dictionary.Find("Key"), nullptr);
  EXPECT_EQ(*dictionary.Find("Key"), PropertyValue(1));
  EXPECT_EQ(dictionary.Find("key"), nullptr);
  EXPECT_EQ(dictionary.Find("Key "), nullptr);
  EXPECT_EQ(dictionary.Find(""), nullptr);
}

TEST(Dictionary, EqualityIsThatOfKeysValuesAndOrder) {
  const Dictionary dictionary = Dict({{"a", 1}, {"b", 2}});
  EXPECT_EQ(dictionary, Dict({{"a", 1}, {"b", 2}}));
  EXPECT_NE(dictionary, Dict({{"b", 2}, {"a", 1}}));
  EXPECT_NE(dictionary, Dict({{"a", 1}, {"b", 3}}));
  EXPECT_NE(dictionary, Dict({{"a", 1}}));
}

TEST(Array, ViewsItsElementsInTheirOrder) {
  const std::vector<PropertyValue> elements = {1, "a", true};
  const Array array(elements);
  EXPECT_EQ(array.begin(), elements.data());
  EXPECT_EQ(array.end(), elements.data() + 3);
  EXPECT_EQ(array.size(), 3u);
  EXPECT_FALSE(array.empty());
  EXPECT_EQ(&array[1], &elements[1]);
}

TEST(Array, EmptyOneHasNoElement) {
  EXPECT_EQ(Array().size(), 0u);
  EXPECT_TRUE(Array().empty());
  EXPECT_EQ(Array().begin(), Array().end());
}

// One letter per accessor that yields something.
std::string KindsOf(const PropertyValue& value) {
  std::string kinds;
  if (value.AsDictionary()) kinds += 'd';
  if (value.AsArray()) kinds += 'a';
  if (value.AsString()) kinds += 's';
  if (value.AsData()) kinds += 'b';
  if (value.AsInteger()) kinds += 'i';
  if (value.AsReal()) kinds += 'r';
  if (value.AsBoolean().has_value()) kinds += 't';
  if (value.AsDate()) kinds += 'D';
  if (value.AsNumber()) kinds += 'n';
  if (value.IsNumber()) kinds += 'N';
  return kinds;
}

TEST(PropertyValue, OnlyTheAccessorOfItsKindReturnsAValue) {
  EXPECT_EQ(KindsOf(Dictionary()), "d");
  EXPECT_EQ(KindsOf(Array()), "a");
  EXPECT_EQ(KindsOf("1"), "s");
  EXPECT_EQ(KindsOf(Bytes("1")), "b");
  EXPECT_EQ(KindsOf(1), "inN");
  EXPECT_EQ(KindsOf(1.0), "rnN");
  EXPECT_EQ(KindsOf(true), "tnN");
  EXPECT_EQ(KindsOf(DateOf("1970-01-01T00:00:01Z")), "D");
}

TEST(PropertyValue, AccessorsYieldTheContent) {
  EXPECT_EQ(*PropertyValue(Dict({{"a", 1}})).AsDictionary(), Dict({{"a", 1}}));
  EXPECT_EQ(*PropertyValue(List({1, 2})).AsArray(), List({1, 2}));
  EXPECT_EQ(PropertyValue("text").AsString(), "text");
  EXPECT_EQ(PropertyValue(std::string_view("a\0b", 3)).AsString(), std::string_view("a\0b", 3));
  EXPECT_EQ(PropertyValue(Bytes("bytes")).AsData(), "bytes");
  EXPECT_EQ(*PropertyValue(-5).AsInteger(), Integer(-5));
  EXPECT_EQ(*PropertyValue(std::numeric_limits<std::uint64_t>::max()).AsInteger(),
            Integer(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_EQ(*PropertyValue(0.5).AsReal(), 0.5);
  EXPECT_FALSE(*PropertyValue(false).AsBoolean());
  EXPECT_EQ(PropertyValue(Date{86400}).AsDate()->seconds, 86400);
}

TEST(PropertyValue, VisitorIsCalledWithTheContent) {
  struct Describe {
    std::string operator()(Dictionary content) const { return Spelt(content.Entries()); }
    std::string operator()(Array content) const { return std::to_string(content.size()); }
    std::string operator()(std::string_view content) const { return std::string(content); }
    std::string operator()(Data content) const { return "data " + std::string(content.bytes); }
    std::string operator()(Integer content) const { return std::to_string(content.Bits()); }
    std::string operator()(double content) const { return std::to_string(content); }
    std::string operator()(bool content) const { return content ? "yes" : "no"; }
    std::string operator()(Date content) const { return "date " + std::to_string(content.seconds); }
  };
  const auto described = [](const PropertyValue& value) { return value.Visit(Describe()); };
  EXPECT_EQ(described(Dict({{"a", 1}})), "a=1");
  EXPECT_EQ(described(List({1, 2})), "2");
  EXPECT_EQ(described("text"), "text");
  EXPECT_EQ(described(Bytes("bytes")), "data bytes");
  EXPECT_EQ(described(-1), "18446744073709551615");
  EXPECT_EQ(described(0.5), "0.500000");
  EXPECT_EQ(described(true), "yes");
  EXPECT_EQ(described(Date{86400}), "date 86400");
}

TEST(PropertyValue, EmptyStringAndEmptyDataAreThere) {
  EXPECT_EQ(PropertyValue("").AsString(), "");
  EXPECT_EQ(PropertyValue(Bytes("")).AsData(), "");
  EXPECT_EQ(PropertyValue(std::string_view()).AsString(), "");
  EXPECT_EQ(PropertyValue(Data()).AsData(), "");
}

TEST(PropertyValue, BooleanCountsAsOneOrZero) {
  EXPECT_EQ(PropertyValue(true).AsNumber(), Number(Integer(1)));
  EXPECT_EQ(PropertyValue(false).AsNumber(), Number(Integer(0)));
}

TEST(PropertyValue, IntegerAndRealAreTheNumbersThatTheyAre) {
  EXPECT_EQ(PropertyValue(-1).AsNumber(), Number(Integer(-1)));
  EXPECT_EQ(PropertyValue(0.5).AsNumber(), Number(0.5));
}

TEST(PropertyValue, KindsOfNumberAreDifferentValues) {
  EXPECT_NE(PropertyValue(1), PropertyValue(1.0));
  EXPECT_NE(PropertyValue(1), PropertyValue(true));
  EXPECT_NE(PropertyValue(0.0), PropertyValue(false));
}

TEST(PropertyValue, IntegersOfTheSameBitsAndAnotherSignAreDifferentValues) {
  EXPECT_NE(PropertyValue(-1), PropertyValue(std::numeric_limits<std::uint64_t>::max()));
}

TEST(PropertyValue, StringAndDataOfTheSameBytesAreDifferentValues) {
  EXPECT_NE(PropertyValue("a"), Bytes("a"));
}

TEST(PropertyValue, NanIsNotEqualToItself) {
  const PropertyValue nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(nan, nan);
}

TEST(PropertyValue, EqualityIsThatOfKindAndContent) {
  const Array distinct =
      List({Dict({{"a", 1}}), Dict({{"a", 2}}), Dictionary(), List({1}), List({2}), Array(), "a",
            "b", Bytes("a"), Bytes("b"), Date{1}, Date{2}, 1, 2, 1.0, 2.0, true, false});
  for (std::size_t i = 0; i < distinct.size(); ++i) {
    for (std::size_t j = 0; j < distinct.size(); ++j) {
      EXPECT_EQ(distinct[i] == distinct[j], i == j)
          << ::testing::PrintToString(distinct[i]) << ::testing::PrintToString(distinct[j]);
    }
  }
}

TEST(PropertyValue, CopiesViewTheSame) {
  const std::string text = "a text";
  const PropertyValue original = text;
  const PropertyValue copy = original;  // NOLINT: the copy is what is tested
  EXPECT_EQ(copy.AsString()->data(), text.data());
}

TEST(PropertyValue, PartMayReplaceTheWhole) {
  PropertyValue value = List({Dict({{"a", "text"}}), 1});
  value = (*value.AsArray())[0];
  EXPECT_EQ(value, PropertyValue(Dict({{"a", "text"}})));
  value = *value.AsDictionary()->Find("a");
  EXPECT_EQ(value, PropertyValue("text"));
}

TEST(PropertyValue, CannotViewATemporaryString) {
  EXPECT_FALSE((std::is_constructible_v<PropertyValue, std::string>));
  EXPECT_TRUE((std::is_constructible_v<PropertyValue, std::string&>));
  EXPECT_TRUE((std::is_constructible_v<PropertyValue, std::string_view>));
}

TEST(PropertyValue, IsNotMadeFromAPointer) {
  EXPECT_FALSE((std::is_constructible_v<PropertyValue, const PropertyValue*>));
  EXPECT_FALSE((std::is_constructible_v<PropertyValue, const void*>));
}

}  // namespace
}  // namespace fernwick
