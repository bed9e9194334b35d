#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/report/bounded_list.h"
#include "lab/report/computer_groups.h"
#include "lab/report/computer_lists.h"
#include "lab/support/json_values.h"
#include "lab/survey/settle/settle_row.h"

namespace fernwick::lab {

/// A version as the page shows and orders it.
struct ShownVersion {
  std::string text;              // rounded to millionths; "unknown"
  std::optional<double> number;  // empty: unknown, before all others

  friend auto operator<=>(const ShownVersion&, const ShownVersion&) = default;
};

/// REQUIRES: the version is a number or null.
ShownVersion ShownVersionOf(const Json& version);

/// The versions of the controllers before the updates and after them, by board and kind of
/// controller.
class VersionSection {
 public:
  void Add(const SettleRow& row, const ComputerName& computer);

  /// `command` prints all.
  std::string Markup(const std::string& command) const;

  static constexpr std::size_t MaxBoards = 500;
  static constexpr std::size_t MaxMoves = 40;  // of one kind of controller of a board

 private:
  using Versions = std::pair<ShownVersion, ShownVersion>;  // before, after

  // The controllers of one kind of a board.
  struct Controllers {
    std::map<Versions, std::size_t> moves;  // with the number of controllers
    std::size_t others = 0;                 // with moves that are not there
    ComputerGroups groups;
  };

  Controllers* Find(const std::string& board, bool isPort);

  std::map<std::pair<std::string, bool>, Controllers> boards_;
  std::size_t otherControllers_ = 0;
};

}  // namespace fernwick::lab
