#include "value/property_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::DateOf;

// "a=1 b=2", in the order of the dictionary.
std::string Spelt(const Dictionary& dictionary) {
  std::string text;
  for (const auto& [key, value] : dictionary.Entries()) {
    if (!text.empty()) text += ' ';
    text += std::string(key.View()) + '=' + std::to_string(value.AsInteger()->Bits());
  }
  return text;
}

// What a dictionary of these entries must come to: each is set, one after the other.
Dictionary SetOneByOne(const std::vector<DictionaryEntry>& entries) {
  Dictionary dictionary;
  for (const auto& [key, value] : entries) dictionary.Set(key.View(), value);
  return dictionary;
}

std::vector<DictionaryEntry> DistinctEntries(std::size_t count) {
  std::vector<DictionaryEntry> entries;
  for (std::size_t i = 0; i < count; ++i) entries.emplace_back("key" + std::to_string(i), i);
  return entries;
}

// `length` keys out of "a", "b" and "c", as the digits of `choice` to the base 3 pick them.
std::vector<DictionaryEntry> ChosenEntries(std::size_t choice, std::size_t length) {
  std::vector<DictionaryEntry> entries;
  for (std::size_t i = 0; i < length; ++i, choice /= 3) {
    entries.emplace_back(std::string(1, "abc"[choice % 3]), i);
  }
  return entries;
}

TEST(Dictionary, KeepsTheOrderInWhichTheKeysCame) {
  EXPECT_EQ(Spelt({{"b", 1}, {"", 2}, {"a", 3}, {"B", 4}}), "b=1 =2 a=3 B=4");
}

TEST(Dictionary, RepeatedKeyKeepsItsFirstPlaceAndItsLastValue) {
  EXPECT_EQ(Spelt({{"a", 1}, {"b", 2}, {"a", 3}}), "a=3 b=2");
  EXPECT_EQ(Spelt({{"a", 1}, {"a", 2}, {"a", 3}}), "a=3");
  EXPECT_EQ(Spelt({{"a", 1}, {"b", 2}, {"b", 3}, {"a", 4}, {"c", 5}, {"b", 6}}), "a=4 b=6 c=5");
}

TEST(Dictionary, AnyKeyOfOneCharacterMayBeRepeated) {
  for (int character = 0; character < 256; ++character) {
    const std::string key(1, static_cast<char>(character));
    EXPECT_EQ((Dictionary{{key, 1}, {key, 2}}), (Dictionary{{key, 2}})) << character;
  }
}

TEST(Dictionary, RepeatedKeysAmongFewAreAsIfSetOneByOne) {
  constexpr std::size_t Length = 6;
  for (std::size_t choice = 0; choice < 729; ++choice) {
    const auto entries = ChosenEntries(choice, Length);
    EXPECT_EQ(Spelt(Dictionary(entries)), Spelt(SetOneByOne(entries)));
  }
}

TEST(Dictionary, RepeatedKeysAmongManyAreAsIfSetOneByOne) {
  for (std::size_t choice = 0; choice < 729; ++choice) {
    auto entries = DistinctEntries(40);
    const auto chosen = ChosenEntries(choice, 6);
    for (std::size_t i = 0; i < chosen.size(); ++i) {
      entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(i * 7), chosen[i]);
    }
    EXPECT_EQ(Spelt(Dictionary(entries)), Spelt(SetOneByOne(entries)));
  }
}

TEST(Dictionary, AnyNumberOfDistinctKeysStaysAsItIs) {
  for (std::size_t count = 0; count < 40; ++count) {
    const auto entries = DistinctEntries(count);
    EXPECT_EQ(Spelt(Dictionary(entries)), Spelt(SetOneByOne(entries)));
  }
}

TEST(Dictionary, RepeatedKeyIsFoundAmongKeysThatLookAlike) {
  // Of the same length, first and last character; of any length; without a character.
  const std::vector<std::vector<std::string>> families = {
      {"axxz", "ayyz", "azzz", "a--z"}, {"", "a", "aa", "aaa"}, {"\xC3\xA4", "\xC3\xA5", "\x80"}};
  for (const auto& keys : families) {
    for (std::size_t repeated = 0; repeated < keys.size(); ++repeated) {
      std::vector<DictionaryEntry> entries;
      for (const auto& key : keys) entries.emplace_back(key, entries.size());
      EXPECT_EQ(Dictionary(entries).Size(), keys.size());
      entries.emplace_back(keys[repeated], 99);
      EXPECT_EQ(Spelt(Dictionary(entries)), Spelt(SetOneByOne(entries)));
    }
  }
}

