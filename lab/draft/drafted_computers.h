#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "lab/draft/controller_table.h"
#include "lab/recordings/controllers.h"
#include "lab/support/messages.h"
#include "lab/survey/selected.h"
#include "registry/board_identity.h"
#include "registry/recorded_registry.h"
#include "value/result.h"

namespace fernwick::lab {

/// The controllers of one recorded computer.
struct InspectedComputer {
  std::string path;
  Recording recording;
  BoardIdentity board;
  bool bypassesVersionCheck = false;  // by a switch
  Controllers thunderbolt;
  Controllers ports;
};

/// Collects the inventories of a recording, which `path` names. Fails where each run would end
/// abnormally: the run of a draft lists the controllers of one kind alone, so those of the other
/// kind may still match. The result views itself.
Result<std::shared_ptr<const InspectedComputer>, LabError> InspectComputer(const std::string& path,
                                                                           Recording recording);

/// The same after reading the recording.
Result<std::shared_ptr<const InspectedComputer>, LabError> InspectComputer(Selected selected);

/// A complete message: which controllers of the computer no run of a draft can list, and why. Empty
/// where all can be listed.
std::string DescribeUnlisted(const InspectedComputer& computer);

/// A controller that several computers may have.
struct DraftedController {
  ControllerRow row;  // ranked
  std::string name;   // "PATH: ENTRY" of the first
  std::size_t count;  // of equal ones
};

/// Whether a draft matches the controllers of a computer.
enum class DraftSide { Wanted, Excepted };

/// The controllers of many computers, equal ones once. Stores no recording.
class DraftedComputers {
 public:
  DraftedComputers();

  /// Adds the wanted computers first. An excepted one of another board than any of theirs reads
  /// another configuration: it is counted and left out.
  void Add(const InspectedComputer& computer, DraftSide side);

  /// How many excepted computers were left out.
  std::size_t OtherBoards() const { return otherBoards_; }

  /// The identifiers of the boards of the wanted computers.
  const std::set<std::string>& Boards() const { return boards_; }

  /// How many wanted controllers there are of each type that has controllers of its own:
  /// "USBC" ports without, "Thunderbolt" ports with a Thunderbolt controller above them, and
  /// "LegacyThunderbolt" Thunderbolt controllers without a port. Types without any are left out.
  std::map<TypeSet, std::size_t> CountByType() const;

  /// The controllers that personalities of the type are matched against, in the order in which they
  /// were added. To be called after the last Add.
  std::vector<DraftedController> ControllersOf(TypeSet type, DraftSide side);

  const ControllerTable& TableOf(TypeSet type) const;

 private:
  struct Known {
    std::string name;
    std::size_t order = 0;
    std::size_t count = 0;
  };
  using KnownRows = std::map<ControllerRow, Known>;

  // The controllers of one kind.
  struct Kind {
    ControllerTable table;
    std::array<KnownRows, 2> rows = {};  // by side
  };

  static void AddAll(const InspectedComputer& computer, const Controllers& controllers,
                     const std::set<RegistryEntry>& counterparts, Kind& kind, DraftSide side);

  Kind ports_;
  Kind thunderbolt_;
  std::set<std::string> boards_;
  std::set<std::string> configurations_;  // the paths of theirs
  std::size_t otherBoards_ = 0;
};

}  // namespace fernwick::lab
