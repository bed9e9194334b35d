#include <string>

#include "lab/survey/format.h"

namespace fernwick::lab {
namespace {

Json OrNull(const SurveyRow* row) {
  return row == nullptr ? Json(nullptr) : ToJson(*row);
}

class NdjsonFormat : public SurveyFormat {
 public:
  using SurveyFormat::SurveyFormat;

  std::string RowText(const SurveyRow& row) const override { return PrintJsonRow(ToJson(row)); }

  std::string DifferenceText(const SurveyDifference& difference) const override {
    const auto& [expected, found] = difference;
    return PrintJsonRow({{"file", (found == nullptr ? expected : found)->file},
                         {"difference", NameOf(difference)},
                         {"expected", OrNull(expected)},
                         {"found", OrNull(found)}});
  }
};

}  // namespace

std::string NameOf(const SurveyDifference& difference) {
  if (difference.found == nullptr) return "missing";
  return difference.expected == nullptr ? "additional" : "changed";
}

std::unique_ptr<SurveyFormat> MakeNdjsonFormat(Console& console) {
  return std::make_unique<NdjsonFormat>(console);
}

}  // namespace fernwick::lab
