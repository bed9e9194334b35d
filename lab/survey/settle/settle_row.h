#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/explain/failed_requirement.h"
#include "lab/support/json_values.h"
#include "lab/survey/settle/causes.h"
#include "lab/survey/settle/settling.h"

namespace fernwick::lab {

/// The result of one computer.
enum class SettleOutcome {
  Settled,
  Stuck,  // settled, but the payload has newer versions for its controllers
  NeverSettles,
  Undecided,  // within the bounds
  NoPlan,     // the tool prints none although it matches something or has no configuration
  Bypassed,   // by a switch of the computer, which a plan may have set
  Refused,    // its recording, or a change that it cannot have
  AbnormalEnd,
};

inline constexpr std::size_t SettleOutcomeCount = 8;

/// "settled", "stuck", "never settles", "undecided", "no plan", "bypassed", "refused" and
/// "abnormal end".
std::string_view NameOf(SettleOutcome outcome);

/// The outcome of that name; empty for any other text.
std::optional<SettleOutcome> SettleOutcomeNamed(std::string_view name);

// The parts of a row are named as it shows them: controllers by their paths, personalities from 1.

/// A match of a plan.
struct MatchInRow {
  std::string type;
  std::size_t personality;  // from 1
  std::string controller;   // the path of the one that it matched
  std::string changed;      // of the one that gets the image
  Json offered;             // versions; null where there is none
  Json before;
  Json after;
  bool isOlder = false;  // `after` than `before`
};

/// A run with a plan.
struct StepInRow {
  std::vector<MatchInRow> matches;
  std::vector<NvramChange> nvram;
  std::size_t otherNvram = 0;
};

/// Why the computer never settles.
struct RepetitionInRow {
  RepetitionCause cause;
  MatchInRow match;
  std::optional<MatchInRow> other = {};  // of "undone"
};

/// A requirement that keeps a controller below a version: its key and what is wrong.
struct RequirementInRow {
  std::string key;
  std::string reason;  // "belowInstalled"
  std::string text;    // "171 at 12:5 is below the installed 175"
  std::optional<ValueOrigin> origin = {};
  Json wanted = {};
  Json found = {};
};

/// A controller that stays below a version that the payload has for it.
struct StuckInRow {
  std::string controller;  // its path
  std::string type;
  std::size_t personality;  // from 1
  Json offered;
  Json installed;
  std::vector<RequirementInRow> requirements;
};

/// A controller with the version that it reports before the first run and after the last.
struct ControllerInRow {
  std::string path;
  bool isPort;
  Json before;
  Json after;
  bool isOlder = false;  // `after` than `before`
};

/// One computer of a settling.
struct SettleRow {
  std::string file;
  SettleOutcome outcome = SettleOutcome::Settled;
  std::optional<int> status = {};  // the tool's, of the last run; the lab's of a refused recording
  std::string reason = {};         // of a refusal, of no plan, or what ended it
  std::optional<std::string> board = {};
  std::optional<int> revision = {};
  std::size_t runs = 0;                       // those that planned something
  std::optional<std::size_t> comesBack = {};  // of one that never settles: the number of runs after
                                              // which the state first occurred that occurs again
                                              // after `runs`
  std::optional<SwitchChange> endedBy = {};   // as in Settling
  std::optional<SwitchChange> uncheckedBy = {};
  std::vector<ControllerInRow> controllers = {};
  std::vector<RepetitionInRow> repetitions = {};
  std::vector<StuckInRow> stuck = {};
  std::optional<std::vector<StepInRow>> steps = {};  // where they are wanted
  std::vector<std::string> changes = {};             // of the computer before the first run, each
                                                     // as written
};

/// In JSON, all keys always there and in the same order.
Json ToJson(const SettleRow& row);

/// The row as lines for people, each with its line feed and safe to show.
std::string DescribeRow(const SettleRow& row);

/// Why a match is planned again and again, in words for people: "USBC personality 1 offers 43.105,
/// of which 43.1 is stored". Safe to show.
std::string DescribeCause(const RepetitionInRow& repetition);

/// What a controller does not get: "stays at 171: USBC personality 2 offers 200". Safe to show.
std::string DescribeOffer(const StuckInRow& stuck);

/// The totals of a settling: memory for each number of runs, of which there are few.
struct SettleTotals {
  std::map<SettleOutcome, std::size_t> outcomes = {};
  std::map<std::size_t, std::size_t> settledAfter = {};  // by runs: computers, stuck ones too
  std::size_t endedByPlans = 0;  // those bypassed or ended abnormally after a run with a plan

  /// Whether it is settled, maybe stuck.
  static bool IsSettled(SettleOutcome outcome);

  void Add(SettleOutcome outcome, std::size_t runs);
  std::size_t Count(SettleOutcome outcome) const;
};

/// A line of the outcomes and one of each number of runs.
std::string Describe(const SettleTotals& totals);

}  // namespace fernwick::lab
