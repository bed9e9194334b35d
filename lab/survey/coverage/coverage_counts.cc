#include "lab/survey/coverage/coverage_counts.h"

#include <cstddef>
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

Json KeyToJson(const TypeCoverage& coverage) {
  return {{"tested", coverage.tested},
          {"matched", coverage.matched},
          {"elements", coverage.elements},
          {"rejected", coverage.rejected}};
}

bool AddKey(const Json& json, TypeCoverage& coverage) {
  for (const auto* name : {"tested", "matched", "elements", "rejected"}) {
    if (!json.is_object() || !json.contains(name)) return false;
  }
  const auto& rejected = json["rejected"];
  if (!rejected.is_array() || rejected.size() != coverage.rejected.size()) return false;
  for (std::size_t i = 0; i < rejected.size(); ++i) {
    if (!AddSparse(rejected[i], coverage.tested.size(), coverage.rejected[i])) return false;
  }
  return AddList(json["tested"], coverage.tested) && AddList(json["matched"], coverage.matched) &&
         AddList(json["elements"], coverage.elements);
}

}  // namespace

Json CountsToJson(const BoardCoverage& coverage) {
  auto keys = Json::array();
  for (const auto& key : coverage.keys) keys.push_back(KeyToJson(key));
  return {{"runs", coverage.runs}, {"keys", std::move(keys)}};
}

bool AddCountsOf(const Json& counts, BoardCoverage& coverage) {
  if (!counts.is_object() || !counts.contains("runs") || !counts.contains("keys")) return false;
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
