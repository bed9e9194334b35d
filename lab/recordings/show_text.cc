#include <cinttypes>
#include <cstdio>

#include "lab/recordings/shown_computer.h"
#include "lab/support/messages.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

std::string Indented(std::string_view text, std::size_t indentation) {
  std::string indented(indentation, ' ');
  for (const char c : text) {
    indented.push_back(c);
    if (c == '\n') indented.append(indentation, ' ');
  }
  return indented;
}

// One "key" = value a line.
void AppendProperties(Dictionary properties, std::size_t indentation, std::string& out) {
  for (const auto& [key, value] : properties.Entries()) {
    const auto line = DumpText(key) + " = " + DumpText(value);
    out += Indented(line, indentation) + "\n";
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
  TextTree(const ShownComputer& computer, const RecordedPlane& plane, std::string& out)
      : computer_(computer), plane_(plane), out_(out) {}

  void AppendNode(RegistryEntry entry, std::size_t depth) {
    const auto& recorded = computer_.recording.entries[entry - 1];
    out_.append(2 * depth, ' ');
    out_ += recorded.name.empty() ? "/" : PrintableText(recorded.name);
    if (!recorded.className.empty()) out_ += "  <" + PrintableText(recorded.className) + ">";
    out_ += MarkOf(computer_.thunderbolt, entry) + MarkOf(computer_.ports, entry) + "\n";
    AppendProperties(recorded.properties, 2 * depth + 6, out_);
    for (const auto child : plane_.placements.at(entry).children) AppendNode(child, depth + 1);
  }

 private:
  const ShownComputer& computer_;
  const RecordedPlane& plane_;
  std::string& out_;
};

void AppendInventory(const Controllers& controllers, std::string& out) {
  out += "\n" + std::string(controllers.kind) + "s as the tool sees them:";
  if (controllers.endsRun) {
    out +=
        " reading them ends the run abnormally\n      (a Thunderbolt controller has no \"UID\")\n";
    return;
  }
  if (controllers.inventory.records.empty()) {
    out += " none\n";
    return;
  }
  out += "\n";
  std::size_t number = 0;
  for (const auto& record : controllers.inventory.records) {
    out += "  " + std::to_string(++number) + "\n";
    AppendProperties(record, 6, out);
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

std::string ShowAsText(const ShownComputer& computer, const std::optional<std::string>& wanted) {
  auto text = BoardLine(computer.board);
  for (const auto& [name, plane] : computer.recording.planes) {
    if (wanted && *wanted != name) continue;
    text += "\n" + PrintableText(name) + ":\n";
    TextTree(computer, plane, text).AppendNode(plane.root, 0);
  }
  AppendInventory(computer.thunderbolt, text);
  AppendInventory(computer.ports, text);
  return text;
}

}  // namespace fernwick::lab
