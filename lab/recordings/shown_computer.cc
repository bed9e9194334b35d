#include "lab/recordings/shown_computer.h"

#include "lab/support/json_stream.h"
#include "lab/support/json_values.h"

namespace fernwick::lab {
namespace {

void PrintInventory(const char* key, const Controllers& controllers, JsonStream& stream) {
  if (controllers.endsRun) return stream.AddMembers({{key, {{"endsRunAbnormally", true}}}});
  stream.Begin(key, '[');
  for (const auto& record : controllers.inventory.records) {
    stream.Add(PropertyValue(Dictionary(record)));
  }
  stream.End();
}

// One plane of the computer as a tree of JSON objects.
class JsonTree {
 public:
  JsonTree(const ShownComputer& computer, const RecordedPlane& plane, JsonStream& stream)
      : computer_(computer), plane_(plane), stream_(stream) {}

  // The members of an object that has begun.
  void PrintMembers(RegistryEntry entry) {
    const auto& recorded = computer_.recording.entries[entry - 1];
    stream_.AddMember("name", recorded.name);
    if (!recorded.class_.empty()) stream_.AddMember("class", recorded.class_);
    for (const auto* controllers : {&computer_.thunderbolt, &computer_.ports}) {
      PrintController(*controllers, entry);
    }
    stream_.AddMember("properties", recorded.properties);
    stream_.Begin("children", '[');
    for (const auto child : plane_.placements.at(entry).children) {
      stream_.Begin('{');
      PrintMembers(child);
      stream_.End();
    }
    stream_.End();
  }

 private:
  void PrintController(const Controllers& controllers, RegistryEntry entry) {
    const auto number = controllers.numbers.find(entry);
    if (number == controllers.numbers.end()) return;
    stream_.AddMembers({{"controller", controllers.kind},
                        {"listed", number->second == 0 ? Json(nullptr) : Json(number->second)}});
  }

  const ShownComputer& computer_;
  const RecordedPlane& plane_;
  JsonStream& stream_;
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

void PrintComputerJson(const ShownComputer& computer, const std::optional<std::string>& wanted,
                       const TextSink& sink) {
  JsonStream stream(sink);
  stream.Begin('{');
  stream.AddMembers({{"board", BoardAsJson(computer.board)}});
  stream.Begin("planes", '{');
  for (const auto& [name, plane] : computer.recording.planes) {
    if (wanted && *wanted != name) continue;
    stream.Begin(name, '{');
    JsonTree(computer, plane, stream).PrintMembers(plane.root);
    stream.End();
  }
  stream.End();
  PrintInventory("thunderboltControllers", computer.thunderbolt, stream);
  PrintInventory("portControllers", computer.ports, stream);
  stream.End();
}

}  // namespace fernwick::lab
