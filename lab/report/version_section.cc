#include "lab/report/version_section.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

#include "lab/report/bars.h"
#include "lab/report/markup.h"
#include "lab/survey/short_text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

// How many bytes the names of all moves of one kind of controller of a board may have.
constexpr std::size_t BytesOfNames = 8'000;

// How many bytes the pictures and tables of all boards may have.
constexpr std::size_t Bytes = 300'000;

// How many controllers have a version.
struct VersionCount {
  ShownVersion version;
  std::array<std::size_t, 2> counts = {};  // before, after
  std::string fill = OtherShade;
};

std::vector<VersionCount> CountVersions(
    const std::map<std::pair<ShownVersion, ShownVersion>, std::size_t>& moves) {
  std::map<ShownVersion, std::array<std::size_t, 2>> counts;
  for (const auto& [move, count] : moves) {
    counts[move.first][0] += count;
    counts[move.second][1] += count;
  }
  std::vector<VersionCount> versions;
  for (const auto& [version, both] : counts) versions.push_back({version, both});
  std::ranges::sort(versions, {}, [](const auto& each) { return each.version.number; });
  return versions;
}

// Shades for the versions that most controllers have, in the order of the versions.
void FillVersions(std::vector<VersionCount>& versions) {
  std::vector<VersionCount*> known;
  for (auto& version : versions) {
    if (version.version.number) known.push_back(&version);
  }
  const auto total = [](const VersionCount* each) { return each->counts[0] + each->counts[1]; };
  std::ranges::stable_sort(known, std::greater(), total);
  known.resize(std::min(known.size(), ShadeCount));
  std::ranges::sort(known, {}, [](const auto* each) { return each->version.number; });
  for (std::size_t i = 0; i < known.size(); ++i) known[i]->fill = Shade(i, known.size());
}

std::string RowsMarkup(const std::vector<VersionCount>& versions, const std::string& listId) {
  std::string rows;
  for (const auto& [version, counts, fill] : versions) {
    rows += "<tr>" + HeadCell(SwatchMarkup(fill) + " " + XmlText(version.text)) +
            NumberCell(NumberLink(listId, counts[0])) + NumberCell(NumberLink(listId, counts[1])) +
            "</tr>\n";
  }
  return rows;
}

Bar BarOf(const std::vector<VersionCount>& versions, const std::string& label, std::size_t side) {
  Bar bar = {label, {}};
  for (const auto& [version, counts, fill] : versions) {
    bar.segments.push_back({version.text, counts[side], fill});
  }
  return bar;
}

std::string TitleOf(const std::string& board, bool isPort) {
  return ShortText(board) + (isPort ? ": ports" : ": Thunderbolt controllers");
}

std::string ControllersText(std::size_t count) {
  return NumberText(count) + (count == 1 ? " controller" : " controllers");
}

}  // namespace

ShownVersion ShownVersionOf(const Json& version) {
  if (version.is_null()) return {"unknown", std::nullopt};
  if (!version.is_number_float()) return {version.dump(), version.get<double>()};
  char text[400];
  std::snprintf(text, sizeof text, "%.6f", version.get<double>());
  std::string shown(text);
  shown.erase(shown.find_last_not_of('0') + 1);
  if (shown.ends_with('.')) shown.pop_back();
  return {shown, std::stod(shown)};
}

VersionSection::Controllers* VersionSection::Find(const std::string& board, bool isPort) {
  const auto key = std::pair(board, isPort);
  const auto known = boards_.find(key);
  if (known != boards_.end()) return &known->second;
  if (boards_.size() == 2 * MaxBoards) return nullptr;
  const auto id = "moves-" + std::to_string(boards_.size());
  return &boards_.emplace(key, Controllers{{}, 0, ComputerGroups(id, BytesOfNames)}).first->second;
}

void VersionSection::Add(const SettleRow& row, const ComputerName& computer) {
  for (const auto& controller : row.controllers) {
    auto* controllers = Find(row.board.value_or("-"), controller.isPort);
    if (controllers == nullptr) {
      ++otherControllers_;
      continue;
    }
    const Versions move = {ShownVersionOf(controller.before), ShownVersionOf(controller.after)};
    auto& moves = controllers->moves;
    if (moves.size() == MaxMoves && !moves.contains(move)) {
      ++controllers->others;
      continue;
    }
    ++moves[move];
    const bool stays = move.first == move.second;
    controllers->groups.Add(
        XmlText(stays ? "stays at " + move.first.text : move.first.text + " → " + move.second.text),
        computer);
  }
}

std::string VersionSection::Markup(const std::string& command) const {
  using Each = std::pair<const std::pair<std::string, bool>, Controllers>;
  const auto count = [](const Each* each) {
    auto sum = each->second.others;
    for (const auto& [move, controllers] : each->second.moves) sum += controllers;
    return sum;
  };
  std::vector<const Each*> order;
  for (const auto& each : boards_) order.push_back(&each);
  std::ranges::stable_sort(order, std::greater(), count);
  ByteBudget budget(Bytes);
  ListLimit limit(order.size());
  BoundedList list;
  auto others = otherControllers_;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto& [key, controllers] = *order[i];
    const auto id = "versions-" + std::to_string(i);
    const auto listId = controllers.groups.Id();
    const auto title = TitleOf(key.first, key.second);
    auto versions = CountVersions(controllers.moves);
    FillVersions(versions);
    const auto markup =
        "<article><h3>" + XmlText(title) + " <small>" + ControllersText(count(order[i])) +
        "</small></h3>\n" +
        BarsMarkup(id, "Versions of " + title,
                   {BarOf(versions, "Installed", 0), BarOf(versions, "After the updates", 1)}) +
        TableMarkup(id, "Versions: " + XmlText(title),
                    {{"Version"}, {"Installed", true}, {"After", true}},
                    "<tbody>\n" + RowsMarkup(versions, listId) + "</tbody>\n") +
        DetailsMarkup("What changes",
                      controllers.groups.Markup("Changes of versions: " + XmlText(title), "Version",
                                                command, "Controllers"),
                      false) +
        (controllers.others == 0 ? "" : OthersMarkup(controllers.others, command)) + "</article>\n";
    if (!list.Add(markup, limit, budget)) others += count(order[i]);
  }
  if (boards_.empty())
    return "<p>No computer has a controller that the payload is compared with.</p>\n";
  return "<div class=\"grid\">\n" + list.Markup() + "</div>\n" + OthersMarkup(others, command);
}

}  // namespace fernwick::lab
