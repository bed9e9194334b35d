#include "lab/survey/survey_report.h"

#include "lab/support/words.h"

namespace fernwick::lab {

std::string SurveyReport::TextOf(const SurveyRow& row) const {
  return expectation_ == nullptr ? format_.RowText(row) : std::string();
}

void SurveyReport::Add(const SurveyRow& row, const std::string& text) {
  totals_.Add(row);
  if (expectation_ == nullptr) return format_.Add(text);
  if (savesRows_) savedRows_ += expectation_->RowToSave(row);
  const auto expected = expectation_->ConsumeRowFor(row);
  if (!expected) return Differ({nullptr, &row}, additional_);
  if (!AreSame(*expected, row)) return Differ({&*expected, &row}, changed_);
  format_.Add(format_.ExpectedText(row));
}

void SurveyReport::Finish() {
  if (expectation_ == nullptr) {
    return format_.Finish(totals_.Computers(),
                          totals_.Count(Outcome::Refused) + totals_.Count(Outcome::AbnormalEnd));
  }
  expectation_->ForEachLeft([this](const SurveyRow& row) { Differ({&row, nullptr}, missing_); });
  format_.Finish(totals_.Computers() + missing_, changed_ + additional_ + missing_);
}

std::string SurveyReport::Totals() const {
  if (expectation_ == nullptr) return Describe(totals_);
  if (!HasDifferences()) return Describe(totals_) + "as expected\n";
  return Describe(totals_) + "not as expected: " + std::to_string(changed_) + " changed, " +
         std::to_string(additional_) + " additional, " + std::to_string(missing_) + " missing\n";
}

void SurveyReport::Differ(const SurveyDifference& difference, std::size_t& count) {
  ++count;
  format_.Add(format_.DifferenceText(difference));
}

}  // namespace fernwick::lab
