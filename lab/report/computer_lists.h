#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/report/bounded_list.h"
#include "lab/report/reported_computer.h"
#include "lab/survey/computer_class.h"

namespace fernwick::lab {

/// A computer as the other lists of the page name it.
struct ComputerName {
  std::size_t number;  // from 1, in the order of the selection
  std::string markup;  // its file; a link to its row if it is listed
};

/// "Version 5 is not newer than the installed 7 (USBC, personality 2)": a nearest miss without the
/// controller, so that it is the same for many computers.
std::string MissReason(const NearestMiss& miss);

/// Every computer once, with its facts, by class and board.
class ComputerLists {
 public:
  /// `isComparison`: there is an old payload.
  explicit ComputerLists(bool isComparison);

  /// REQUIRES: the row has a class.
  ComputerName Add(const ReportedComputer& computer);

  /// Where the computers of a class are listed.
  static std::string ClassId(ComputerClass computerClass);

  /// A table of boards and classes; each number leads to its list.
  std::string BoardsMarkup(const std::string& command) const;

  /// The lists. `command` is what prints all computers.
  std::string Markup(const std::string& command) const;

  static constexpr std::size_t MaxBoards = 1000;
  static constexpr std::size_t MaxRows = 1000;  // of a class

 private:
  using ClassLists = std::array<BoundedList, ClassCount>;

  // The lists of a board, or of all that are counted together; views this object.
  struct NamedLists {
    std::string name;  // markup
    const ClassLists* lists;
  };

  ClassLists& ListsOf(const SurveyRow& row);
  std::string RowMarkup(const ReportedComputer& computer, std::size_t number) const;
  std::string ClassMarkup(std::size_t computerClass, const std::string& command) const;
  std::vector<NamedLists> Boards() const;

  bool isComparison_;
  std::size_t computers_ = 0;
  ByteBudget budget_;
  std::vector<ListLimit> limits_;  // by class
  std::map<std::optional<std::string>, ClassLists> boards_;
  ClassLists otherBoards_ = {};
};

}  // namespace fernwick::lab
