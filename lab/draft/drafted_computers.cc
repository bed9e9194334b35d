// Controllers are deduplicated by their rows in an ordered map: O(log n) comparisons of rows for
// each controller, and memory for the n different ones.

#include "lab/draft/drafted_computers.h"

#include <filesystem>
#include <utility>

#include "driver/bypass_switch.h"
#include "lab/recordings/entry_path.h"
#include "personality/configuration.h"

namespace fernwick::lab {
namespace {

LabError ErrorAt(const std::string& path, const LabError& error) {
  return {{path + ": " + Describe(error.error)}, error.status};
}

// Where a payload has the board's configuration; empty for a computer that reads none. Boards whose
// identifiers differ may have one directory: "Zed-42" and "./Zed-42".
std::string ConfigurationOf(const BoardIdentity& board) {
  const auto path = ConfigurationPath(board.boardIdString, "/Fernwick");
  return path ? std::filesystem::path(*path).lexically_normal() : "";
}

}  // namespace

Result<std::shared_ptr<const InspectedComputer>, LabError> InspectComputer(const std::string& path,
                                                                           Recording recording) {
  auto computer = std::make_shared<InspectedComputer>(
      InspectedComputer{path, std::move(recording), {}, false, {}, {}});
  RecordedRegistry registry(computer->recording);
  computer->board = ReadBoardIdentity(registry);
  const auto bypassesUpdates = ReadBypassSwitch(registry, UpdatesSwitch);
  const auto bypassesVersion = ReadBypassSwitch(registry, VersionSwitch);
  if (!bypassesUpdates || !bypassesVersion) {
    return ErrorAt(path, {{"a bypass switch without a value ends every run abnormally"},
                          LabStatus::MalformedInput});
  }
  computer->bypassesVersionCheck = *bypassesVersion;
  computer->thunderbolt = FindThunderboltControllers(computer->recording);
  computer->ports = FindPortControllers(computer->recording);
  const auto& thunderbolt = computer->thunderbolt;
  const auto& ports = computer->ports;
  const bool endsRuns = thunderbolt.endsRun || ports.endsRun;
  if (endsRuns && thunderbolt.inventory.records.empty() && ports.inventory.records.empty()) {
    return ErrorAt(path, {{"a Thunderbolt controller without a \"UID\" ends every run abnormally"},
                          LabStatus::MalformedInput});
  }
  return std::shared_ptr<const InspectedComputer>(std::move(computer));
}

Result<std::shared_ptr<const InspectedComputer>, LabError> InspectComputer(Selected selected) {
  auto recording = LoadSelected(selected);
  if (!recording) return ErrorAt(selected.path, recording.Error());
  return InspectComputer(selected.path, *std::move(recording));
}

std::string DescribeUnlisted(const InspectedComputer& computer) {
  if (computer.thunderbolt.endsRun) {
    return computer.path +
           ": its Thunderbolt controllers are left out: one without a \"UID\" ends every run that "
           "lists them";
  }
  if (computer.ports.endsRun) {
    return computer.path +
           ": its ports are left out: a Thunderbolt controller without a \"UID\" above one ends "
           "every run that lists them";
  }
  return "";
}

DraftedComputers::DraftedComputers()
    : ports_{ControllerTable(Types::Thunderbolt)},
      thunderbolt_{ControllerTable(Types::LegacyThunderbolt)} {}

void DraftedComputers::Add(const InspectedComputer& computer, DraftSide side) {
  const auto& board = computer.board;
  if (side == DraftSide::Wanted) {
    boards_.insert(board.boardIdString.value_or(""));
    configurations_.insert(ConfigurationOf(board));
  } else if (!configurations_.contains(ConfigurationOf(board))) {
    ++otherBoards_;
    return;
  }
  std::set<RegistryEntry> ports;
  std::set<RegistryEntry> thunderbolts;
  for (const auto& source : computer.ports.inventory.sources) {
    if (source.thunderbolt == 0) continue;
    ports.insert(source.port);
    thunderbolts.insert(source.thunderbolt);
  }
  AddAll(computer, computer.ports, ports, ports_, side);
  AddAll(computer, computer.thunderbolt, thunderbolts, thunderbolt_, side);
}

void DraftedComputers::AddAll(const InspectedComputer& computer, const Controllers& controllers,
                              const std::set<RegistryEntry>& counterparts, Kind& kind,
                              DraftSide side) {
  const auto& [records, sources, skipped] = controllers.inventory;
  for (std::size_t i = 0; i < records.size(); ++i) {
    auto row = kind.table.RowOf(records[i], computer.board.boardRevision);
    row.bypassesVersionCheck = computer.bypassesVersionCheck;
    row.hasCounterpart = counterparts.contains(sources[i].Controller());
    row.hasThunderboltVersion = sources[i].version == Origin::Thunderbolt;
    auto& rows = kind.rows[static_cast<std::size_t>(side)];
    auto& known = rows[std::move(row)];
    if (++known.count > 1) continue;
    known.order = rows.size();
    known.name = computer.path + ": " + EntryPath(computer.recording, sources[i].Controller());
  }
}

std::map<TypeSet, std::size_t> DraftedComputers::CountByType() const {
  std::map<TypeSet, std::size_t> counts;
  for (const auto& [row, known] : ports_.rows.front()) {
    counts[row.hasCounterpart ? Types::Thunderbolt : Types::Usbc] += known.count;
  }
  for (const auto& [row, known] : thunderbolt_.rows.front()) {
    if (!row.hasCounterpart) counts[Types::LegacyThunderbolt] += known.count;
  }
  return counts;
}

std::vector<DraftedController> DraftedComputers::ControllersOf(TypeSet type, DraftSide side) {
  auto& kind = type == Types::LegacyThunderbolt ? thunderbolt_ : ports_;
  const auto& rows = kind.rows[static_cast<std::size_t>(side)];
  std::vector<std::pair<const ControllerRow*, const Known*>> ordered(rows.size());
  for (const auto& [row, known] : rows) ordered[known.order - 1] = {&row, &known};
  std::vector<DraftedController> controllers;
  for (const auto& [row, known] : ordered) {
    controllers.push_back({kind.table.Ranked(*row), known->name, known->count});
  }
  return controllers;
}

const ControllerTable& DraftedComputers::TableOf(TypeSet type) const {
  return type == Types::LegacyThunderbolt ? thunderbolt_.table : ports_.table;
}

}  // namespace fernwick::lab
