#include <string>

#include "lab/survey/format.h"

namespace fernwick::lab {
namespace {

Json OrNull(const SurveyRow* row) {
  return row == nullptr ? Json(nullptr) : ToJson(*row);
}

class NdjsonFormat : public SurveyFormat {
 public:
  explicit NdjsonFormat(Output& out) : out_(out) {}

  void AddRow(const SurveyRow& row) override { out_.Write(PrintJsonRow(ToJson(row))); }

  void AddDifference(const SurveyDifference& difference) override {
    const auto& [expected, found] = difference;
    out_.Write(PrintJsonRow({{"file", (found == nullptr ? expected : found)->file},
                             {"difference", NameOf(difference)},
                             {"expected", OrNull(expected)},
                             {"found", OrNull(found)}}));
  }

 private:
  Output& out_;
};

}  // namespace

std::string NameOf(const SurveyDifference& difference) {
  if (difference.found == nullptr) return "missing";
  return difference.expected == nullptr ? "additional" : "changed";
}

std::unique_ptr<SurveyFormat> MakeNdjsonFormat(Output& out) {
  return std::make_unique<NdjsonFormat>(out);
}

}  // namespace fernwick::lab
