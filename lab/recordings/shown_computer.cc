#include "lab/recordings/shown_computer.h"

#include <cstdio>
#include <utility>

namespace fernwick::lab {
namespace {

Json InventoryAsJson(const Controllers& controllers) {
  if (controllers.endsRun) return {{"endsRunAbnormally", true}};
  auto list = Json::array();
  for (const auto& record : controllers.inventory.records) {
    list.push_back(ToJson(Dictionary(record)));
  };
  return list;
}

// One plane of the computer as a tree of JSON objects.
class JsonTree {
 public:
  JsonTree(const ShownComputer& computer, const RecordedPlane& plane)
      : computer_(computer), plane_(plane) {}

  Json Node(RegistryEntry entry) const {
    const auto& recorded = computer_.recording.entries[entry - 1];
    Json node = {{"name", recorded.name}};
    if (!recorded.className.empty()) node["class"] = recorded.className;
    for (const auto* controllers : {&computer_.thunderbolt, &computer_.ports}) {
      AddController(*controllers, entry, node);
    }
    node["properties"] = ToJson(recorded.properties);
    auto children = Json::array();
    for (const auto child : plane_.placements.at(entry).children) children.push_back(Node(child));
    node["children"] = std::move(children);
    return node;
  }

 private:
  static void AddController(const Controllers& controllers, RegistryEntry entry, Json& node) {
    const auto number = controllers.numbers.find(entry);
    if (number == controllers.numbers.end()) return;
    node["controller"] = controllers.kind;
    node["listed"] = number->second == 0 ? Json(nullptr) : Json(number->second);
  }

  const ShownComputer& computer_;
  const RecordedPlane& plane_;
};

Json BoardAsJson(const BoardIdentity& board) {
  return {{"id", board.boardIdString ? Json(*board.boardIdString) : Json(nullptr)},
          {"number", board.boardId},
          {"revision", board.boardRevision}};
}

}  // namespace

ShownComputer Inspect(const Recording& recording) {
  RecordedRegistry registry(recording);
  return {recording, ReadBoardIdentity(registry), FindThunderboltControllers(recording),
          FindPortControllers(recording)};
}

Json ShowAsJson(const ShownComputer& computer, const std::optional<std::string>& wanted) {
  auto planes = Json::object();
  for (const auto& [name, plane] : computer.recording.planes) {
    if (wanted && *wanted != name) continue;
    planes[name] = JsonTree(computer, plane).Node(plane.root);
  }
  return {{"board", BoardAsJson(computer.board)},
          {"planes", std::move(planes)},
          {"thunderboltControllers", InventoryAsJson(computer.thunderbolt)},
          {"portControllers", InventoryAsJson(computer.ports)}};
}

}  // namespace fernwick::lab
