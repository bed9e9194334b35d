#pragma once

#include <memory>
#include <string>

#include "lab/survey/row.h"
#include "lab/survey/totals.h"
#include "platform/output.h"

namespace fernwick::lab {

/// Two surveys' rows of one computer that are not the same. Null: this survey has none.
struct SurveyDifference {
  const SurveyRow* expected;
  const SurveyRow* found;
};

/// "missing", "additional" or "changed".
std::string NameOf(const SurveyDifference& difference);

/// How a survey is written. Nothing is before the first row, and a survey that is held against
/// another shows the differences alone, save in JUnit XML. The output has to outlive the format.
class SurveyFormat {
 public:
  virtual ~SurveyFormat() = default;

  /// A row of a survey that is held against nothing.
  virtual void AddRow(const SurveyRow& row) = 0;

  virtual void AddDifference(const SurveyDifference& difference) = 0;

  /// A row that both surveys have.
  virtual void AddExpected(const SurveyRow&) {}

  /// To be called once, when nothing more comes. REQUIRES: something was added.
  virtual void Finish() {}

  /// What went wrong beside the output; empty when nothing did.
  virtual std::string Error() const { return {}; }
};

/// One JSON object a line: a row as it is, a difference as its name and the two rows.
std::unique_ptr<SurveyFormat> MakeNdjsonFormat(Output& out);

/// A line of comma-separated values for every match, and for a computer without one, after a line
/// of names. Ends its lines with carriage return and line feed, shows control characters as octal
/// escapes, and puts an apostrophe before a text that begins like a formula. In a comparison two
/// columns more come first.
std::unique_ptr<SurveyFormat> MakeCsvFormat(Output& out, bool isComparison);

/// For people: aligned columns, or the lines in which two rows differ.
std::unique_ptr<SurveyFormat> MakeTableFormat(Output& out);

/// JUnit XML: a test case for each computer, a failure for an unexpected row. Without an
/// expectation a refused recording and an abnormal end are the failures.
std::unique_ptr<SurveyFormat> MakeJunitFormat(Output& out);

}  // namespace fernwick::lab
