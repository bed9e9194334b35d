#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "lab/survey/expectation.h"
#include "lab/survey/format.h"
#include "lab/survey/row.h"
#include "lab/survey/totals.h"

namespace fernwick::lab {

/// Adds the rows of a survey to a format, compared with what is expected if there is an
/// expectation.
class SurveyReport {
 public:
  /// `expectation` may be null; both must outlive the report. With `savesRows` it stores what the
  /// expectation is to be updated to.
  SurveyReport(SurveyFormat& format, SurveyExpectation* expectation, bool savesRows)
      : format_(format), expectation_(expectation), savesRows_(savesRows) {}

  /// The text to Add with the row. May be called on any thread.
  std::string TextOf(const SurveyRow& row) const;

  void Add(const SurveyRow& row, const std::string& text);

  /// To be called once, after the last row.
  void Finish();

  std::string Totals() const;

  /// Whether the two surveys differ. False without an expectation.
  bool HasDifferences() const { return changed_ + additional_ + missing_ > 0; }

  std::size_t Computers() const { return totals_.Computers(); }
  std::size_t Count(ComputerClass computerClass) const { return totals_.Count(computerClass); }
  const std::string& SavedRows() const { return savedRows_; }

 private:
  void Differ(const SurveyDifference& difference, std::size_t& count);

  SurveyFormat& format_;
  SurveyExpectation* expectation_;
  bool savesRows_;
  std::string savedRows_;
  SurveyTotals totals_;
  std::size_t changed_ = 0;
  std::size_t additional_ = 0;
  std::size_t missing_ = 0;
};

}  // namespace fernwick::lab
