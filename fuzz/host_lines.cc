#include "fuzz/host_lines.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace fernwick::fuzz {
namespace {

constexpr std::string_view Directories[] = {
    "proc/",
    "proc/device-tree/",
    "proc/device-tree/options/",
    "proc/device-tree/soc/",
    "proc/device-tree/soc/options/",
    "sys/class/dmi/id/",
    "sys/firmware/efi/efivars/",
    "sys/bus/thunderbolt/devices/",
    "sys/bus/thunderbolt/devices/0-0/",
    "sys/bus/thunderbolt/devices/0-1/",
    "sys/bus/thunderbolt/devices/0-301/",
    "sys/bus/thunderbolt/devices/1-0/",
    "sys/devices/pci/",
    "sys/devices/pci/domain0/",
    "sys/devices/pci/domain0/0-0/",
    "sys/devices/pci/domain0/0-0/0-1/",
};

constexpr std::string_view Names[] = {
    "cmdline",
    "device-tree",
    "board-id",
    "board-rev",
    "boot-args",
    "options",
    "fernwick_bypass_usbc_updates",
    "fernwick_bypassversioncheck",
    "fernwick_bypass_usbc_updates-11111111-1111-1111-1111-111111111111",
    "fernwick_bypassversioncheck-22222222-2222-2222-2222-222222222222",
    "board_name",
    "board_version",
    "uevent",
    "unique_id",
    "nvm_version",
    "device_name",
    "device",
    "vendor",
    "revision",
    "0-0",
    "0-1",
    "domain0",
    "Vendor ID",
    "\\xFF",
    "a\\x01b",
};

constexpr std::string_view Contents[] = {
    "/",
    " |",
    " :",
    " = 1",
    " = 0x310",
    " = 41.5",
    " = Zed-42",
    " : Zed-42\\x00",
    " : \\x07\\x00\\x00\\x001",
    " : \\xFF\\xFE",
    " = DEVTYPE=thunderbolt_device",
    " = 027a0000-00f3-a100-ffff-ffffffffffff",
    " = fernwick_bypass_usbc_updates=1 fernwick_bypassversioncheck=0",
    " = fernwick_bypassversioncheck",
    " -> .",
    " -> ..",
    " -> loop",
    " -> ../../../devices/pci/domain0/0-0",
    " -> ../../../devices/pci/domain0",
    " -> /sys/devices/pci",
};

using Lines = std::vector<std::string>;

Lines SplitLines(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const auto line = text.substr(0, text.find('\n'));
    lines.emplace_back(line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return lines;
}

template <typename Texts>
std::string_view OneOf(const Texts& texts, ValueMutator& mutator) {
  return texts[mutator.Pick(std::size(texts))];
}

std::string NewLine(ValueMutator& mutator) {
  std::string line(OneOf(Directories, mutator));
  return line.append(OneOf(Names, mutator)).append(OneOf(Contents, mutator));
}

void MutateOneLine(Lines& lines, ValueMutator& mutator) {
  constexpr std::size_t MaxLine = 200;
  const auto kind = lines.empty() ? 0 : mutator.Pick(8);
  const auto at = static_cast<std::ptrdiff_t>(mutator.Pick(lines.size() + (kind < 3 ? 1 : 0)));
  const auto line = lines.begin() + at;
  switch (kind) {
    case 0:
    case 1:
    case 2: lines.insert(line, NewLine(mutator)); break;
    case 3: lines.erase(line); break;
    case 4: lines.push_back(*line); break;
    case 5: std::swap(*line, lines[mutator.Pick(lines.size())]); break;
    case 6: line->append(OneOf(Contents, mutator)); break;
    default:
      *line = MutatedBytes(*line, MaxLine);
      std::ranges::replace(*line, '\n', ' ');
      std::ranges::replace(*line, '\0', ' ');
  }
}

}  // namespace

std::string MutateHostLines(std::string_view description, std::size_t capacity,
                            ValueMutator& mutator) {
  auto lines = SplitLines(description);
  for (std::size_t i = mutator.Pick(4) + 1; i > 0; --i) MutateOneLine(lines, mutator);
  std::string text;
  for (const auto& line : lines) text.append(line).append("\n");
  text.resize(std::min(text.size(), capacity));
  return text;
}

}  // namespace fernwick::fuzz
