#include "lab/survey/coverage/coverage_counts.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace fernwick::lab {
namespace {

// Adds as many counts as there are.
bool AddList(const Json& list, std::vector<std::size_t>& counts) {
  if (!list.is_array() || list.size() != counts.size()) return false;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (!list[i].is_number_unsigned()) return false;
    counts[i] += list[i].get<std::size_t>();
  }
  return true;
}

// A list that is empty where all are zero.
bool AddSparse(const Json& list, std::size_t size, std::vector<std::size_t>& counts) {
  if (list.is_array() && list.empty()) return true;
  counts.resize(size);
  return AddList(list, counts);
}

Json TestsToJson(const TestCounts& counts) {
  return {{"tested", counts.tested}, {"matched", counts.matched}, {"rejected", counts.rejected}};
}

bool HasMembers(const Json& json, std::initializer_list<const char*> names) {
  return json.is_object() &&
         std::ranges::all_of(names, [&](const char* name) { return json.contains(name); });
}

bool AddTests(const Json& json, TestCounts& counts) {
  if (!HasMembers(json, {"tested", "matched", "rejected"})) return false;
  const auto& rejected = json["rejected"];
  if (!rejected.is_array() || rejected.size() != counts.rejected.size()) return false;
  for (std::size_t i = 0; i < rejected.size(); ++i) {
    if (!AddSparse(rejected[i], counts.tested.size(), counts.rejected[i])) return false;
  }
  return AddList(json["tested"], counts.tested) && AddList(json["matched"], counts.matched);
}

bool AddKey(const Json& json, TypeCoverage& coverage) {
  return HasMembers(json, {"personalities", "elements"}) &&
         AddTests(json["personalities"], coverage) && AddTests(json["elements"], coverage.elements);
}

}  // namespace

Json CountsToJson(const BoardCoverage& coverage) {
  auto keys = Json::array();
  for (const auto& key : coverage.keys) {
    keys.push_back({{"personalities", TestsToJson(key)}, {"elements", TestsToJson(key.elements)}});
  }
  return {{"runs", coverage.runs}, {"keys", std::move(keys)}};
}

bool AddCountsOf(const Json& counts, BoardCoverage& coverage) {
  if (!HasMembers(counts, {"runs", "keys"})) return false;
  const auto& keys = counts["keys"];
  if (!counts["runs"].is_number_unsigned() || !keys.is_array()) return false;
  if (keys.size() != coverage.keys.size()) return false;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!AddKey(keys[i], coverage.keys[i])) return false;
  }
  coverage.runs += counts["runs"].get<std::size_t>();
  return true;
}

}  // namespace fernwick::lab
