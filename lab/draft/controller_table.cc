#include "lab/draft/controller_table.h"

#include <algorithm>
#include <iterator>

#include "personality/requirements.h"

namespace fernwick::lab {

ControllerTable::ControllerTable(TypeSet type) {
  std::ranges::copy_if(SetKeys(), std::back_inserter(columns_), [&](const Key* key) {
    return FindSetRequirement(type, key->name) != nullptr;
  });
}

ControllerRow ControllerTable::RowOf(const HardwareRecord& record, int boardRevision) {
  ControllerRow row{.values = {}, .boardRevision = boardRevision};
  for (const auto* key : columns_) row.values.push_back(NumberOf(record.Find(key->name), *key));
  row.version = NumberOf(record.Find("Version"), *FindKey("Version"));
  const auto* marker = record.Find("Engineering Version");
  row.runsEngineeringFirmware = marker != nullptr && !NumbersEqual(*marker, 0);
  return row;
}

std::uint32_t ControllerTable::NumberOf(const PropertyValue* value, const Key& key) {
  if (value == nullptr) return 0;
  const auto text = value->AsString();
  const bool isOfText = key.kind == KeyKind::StringOrList || key.kind == KeyKind::ListOfStrings;
  if (isOfText ? !text : !NumbersEqual(*value, *value)) return 0;
  const auto known = numbers_.find(*value);
  if (known != numbers_.end()) return known->second;
  const auto number = static_cast<std::uint32_t>(numbers_.size() + 1);
  numbers_.emplace(text ? PropertyValue(arena_.Copy(*text)) : *value, number);
  return number;
}

ControllerRow ControllerTable::Ranked(ControllerRow row) {
  if (byRank_.size() < numbers_.size()) {
    ranks_.resize(numbers_.size() + 1);
    for (const auto& [value, number] : numbers_) {
      byRank_.push_back(&value);
      ranks_[number] = static_cast<std::uint32_t>(byRank_.size());
    }
  }
  const auto rank = [&](std::uint32_t number) { return number == 0 ? 0 : ranks_[number]; };
  for (auto& value : row.values) value = rank(value);
  row.version = rank(row.version);
  return row;
}

HardwareRecord ControllerTable::RecordOf(const ControllerRow& row) const {
  HardwareRecord record;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (row.values[i] != 0) record.Set(columns_[i]->name, ValueOf(row.values[i]));
  }
  if (row.version != 0) record.Set("Version", ValueOf(row.version));
  if (row.runsEngineeringFirmware) record.Set("Engineering Version", 64);
  return record;
}

}  // namespace fernwick::lab
