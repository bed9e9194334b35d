#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lab/survey/settle/settle_row.h"
#include "platform/console.h"

namespace fernwick::lab {

/// What a settling prints, and what its status depends on.
struct SettleOutput {
  std::string format = "text";  // or "ndjson"
  std::optional<std::string> failOnList = {};
  std::vector<SettleOutcome> failOn = {SettleOutcome::NeverSettles, SettleOutcome::Undecided};
  std::vector<std::string> changes = {};  // of the computers before their first run
  bool isShard = false;                   // then a change may apply to computers of others alone
};

/// Reads the list into what is failed on. Returns what is wrong with it; empty when nothing is.
std::string ReadSettleFailOn(SettleOutput& output);

/// What the output has of a computer.
struct SettledComputer {
  SettleOutcome outcome = SettleOutcome::Settled;
  std::size_t runs = 0;
  std::optional<int> status = {};  // of a refused one that of the lab
  bool isNamed = false;
  std::vector<std::string> changes = {};  // those that it has
  std::string text = {};                  // to print
};

/// What the output has of a row of "settle", without the text; `isNamed` as in Selected.
SettledComputer SettledOf(const SettleRow& row, bool isNamed);

/// The same of a row in JSON; empty when it is not a row.
std::optional<SettledComputer> SettledOf(const Json& row, bool isNamed);

/// Prints a computer and counts it.
using AddSettled = std::function<void(const SettledComputer& computer)>;

/// Adds all computers, in their order. Returns LabStatus::Done, or the status after a line on
/// standard error, which ends the settling.
using AddAllSettled = std::function<int(const AddSettled& add, Console& console)>;

/// Prints these computers with their totals. Returns the exit status.
int PrintSettled(const SettleOutput& output, const AddAllSettled& addAll);

}  // namespace fernwick::lab