TEST(Dictionary, EveryKeyRepeatedAmongManyKeepsTheLastValues) {
  auto entries = DistinctEntries(1000);
  for (std::size_t i = 0; i < 1000; ++i) entries.emplace_back("key" + std::to_string(i), i + 1000);
  const Dictionary dictionary(entries);
  ASSERT_EQ(dictionary.Size(), 1000u);
  EXPECT_EQ(dictionary.Entries().front(), DictionaryEntry("key0", 1000));
  EXPECT_EQ(dictionary.Entries().back(), DictionaryEntry("key999", 1999));
}

TEST(Dictionary, FindIsExactAndCaseSensitive) {
  const Dictionary dictionary{{"Key", 1}};
  ASSERT_NE(dictionary.Find("Key"), nullptr);
  EXPECT_EQ(*dictionary.Find("Key"), PropertyValue(1));
  EXPECT_EQ(dictionary.Find("key"), nullptr);
  EXPECT_EQ(dictionary.Find("Key "), nullptr);
  EXPECT_EQ(dictionary.Find(""), nullptr);
}

TEST(Dictionary, SetKeepsThePlaceOfAKeyThatIsThere) {
  Dictionary dictionary{{"a", 1}, {"b", 2}};
  dictionary.Set("a", 3);
  EXPECT_EQ(Spelt(dictionary), "a=3 b=2");
}

TEST(Dictionary, SetPutsANewKeyLast) {
  Dictionary dictionary{{"b", 1}};
  dictionary.Set("a", 2);
  EXPECT_EQ(Spelt(dictionary), "b=1 a=2");
}

TEST(Dictionary, SetOrRemoveSetsAValue) {
  Dictionary dictionary{{"a", 1}, {"b", 2}};
  const PropertyValue value = 3;
  dictionary.SetOrRemove("a", &value);
  dictionary.SetOrRemove("c", &value);
  EXPECT_EQ(Spelt(dictionary), "a=3 b=2 c=3");
}

TEST(Dictionary, SetOrRemoveWithoutAValueRemovesTheKey) {
  Dictionary dictionary{{"a", 1}, {"b", 2}, {"c", 3}};
  dictionary.SetOrRemove("b", nullptr);
  EXPECT_EQ(Spelt(dictionary), "a=1 c=3");
  dictionary.SetOrRemove("absent", nullptr);
  EXPECT_EQ(Spelt(dictionary), "a=1 c=3");
}

TEST(Dictionary, SetOrRemoveTakesAValueOutOfTheSameDictionary) {
  Dictionary dictionary{{"a", 1}, {"b", 2}};
  dictionary.SetOrRemove("c", dictionary.Find("a"));
  dictionary.SetOrRemove("a", dictionary.Find("b"));
  EXPECT_EQ(Spelt(dictionary), "a=2 b=2 c=1");
}

TEST(Dictionary, MergeSetsEveryEntryOfTheOther) {
  Dictionary dictionary{{"a", 1}, {"b", 2}};
  dictionary.Merge({{"c", 3}, {"a", 4}, {"d", 5}});
  EXPECT_EQ(Spelt(dictionary), "a=4 b=2 c=3 d=5");
}

TEST(Dictionary, MergeOfManyIsAsIfSetOneByOne) {
  const auto all = DistinctEntries(40);
  Dictionary dictionary{{"key20", 7}, {"a", 1}, {"key10", 8}};
  Dictionary expected = dictionary;
  for (const auto& [key, value] : all) expected.Set(key.View(), value);
  dictionary.Merge(Dictionary(all));
  EXPECT_EQ(Spelt(dictionary), Spelt(expected));
}

TEST(Dictionary, MergeWithAnEmptyOneChangesNothing) {
  Dictionary dictionary{{"a", 1}};
  dictionary.Merge({});
  EXPECT_EQ(Spelt(dictionary), "a=1");
  Dictionary empty;
  empty.Merge(dictionary);
  EXPECT_EQ(Spelt(empty), "a=1");
}

TEST(Dictionary, MergeWithItselfChangesNothing) {
  Dictionary dictionary{{"a", 1}, {"b", 2}, {"c", 3}};
  dictionary.Merge(dictionary);
  EXPECT_EQ(Spelt(dictionary), "a=1 b=2 c=3");
}

TEST(Dictionary, EqualityHeedsKeysValuesAndOrder) {
  const Dictionary dictionary{{"a", 1}, {"b", 2}};
  EXPECT_EQ(dictionary, (Dictionary{{"a", 1}, {"b", 2}}));
  EXPECT_NE(dictionary, (Dictionary{{"b", 2}, {"a", 1}}));
  EXPECT_NE(dictionary, (Dictionary{{"a", 1}, {"b", 3}}));
  EXPECT_NE(dictionary, (Dictionary{{"a", 1}}));
}

