#pragma once

#include <cstddef>
#include <string>

#include "lab/report/bounded_list.h"
#include "lab/survey/coverage/coverage_format.h"

namespace fernwick::lab {

/// What the recordings exercise of the payload, as a part of the page.
class CoverageSection : public CoverageFormat {
 public:
  /// `command` prints all; the page is not written on the console.
  CoverageSection(Console& console, std::string command);

  void AddBoard(const CoveredBoard& board) override;
  void Finish(const CoverageTotals& totals) override;

  /// REQUIRES: Finish was called.
  const std::string& Markup() const { return markup_; }

  const CoverageTotals& Totals() const { return totals_; }

 private:
  void AddPersonalities(const CoveredBoard& board);

  std::string command_;
  ByteBudget budget_;
  ListLimit boardLimit_;
  BoundedList boards_;
  ListLimit personalityLimit_;
  BoundedList personalities_;
  std::size_t tested_ = 0;
  std::size_t matched_ = 0;
  CoverageTotals totals_ = {};
  std::string markup_;
};

}  // namespace fernwick::lab
