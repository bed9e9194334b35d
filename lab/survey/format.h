#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "lab/survey/row.h"
#include "platform/console.h"

namespace fernwick::lab {

/// The rows of one computer in two surveys, which differ. Null where the survey has none.
struct SurveyDifference {
  const SurveyRow* expected;
  const SurveyRow* found;
};

/// "missing", "additional" or "changed".
std::string NameOf(const SurveyDifference& difference);

/// An output format of a survey: each computer is formatted as a text, on any thread, and the texts
/// are added in order. Nothing is written before the first text, and a survey that is compared with
/// another shows the differences alone, except in JUnit XML. The console must outlive the format.
class SurveyFormat {
 public:
  explicit SurveyFormat(Console& console) : console_(console) {}
  virtual ~SurveyFormat() = default;

  /// Without side effects: the text of a row of a survey that is not compared, of a difference, and
  /// of a row that is as expected.
  virtual std::string RowText(const SurveyRow& row) const = 0;
  virtual std::string DifferenceText(const SurveyDifference& difference) const = 0;
  virtual std::string ExpectedText(const SurveyRow&) const { return {}; }

  /// Adds a text that one of them returned.
  virtual void Add(const std::string& text) { Out().Write(text); }

  /// To be called once, after the last text, with the number of computers and of failures: the
  /// differences or, in a survey that is not compared, the refused recordings and the abnormal
  /// ends. REQUIRES: something was added.
  virtual void Finish([[maybe_unused]] std::size_t computers,
                      [[maybe_unused]] std::size_t failures) {}

 protected:
  Console& Out() const { return console_; }

 private:
  Console& console_;
};

/// One JSON object a line: a row as it is, a difference as its name and the two rows.
std::unique_ptr<SurveyFormat> MakeNdjsonFormat(Console& console);

/// A line of comma-separated values for every match, and for a computer without one, after a line
/// of names. Ends its lines with carriage return and line feed, shows control characters as octal
/// escapes, and puts an apostrophe before a text that begins like a formula. In a comparison two
/// more columns come first.
std::unique_ptr<SurveyFormat> MakeCsvFormat(Console& console, bool isComparison);

/// For people: aligned columns, for which it stores all texts to the end, or the lines in which two
/// rows differ. A column is at most 60 characters wide unless `isWide`; a longer cell is whole and
/// moves the rest of its line.
std::unique_ptr<SurveyFormat> MakeTableFormat(Console& console, bool isComparison, bool isWide);

/// JUnit XML: a test case for each computer. It stores all texts to the end, since the counts come
/// first.
std::unique_ptr<SurveyFormat> MakeJunitFormat(Console& console);

}  // namespace fernwick::lab
