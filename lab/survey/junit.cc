#include <string>
#include <string_view>

#include "lab/survey/format.h"
#include "lab/survey/text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

std::string Begin(const SurveyRow& row) {
  return "    <testcase classname=\"" + XmlText(row.board.value_or("-")) + "\" name=\"" +
         XmlText(row.file) + "\">\n";
}

std::string FailureTag(std::string_view type, std::string_view message) {
  return "      <failure type=\"" + XmlText(type) + "\" message=\"" + XmlText(message) + "\"";
}

std::string LinesOf(const SurveyRow& row) {
  std::string lines;
  for (const auto& line : DescribeLines(row)) lines += XmlText(line) + "\n";
  return lines;
}

std::string End(const SurveyRow& row) {
  return "      <system-out>\n" + LinesOf(row) + "      </system-out>\n    </testcase>\n";
}

class JunitFormat : public SurveyFormat {
 public:
  using SurveyFormat::SurveyFormat;

  std::string RowText(const SurveyRow& row) const override {
    const bool failed = row.outcome == Outcome::Refused || row.outcome == Outcome::AbnormalEnd;
    if (!failed) return Begin(row) + End(row);
    return Begin(row) + FailureTag(NameOf(row.outcome), row.reason) + "/>\n" + End(row);
  }

  std::string ExpectedText(const SurveyRow& row) const override { return Begin(row) + End(row); }

  std::string DifferenceText(const SurveyDifference& difference) const override {
    const auto& [expected, found] = difference;
    auto text = Begin(found == nullptr ? *expected : *found);
    text += FailureTag(NameOf(difference), "not as expected");
    text +=
        expected == nullptr ? "/>\n" : ">expected:\n" + LinesOf(*expected) + "      </failure>\n";
    return text + (found == nullptr ? "    </testcase>\n" : End(*found));
  }

  void Add(const std::string& text) override { kept_ += text; }

  void Finish(std::size_t computers, std::size_t failures) override {
    Out().Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n");
    Out().Write("  <testsuite name=\"fernwick-lab survey\" tests=\"" + std::to_string(computers) +
                "\" failures=\"" + std::to_string(failures) + "\" errors=\"0\" skipped=\"0\">\n");
    Out().Write(kept_);
    Out().Write("  </testsuite>\n</testsuites>\n");
  }

 private:
  std::string kept_;
};

}  // namespace

std::unique_ptr<SurveyFormat> MakeJunitFormat(Console& console) {
  return std::make_unique<JunitFormat>(console);
}

}  // namespace fernwick::lab
