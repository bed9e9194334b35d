#include "lab/report/computer_lists.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "lab/report/markup.h"
#include "lab/support/words.h"
#include "lab/survey/short_text.h"
#include "lab/survey/text.h"
#include "lab/survey/xml_text.h"
#include "registry/key_schema.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t SharedBytes = 600'000;
constexpr std::size_t BytesOfClass = 30'000;
constexpr std::size_t MaxBoardRows = 100;

std::string MatchFact(const SurveyMatch& match) {
  return match.type + " " + CellText(match.installed) + " → " + CellText(match.version) + ", " +
         CellText(match.image) + (match.isImageMissing ? " (image missing)" : "");
}

// The first matches, equal ones that follow each other once.
std::string MatchFacts(const SurveyRow& row) {
  constexpr std::size_t MaxFacts = 4;
  std::string text;
  std::size_t facts = 0;
  for (std::size_t i = 0; i < row.matches.size();) {
    if (++facts > MaxFacts) {
      return text + "; " + Counted(row.matches.size() - i, "more match", "more matches");
    }
    const auto fact = MatchFact(row.matches[i]);
    const auto begin = i;
    while (i < row.matches.size() && MatchFact(row.matches[i]) == fact) ++i;
    if (!text.empty()) text += "; ";
    if (i - begin > 1) text += std::to_string(i - begin) + " × ";
    text += fact;
  }
  return text;
}

std::string FactsOf(const ReportedComputer& computer) {
  const auto& row = computer.row;
  if (!row.reason.empty()) return row.reason;
  if (row.miss) return MissReason(*row.miss);
  if (!row.matches.empty()) return MatchFacts(row);
  return computer.settling->reason;
}

// What the plans lead to; empty where there is nothing to carry out.
std::string OutcomeOf(const std::optional<SettleRow>& settling) {
  if (!settling || (settling->runs == 0 && settling->outcome != SettleOutcome::Stuck)) return "";
  return std::string(NameOf(settling->outcome)) + " after " +
         Counted(settling->runs, "run", "runs");
}

std::string ChangesOf(const DiffRow& row) {
  std::string text;
  std::vector<ChangeKind> kinds;
  for (const auto& change : row.changes) {
    if (std::ranges::find(kinds, change.kind) != kinds.end()) continue;
    kinds.push_back(change.kind);
    text += (text.empty() ? "" : ", ") + std::string(NameOf(change.kind));
  }
  return text;
}

std::string Cell(const std::string& text) {
  return "<td>" + XmlText(ShortText(text)) + "</td>";
}

std::string ListId(std::size_t computerClass, std::size_t board) {
  return IdOf(ClassNames[computerClass]) + "-" + std::to_string(board);
}

}  // namespace

std::string MissReason(const NearestMiss& miss) {
  const bool isOnlyOne = TypeNamed(miss.type) == Types::LegacyUsbc;
  return miss.key + " " + miss.text + " (" + miss.type +
         (isOnlyOne ? "" : ", personality " + std::to_string(miss.personality)) + ")";
}

ComputerLists::ComputerLists(bool isComparison)
    : isComparison_(isComparison),
      budget_(SharedBytes),
      limits_(ClassCount, ListLimit(MaxRows, BytesOfClass)) {}

std::string ComputerLists::ClassId(ComputerClass computerClass) {
  return "class-" + IdOf(NameOf(computerClass));
}

ComputerLists::ClassLists& ComputerLists::ListsOf(const SurveyRow& row) {
  const auto known = boards_.find(row.board);
  if (known != boards_.end()) return known->second;
  return boards_.size() == MaxBoards ? otherBoards_ : boards_[row.board];
}

std::string ComputerLists::RowMarkup(const ReportedComputer& computer, std::size_t number) const {
  return "<tr id=\"c" + std::to_string(number) + "\"><th scope=\"row\">" +
         XmlText(computer.row.file) + "</th>" + Cell(FactsOf(computer)) +
         Cell(OutcomeOf(computer.settling)) +
         (isComparison_ ? Cell(computer.difference ? ChangesOf(*computer.difference) : "") : "") +
         "</tr>\n";
}

