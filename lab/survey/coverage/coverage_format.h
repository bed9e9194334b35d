#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/configuration_file.h"
#include "lab/survey/coverage/board_coverage.h"
#include "lab/survey/coverage/covered_recording.h"
#include "platform/console.h"

namespace fernwick::lab {

/// How many recordings there are of each use.
using RecordingCounts = std::array<std::size_t, RecordingUseCount>;

/// One board of the payload.
struct CoveredBoard {
  std::string name;
  const ConfigurationFile* file = nullptr;  // null: it has no dictionary, see `problem`
  std::string problem = {};                 // why there is no configuration that can be used
  BoardCoverage coverage;                   // of that configuration
};

/// All boards, and all recordings.
struct CoverageTotals {
  std::size_t boards = 0;
  std::size_t boardsWithoutRun = 0;
  CoverageCounts counts = {};
  RecordingCounts recordings = {};
};

/// How many tests of a personality, or of an element, a requirement was the first to reject.
struct Rejection {
  const Requirement* requirement;
  std::size_t count;
};

/// In the order of the table, without those that rejected none.
std::vector<Rejection> RejectionsOf(const TypeCoverage& coverage, std::size_t personality);

/// The same of an element.
std::vector<Rejection> RejectionsOfElement(const TypeCoverage& coverage, std::size_t element);

/// "Version 3, RID 1", the most frequent first.
std::string RejectionsText(std::vector<Rejection> rejections);

/// "63.3": tenths of a percent.
std::string PercentText(const CoverageCounts& counts);

/// Prints what is covered, board by board. The console must outlive the format.
class CoverageFormat {
 public:
  explicit CoverageFormat(Console& console) : console_(console) {}
  virtual ~CoverageFormat() = default;

  virtual void AddBoard(const CoveredBoard& board) = 0;

  /// To be called once, after the last board.
  virtual void Finish(const CoverageTotals& totals) = 0;

 protected:
  Console& Out() const { return console_; }

 private:
  Console& console_;
};

/// For people: of every board with a run a line for each personality and for each element of a list
/// of which any was tested, and a line for every other board. Elements next to each other with
/// equal counts share a line.
std::unique_ptr<CoverageFormat> MakeCoverageText(Console& console);

/// One JSON document with every personality and every element of a list.
std::unique_ptr<CoverageFormat> MakeCoverageJson(Console& console);

}  // namespace fernwick::lab
