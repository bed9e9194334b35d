#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "lab/report/bounded_list.h"
#include "lab/report/computer_lists.h"

namespace fernwick::lab {

/// Computers grouped by a text, such as a reason: for each text, how many they are, and the names
/// of the first. Once there are enough groups, further ones are only counted, so that memory does
/// not grow with the number of computers.
class ComputerGroups {
 public:
  /// The texts need at most half of so many bytes, and the names of all groups the other half: many
  /// names leave no group out. `id` begins the IDs of the groups.
  ComputerGroups(std::string id, std::size_t bytes)
      : id_(std::move(id)), textBudget_(bytes / 2), nameBudget_(bytes / 2) {}

  /// Adds a computer to the group of the text, which is markup; once, however often it is added in
  /// succession. `items` is what is counted besides, such as controllers.
  void Add(const std::string& text, const ComputerName& computer, std::size_t items = 1);

  bool IsEmpty() const { return groups_.empty() && others_ == 0; }

  /// The ID of the table.
  const std::string& Id() const { return id_; }

  /// A table: the text, the number of computers, which leads to their names, and with
  /// `itemColumn` the number of items before it; the largest groups first. `command` prints all.
  std::string Markup(const std::string& caption, const std::string& textColumn,
                     const std::string& command, const std::string& itemColumn = {}) const;

  static constexpr std::size_t MaxGroups = 200;
  static constexpr std::size_t MaxNames = 100;  // of a group

 private:
  struct Group {
    std::string text;
    std::size_t lastComputer = 0;
    std::size_t items = 0;
    ListLimit limit = ListLimit(MaxNames);
    BoundedList names = {};
  };

  std::string RowMarkup(std::size_t index, const std::string& command,
                        const std::string& itemColumn) const;

  std::string id_;
  ByteBudget textBudget_;
  ByteBudget nameBudget_;
  std::map<std::string, std::size_t> indexes_;  // a tree: payloads choose the keys
  std::vector<Group> groups_;                   // in the order in which they came
  std::size_t others_ = 0;  // how often a computer was in a group that is not there
};

}  // namespace fernwick::lab