ComputerName ComputerLists::Add(const ReportedComputer& computer) {
  const auto number = ++computers_;
  const auto index = static_cast<std::size_t>(*computer.row.computerClass);
  auto name = XmlText(computer.row.file);
  auto& list = ListsOf(computer.row)[index];
  if (list.Add(RowMarkup(computer, number), limits_[index], budget_)) {
    name = LinkTo("c" + std::to_string(number), name);
  }
  return {number, std::move(name)};
}

std::vector<ComputerLists::NamedLists> ComputerLists::Boards() const {
  std::vector<NamedLists> boards;
  for (const auto& [name, lists] : boards_) {
    boards.push_back({name ? XmlText(ShortText(*name)) : "no board identifier", &lists});
  }
  boards.push_back({"all other boards", &otherBoards_});
  return boards;
}

std::string ComputerLists::BoardsMarkup(const std::string& command) const {
  const auto boards = Boards();
  const auto isUsed = [&](std::size_t i) {
    return std::ranges::any_of(boards,
                               [&](const auto& each) { return (*each.lists)[i].Count() > 0; });
  };
  std::vector<std::size_t> classes;
  std::vector<Column> columns = {{"Board"}};
  for (std::size_t i = 0; i < ClassCount; ++i) {
    if (!isUsed(i)) continue;
    classes.push_back(i);
    columns.push_back({std::string(ClassNames[i]), true});
  }
  std::string rows;
  std::size_t count = 0;
  for (std::size_t board = 0; board < boards.size(); ++board) {
    const auto& lists = *boards[board].lists;
    const auto isEmpty = [](const BoundedList& list) { return list.Count() == 0; };
    if (std::ranges::all_of(lists, isEmpty) || ++count > MaxBoardRows) continue;
    rows += "<tr>" + HeadCell(boards[board].name);
    for (const auto i : classes) {
      const auto id = lists[i].Listed() > 0 ? ListId(i, board) : "class-" + IdOf(ClassNames[i]);
      rows += NumberCell(NumberLink(id, lists[i].Count()));
    }
    rows += "</tr>\n";
  }
  constexpr char Caption[] = "Computers by board and class";
  const auto table = WideMarkup(
      Caption, TableMarkup("boards", Caption, columns, "<tbody>\n" + rows + "</tbody>\n"));
  return DetailsMarkup("By board",
                       table + OthersMarkup(count - std::min(count, MaxBoardRows), command),
                       count <= MaxOpenItems);
}

std::string ComputerLists::ClassMarkup(std::size_t computerClass,
                                       const std::string& command) const {
  const auto boards = Boards();
  std::string bodies;
  std::size_t count = 0;
  std::size_t listed = 0;
  for (std::size_t i = 0; i < boards.size(); ++i) {
    const auto& list = (*boards[i].lists)[computerClass];
    count += list.Count();
    listed += list.Listed();
    if (list.Listed() == 0) continue;
    bodies += "<tbody id=\"" + ListId(computerClass, i) + "\"><tr><th colspan=\"" +
              (isComparison_ ? "4" : "3") + "\" scope=\"rowgroup\">" + boards[i].name + ": " +
              ComputersText(list.Count()) + "</th></tr>\n" + list.Markup() + "</tbody>\n";
  }
  if (count == 0) return "";
  const auto name = std::string(ClassNames[computerClass]);
  std::vector<Column> columns = {{"Computer"}, {"With this payload"}, {"After the updates"}};
  if (isComparison_) columns.push_back({"Against the old payload"});
  const auto table = TableMarkup("class-" + IdOf(name), "Computers: " + name, columns, bodies);
  return "<h3>" + name + "</h3>\n" +
         DetailsMarkup(ComputersText(count), table + OthersMarkup(count - listed, command),
                       listed <= MaxOpenItems);
}

std::string ComputerLists::Markup(const std::string& command) const {
  std::string markup;
  for (std::size_t i = 0; i < ClassCount; ++i) markup += ClassMarkup(i, command);
  return markup;
}

}  // namespace fernwick::lab
