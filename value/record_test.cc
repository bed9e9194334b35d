#include "value/record.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::Kept;

// "a=1 b=2", in the order of the record.
std::string Spelt(const Record& record) {
  std::string text;
  for (const auto& [key, value] : record.Entries()) {
    if (!text.empty()) text += ' ';
    text += std::string(key) + '=' + std::to_string(value.AsInteger()->Bits());
  }
  return text;
}

// "key0" to "key39" with their numbers.
Record FortyEntries() {
  Record record;
  for (int i = 0; i < 40; ++i) record.Set(Kept("key" + std::to_string(i)), i);
  return record;
}

TEST(Record, KeepsTheOrderInWhichTheKeysCame) {
  EXPECT_EQ(Spelt({{"b", 1}, {"", 2}, {"a", 3}, {"B", 4}}), "b=1 =2 a=3 B=4");
}

TEST(Record, RepeatedKeyKeepsItsFirstLocationAndItsLastValue) {
  EXPECT_EQ(Spelt({{"a", 1}, {"b", 2}, {"a", 3}}), "a=3 b=2");
}

TEST(Record, EmptyOneHasNoEntry) {
  EXPECT_EQ(Record().Size(), 0u);
  EXPECT_TRUE(Record().Entries().empty());
  EXPECT_EQ(Record().Find(""), nullptr);
  EXPECT_EQ(Dictionary(Record()).Size(), 0u);
}

TEST(Record, FindsAValueByItsKey) {
  const Record record{{"a", 1}, {"b", 2}};
  ASSERT_NE(record.Find("b"), nullptr);
  EXPECT_EQ(*record.Find("b"), PropertyValue(2));
  EXPECT_EQ(record.Find("B"), nullptr);
}

TEST(Record, IsADictionaryThatViewsItsEntries) {
  const Record record{{"a", 1}, {"b", 2}};
  const Dictionary dictionary = record;
  EXPECT_EQ(dictionary, Dict({{"a", 1}, {"b", 2}}));
  EXPECT_EQ(dictionary.Entries().data(), record.Entries().data());
}

TEST(Record, OfADictionaryHasEntriesOfItsOwn) {
  std::vector<DictionaryEntry> entries = {{"a", 1}, {"b", 2}};
  const Record record{Dictionary(entries)};
  entries[0].value = 3;
  EXPECT_EQ(Spelt(record), "a=1 b=2");
}

TEST(Record, CopyHasEntriesOfItsOwn) {
  Record original{{"a", 1}};
  const Record copy = original;
  original.Set("a", 2);
  EXPECT_EQ(Spelt(copy), "a=1");
}

TEST(Record, SetKeepsTheLocationOfAKeyThatIsThere) {
  Record record{{"a", 1}, {"b", 2}};
  record.Set("a", 3);
  EXPECT_EQ(Spelt(record), "a=3 b=2");
}

TEST(Record, SetPutsANewKeyLast) {
  Record record{{"b", 1}};
  record.Set("a", 2);
  EXPECT_EQ(Spelt(record), "b=1 a=2");
}

TEST(Record, SetOrRemoveSetsAValue) {
  Record record{{"a", 1}, {"b", 2}};
  const PropertyValue value = 3;
  record.SetOrRemove("a", &value);
  record.SetOrRemove("c", &value);
  EXPECT_EQ(Spelt(record), "a=3 b=2 c=3");
}

TEST(Record, SetOrRemoveWithoutAValueRemovesTheKey) {
  Record record{{"a", 1}, {"b", 2}, {"c", 3}};
  record.SetOrRemove("b", nullptr);
  EXPECT_EQ(Spelt(record), "a=1 c=3");
  record.SetOrRemove("absent", nullptr);
  EXPECT_EQ(Spelt(record), "a=1 c=3");
}

TEST(Record, SetOrRemoveAcceptsAValueOfTheSameRecord) {
  Record record{{"a", 1}, {"b", 2}};
  record.SetOrRemove("c", record.Find("a"));
  record.SetOrRemove("a", record.Find("b"));
  EXPECT_EQ(Spelt(record), "a=2 b=2 c=1");
}

// Whatever the capacity is, one of these makes the entries move.
TEST(Record, SetAcceptsAKeyAndAValueOfTheSameRecordWhileItGrows) {
  Record record{{"key", "value"}};
  for (int i = 0; i < 100; ++i) {
    const auto key = Kept(std::to_string(i));
    record.SetOrRemove(key, &record.Entries().back().value);
    EXPECT_EQ(*record.Find(key), PropertyValue("value"));
  }
}

TEST(Record, MergeSetsEveryEntryOfTheOther) {
  Record record{{"a", 1}, {"b", 2}};
  record.Merge(Record{{"c", 3}, {"a", 4}, {"d", 5}});
  EXPECT_EQ(Spelt(record), "a=4 b=2 c=3 d=5");
}

TEST(Record, MergeOfManyIsAsIfSetOneByOne) {
  const Record all = FortyEntries();
  Record record{{"key20", 7}, {"a", 1}, {"key10", 8}};
  Record expected = record;
  for (const auto& [key, value] : all.Entries()) expected.Set(key, value);
  record.Merge(all);
  EXPECT_EQ(Spelt(record), Spelt(expected));
  EXPECT_EQ(record.Size(), 41u);
}

TEST(Record, MergeWithAnEmptyOneChangesNothing) {
  Record record{{"a", 1}};
  record.Merge({});
  EXPECT_EQ(Spelt(record), "a=1");
  Record empty;
  empty.Merge(record);
  EXPECT_EQ(Spelt(empty), "a=1");
}

TEST(Record, MergeWithACopyChangesNothing) {
  for (const Record& original : {Record{{"a", 1}, {"b", 2}, {"c", 3}}, FortyEntries()}) {
    Record record = original;
    record.Merge(original);
    EXPECT_EQ(record, original);
  }
}

TEST(Record, EqualityIsThatOfKeysValuesAndOrder) {
  const Record record{{"a", 1}, {"b", 2}};
  EXPECT_EQ(record, (Record{{"a", 1}, {"b", 2}}));
  EXPECT_NE(record, (Record{{"b", 2}, {"a", 1}}));
  EXPECT_NE(record, (Record{{"a", 1}, {"b", 3}}));
  EXPECT_NE(record, (Record{{"a", 1}}));
}

}  // namespace
}  // namespace fernwick
