#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "lab/recordings/shown_computer.h"
#include "lab/support/messages.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

// The blanks at the start of a line of a tree, which are not more than those of this level.
std::string TreeIndentation(std::size_t level) {
  constexpr std::size_t MaxLevels = 32;
  return std::string(2 * std::min(level, MaxLevels), ' ');
}

// One "key" = value a line.
void PrintProperties(Dictionary properties, const std::string& indentation, const TextSink& sink) {
  constexpr std::size_t MaxValueLevels = 16;
  const DumpLayout layout = {indentation.size(), MaxValueLevels};
  for (const auto& [key, value] : properties.Entries()) {
    sink(indentation + PrintableText(DumpText(key)) + " = ");
    DumpText(value, layout, [&](std::string_view text) { sink(PrintableLines(text)); });
    sink("\n");
  }
}

std::string MarkOf(const Controllers& controllers, RegistryEntry entry) {
  const auto number = controllers.numbers.find(entry);
  if (number == controllers.numbers.end()) return {};
  const auto kind = std::string(controllers.kind);
  if (controllers.endsRun) return "  [" + kind + "]";
  if (number->second == 0) return "  [" + kind + ", not listed]";
  return "  [" + kind + " " + std::to_string(number->second) + "]";
}

// One plane of the computer as an indented tree.
class TextTree {
 public:
  TextTree(const ShownComputer& computer, const RecordedPlane& plane, const TextSink& sink)
      : computer_(computer), plane_(plane), sink_(sink) {}

  void PrintNode(RegistryEntry entry, std::size_t depth) {
    const auto& recorded = computer_.recording.entries[entry - 1];
    const auto indentation = TreeIndentation(depth);
    auto line = indentation + (recorded.name.empty() ? "/" : PrintableText(recorded.name));
    if (!recorded.class_.empty()) line += "  <" + PrintableText(recorded.class_) + ">";
    sink_(line + MarkOf(computer_.thunderbolt, entry) + MarkOf(computer_.ports, entry) + "\n");
    PrintProperties(recorded.properties, indentation + "      ", sink_);
    for (const auto child : plane_.placements.at(entry).children) PrintNode(child, depth + 1);
  }

 private:
  const ShownComputer& computer_;
  const RecordedPlane& plane_;
  const TextSink& sink_;
};

void PrintInventory(const Controllers& controllers, const TextSink& sink) {
  sink("\n" + std::string(controllers.kind) + "s as the tool sees them:");
  if (controllers.endsRun) {
    return sink(
        " reading them ends the run abnormally\n      (a Thunderbolt controller has no \"UID\")\n");
  }
  if (controllers.inventory.records.empty()) return sink(" none\n");
  sink("\n");
  std::size_t number = 0;
  for (const auto& record : controllers.inventory.records) {
    sink("  " + std::to_string(++number) + "\n");
    PrintProperties(record, "      ", sink);
  }
}

std::string BoardLine(const BoardIdentity& board) {
  char numbers[64];
  std::snprintf(numbers, sizeof numbers, " (0x%" PRIX64 "), revision %u\n", board.boardId,
                unsigned{board.boardRevision});
  const auto id = board.boardIdString ? PrintableText(*board.boardIdString) : AbsentText;
  return "Board " + id + numbers;
}

}  // namespace

void PrintComputerText(const ShownComputer& computer, const std::optional<std::string>& wanted,
                       const TextSink& sink) {
  sink(BoardLine(computer.board));
  for (const auto& [name, plane] : computer.recording.planes) {
    if (wanted && *wanted != name) continue;
    sink("\n" + PrintableText(name) + ":\n");
    TextTree(computer, plane, sink).PrintNode(plane.root, 0);
  }
  PrintInventory(computer.thunderbolt, sink);
  PrintInventory(computer.ports, sink);
}

}  // namespace fernwick::lab
