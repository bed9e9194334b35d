#include "personality/checked_values.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "personality/personality.h"

namespace fernwick {
namespace {

// A record with another value under each name.
Dictionary NumberedRecord() {
  Dictionary record;
  for (std::size_t i = 0; i < std::size(CheckedKeyNames); ++i) record.Set(CheckedKeyNames[i], i);
  return record;
}

const PropertyValue* Find(const Dictionary& record, std::string_view name) {
  return CheckedValues(record).Find(CheckedKey::Named(name).value());
}

TEST(CheckedKey, HasTheNameThatItIsMadeOf) {
  EXPECT_EQ(CheckedKey("Port OTP Revision").Name(), "Port OTP Revision");
  for (const auto name : CheckedKeyNames) EXPECT_EQ(CheckedKey::Named(name)->Name(), name);
}

TEST(CheckedKey, IsFoundByItsExactName) {
  for (const char* name : {"", "R", "RI", "Rid", "rid", "RID ", "Port  UUID", "Firmware",
                           "Priority", "SetNVRAM", "ClearNVRAM", "Personality Type"}) {
    EXPECT_FALSE(CheckedKey::Named(name)) << name;
  }
}

TEST(CheckedValues, AreThoseOfTheRecord) {
  const auto record = NumberedRecord();
  const CheckedValues values(record);
  for (const auto name : CheckedKeyNames) {
    EXPECT_EQ(values.Find(*CheckedKey::Named(name)), record.Find(name)) << name;
  }
  EXPECT_EQ(values.Find("RID"), record.Find("RID"));
}

TEST(CheckedValues, OfAnEmptyRecordAreAbsent) {
  for (const auto name : CheckedKeyNames) EXPECT_EQ(Find({}, name), nullptr) << name;
}

TEST(CheckedValues, OneIsFoundAlone) {
  for (const auto name : CheckedKeyNames) {
    const Dictionary record = {{name, 5}};
    for (const auto other : CheckedKeyNames) {
      EXPECT_EQ(Find(record, other), name == other ? record.Find(name) : nullptr) << name << other;
    }
  }
}

// Whatever the names are told apart by, one that differs anywhere is another.
TEST(CheckedValues, AKeyThatDiffersInOneByteIsAnother) {
  for (const auto name : CheckedKeyNames) {
    for (std::size_t i = 0; i < name.size(); ++i) {
      for (const char byte : {'\0', ' ', 'a', 'n', '\xFF'}) {
        std::string other(name);
        if (other[i] == byte) continue;
        other[i] = byte;
        EXPECT_EQ(Find({{other, 5}}, name), nullptr) << other;
      }
    }
  }
}

TEST(CheckedValues, AKeyOfAnotherSizeIsAnother) {
  for (const auto name : CheckedKeyNames) {
    for (std::size_t size = 0; size < name.size(); ++size) {
      EXPECT_EQ(Find({{name.substr(0, size), 5}}, name), nullptr) << name << size;
    }
    for (int byte = 0; byte < 256; ++byte) {
      EXPECT_EQ(Find({{std::string(name) + static_cast<char>(byte), 5}}, name), nullptr) << name;
    }
  }
}

TEST(CheckedValues, OtherKeysAreNotInTheWay) {
  Dictionary record;
  for (std::size_t i = 0; i < 300; ++i) record.Set("Note " + std::to_string(i), i);
  record.Set("RID", 2);
  record.Set("Firmware", "Grat.bin");
  EXPECT_EQ(Find(record, "RID"), record.Find("RID"));
}

// Records whose keys share their bytes, as those of one file do.
TEST(CheckedKeyMemo, FindsTheSameValues) {
  CheckedKeyMemo memo;
  const auto first = NumberedRecord();
  std::vector<DictionaryEntry> entries(first.Entries().rbegin(), first.Entries().rend());
  const Dictionary second(std::move(entries));
  for (const auto* record : {&first, &second, &first}) {
    const CheckedValues values(*record, memo);
    for (const auto name : CheckedKeyNames) {
      EXPECT_EQ(values.Find(*CheckedKey::Named(name)), record->Find(name)) << name;
    }
  }
}

TEST(CheckedKeyMemo, TellsMoreKeysApartThanItRemembers) {
  std::vector<DictionaryKey> keys;
  for (int i = 0; i < 3000; ++i)
    keys.emplace_back(i % 7 == 0 ? "RID" : "Note " + std::to_string(i));
  CheckedKeyMemo memo;
  for (int round = 0; round < 2; ++round) {
    for (const auto& key : keys) {
      const Dictionary record({DictionaryEntry(key, 5)});
      EXPECT_EQ(CheckedValues(record, memo).Find("RID") != nullptr, key.View() == "RID");
    }
  }
}

}  // namespace
}  // namespace fernwick