// One letter per accessor that yields something.
std::string KindsOf(const PropertyValue& value) {
  std::string kinds;
  if (value.AsDictionary() != nullptr) kinds += 'd';
  if (value.AsArray() != nullptr) kinds += 'a';
  if (value.AsString()) kinds += 's';
  if (value.AsData()) kinds += 'b';
  if (value.AsInteger().has_value()) kinds += 'i';
  if (value.AsReal() != nullptr) kinds += 'r';
  if (value.AsBoolean() != nullptr) kinds += 't';
  if (value.AsDate() != nullptr) kinds += 'D';
  if (value.AsNumber()) kinds += 'n';
  if (value.IsNumber()) kinds += 'N';
  return kinds;
}

TEST(PropertyValue, EachKindAnswersToItsOwnAccessorAlone) {
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
  EXPECT_EQ(*PropertyValue(Dictionary{{"a", 1}}).AsDictionary(), (Dictionary{{"a", 1}}));
  EXPECT_EQ(*PropertyValue(Array{1, 2}).AsArray(), (Array{1, 2}));
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

TEST(PropertyValue, EmptyStringAndEmptyDataAreThere) {
  EXPECT_EQ(PropertyValue("").AsString(), "");
  EXPECT_EQ(PropertyValue(Bytes("")).AsData(), "");
  EXPECT_EQ(PropertyValue(String{}).AsString(), "");
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

TEST(PropertyValue, StringAndDataOfTheSameBytesAreDifferentValues) {
  EXPECT_NE(PropertyValue("a"), Bytes("a"));
}

TEST(PropertyValue, EqualityIsThatOfKindAndContent) {
  const Array distinct = {Dictionary{{"a", 1}},
                          Dictionary{{"a", 2}},
                          Dictionary{},
                          Array{1},
                          Array{2},
                          Array{},
                          "a",
                          "b",
                          Bytes("a"),
                          Bytes("b"),
                          Date{1},
                          Date{2},
                          1,
                          2,
                          1.0,
                          2.0,
                          true,
                          false};
  for (std::size_t i = 0; i < distinct.size(); ++i) {
    for (std::size_t j = 0; j < distinct.size(); ++j) {
      EXPECT_EQ(distinct[i] == distinct[j], i == j)
          << ::testing::PrintToString(distinct[i]) << ::testing::PrintToString(distinct[j]);
    }
  }
}

TEST(PropertyValue, CopiesShareWhatTheyHold) {
  const PropertyValue original = Dictionary{{"a", Array{1, 2}}};
  const PropertyValue copy = original;  // NOLINT: the copy is what is tested
  EXPECT_EQ(copy.AsDictionary(), original.AsDictionary());
}

TEST(PropertyValue, CopyKeepsTheTextAlive) {
  std::optional<PropertyValue> original("a text that is too long to be stored in place");
  const PropertyValue copy = *original;
  const auto text = copy.AsString();
  original.reset();
  EXPECT_EQ(text, "a text that is too long to be stored in place");
}

TEST(PropertyValue, PartTakesThePlaceOfTheWhole) {
  PropertyValue value = Array{Dictionary{{"a", "text"}}, 1};
  value = (*value.AsArray())[0];
  EXPECT_EQ(value, PropertyValue(Dictionary{{"a", "text"}}));
  value = *value.AsDictionary()->Find("a");
  EXPECT_EQ(value, PropertyValue("text"));
  value = *&value;
  EXPECT_EQ(value, PropertyValue("text"));
}

TEST(PropertyValue, VisitorMayKeepTheTextThatItIsGiven) {
  SharedBytes kept;
  {
    const PropertyValue value = "a text that is too long to be stored in place";
    value.Visit([&](const auto& content) {
      if constexpr (requires { content.text; }) kept = content.text;
    });
  }
  EXPECT_EQ(kept.View(), "a text that is too long to be stored in place");
}

TEST(SharedBytes, RunKeepsItsBufferAliveWithoutACopy) {
  SourceBuffer buffer("the whole buffer");
  const auto* place = buffer.View().data() + 4;
  const SharedBytes run(buffer, buffer.View().substr(4, 5));
  buffer = {};
  EXPECT_EQ(run.View(), "whole");
  EXPECT_EQ(run.View().data(), place);
}

TEST(SharedBytes, EqualityIsThatOfTheBytes) {
  EXPECT_EQ(SharedBytes("a"), SharedBytes("a"));
  EXPECT_NE(SharedBytes("a"), SharedBytes("b"));
  EXPECT_EQ(SharedBytes(), SharedBytes(""));
}

}  // namespace
}  // namespace fernwick
