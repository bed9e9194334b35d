#include "lab/report/computer_groups.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

#include "lab/report/markup.h"

namespace fernwick::lab {

void ComputerGroups::Add(const std::string& text, const ComputerName& computer, std::size_t items) {
  const auto known = indexes_.find(text);
  if (known == indexes_.end()) {
    if (groups_.size() == MaxGroups || !textBudget_.Use(text.size())) {
      ++others_;
      return;
    }
    groups_.push_back({text});
  }
  const auto index = indexes_.emplace(text, groups_.size() - 1).first->second;
  auto& group = groups_[index];
  group.items += items;
  if (std::exchange(group.lastComputer, computer.number) == computer.number) return;
  group.names.Add("<li>" + computer.markup + "</li>", group.limit, nameBudget_);
}

std::string ComputerGroups::RowMarkup(std::size_t index, const std::string& command,
                                      const std::string& itemColumn) const {
  const auto& group = groups_[index];
  const auto id = id_ + "-" + std::to_string(index + 1);
  const auto count = group.names.Count();
  const auto listed = group.names.Listed();
  const auto names = listed == 0 ? "" : "<ul class=\"names\">" + group.names.Markup() + "</ul>\n";
  return "<tr>" + HeadCell(group.text) +
         (itemColumn.empty() ? std::string() : NumberCell(NumberText(group.items), itemColumn)) +
         NumberCell(LinkTo(id, NumberText(count)), "Computers") + "<td>" +
         DetailsMarkup(
             "names",
             "<div id=\"" + id + "\">" + names + OthersMarkup(count - listed, command) + "</div>\n",
             listed <= 3) +
         "</td></tr>\n";
}

std::string ComputerGroups::Markup(const std::string& caption, const std::string& textColumn,
                                   const std::string& command,
                                   const std::string& itemColumn) const {
  std::vector<std::size_t> order(groups_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, std::greater(),
                           [&](std::size_t index) { return groups_[index].names.Count(); });
  std::string rows;
  for (const auto index : order) rows += RowMarkup(index, command, itemColumn);
  std::vector<Column> columns = {{textColumn}};
  if (!itemColumn.empty()) columns.push_back({itemColumn, true});
  columns.push_back({"Computers", true});
  columns.push_back({"Which"});
  return StackMarkup(TableMarkup(id_, caption, columns, "<tbody>\n" + rows + "</tbody>\n")) +
         OthersMarkup(others_, command);
}

}  // namespace fernwick::lab
