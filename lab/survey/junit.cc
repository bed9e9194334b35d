#include <string>
#include <string_view>

#include "lab/support/messages.h"
#include "lab/survey/format.h"
#include "lab/survey/row_spool.h"
#include "lab/survey/text.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

// As the text of an element or, in double quotes, of an attribute.
std::string XmlText(std::string_view text) {
  const auto printable = PrintableText(text);
  std::string escaped;
  for (std::string_view rest = printable; !rest.empty();) {
    const auto [character, length] = DecodeUtf8(rest);
    switch (character) {
      case U'&': escaped += "&amp;"; break;
      case U'<': escaped += "&lt;"; break;
      case U'>': escaped += "&gt;"; break;
      case U'"': escaped += "&quot;"; break;
      default: AppendUtf8(escaped, IsTextCharacter(character) ? character : ReplacementCharacter);
    }
    rest.remove_prefix(length);
  }
  return escaped;
}

class JunitFormat : public SurveyFormat {
 public:
  explicit JunitFormat(Output& out) : out_(out) {}

  void AddRow(const SurveyRow& row) override {
    Begin(row);
    const bool failed = row.outcome == Outcome::Refused || row.outcome == Outcome::AbnormalEnd;
    if (failed) Fail(std::string(NameOf(row.outcome)), row.reason, {});
    End(row);
  }

  void AddExpected(const SurveyRow& row) override {
    Begin(row);
    End(row);
  }

  void AddDifference(const SurveyDifference& difference) override {
    const auto& [expected, found] = difference;
    const auto& shown = found == nullptr ? *expected : *found;
    Begin(shown);
    Fail(NameOf(difference), "not as expected", expected);
    if (found != nullptr) return End(*found);
    spool_.Add("    </testcase>");
  }

  void Finish() override {
    out_.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n");
    out_.Write("  <testsuite name=\"fernwick-lab survey\" tests=\"" + std::to_string(cases_) +
               "\" failures=\"" + std::to_string(failures_) + "\" errors=\"0\" skipped=\"0\">\n");
    spool_.ForEach([&](std::string_view line) { out_.Write(std::string(line) + "\n"); });
    out_.Write("  </testsuite>\n</testsuites>\n");
  }

  std::string Error() const override { return spool_.Error(); }

 private:
  void Begin(const SurveyRow& row) {
    ++cases_;
    spool_.Add("    <testcase classname=\"" + XmlText(row.board.value_or("-")) + "\" name=\"" +
               XmlText(row.file) + "\">");
  }

  void Fail(const std::string& type, const std::string& message, const SurveyRow* expected) {
    ++failures_;
    const auto tag =
        "      <failure type=\"" + XmlText(type) + "\" message=\"" + XmlText(message) + "\"";
    if (expected == nullptr) return spool_.Add(tag + "/>");
    AddLines(tag + ">expected:", *expected, "</failure>");
  }

  void End(const SurveyRow& row) {
    AddLines("      <system-out>", row, "</system-out>");
    spool_.Add("    </testcase>");
  }

  void AddLines(const std::string& start, const SurveyRow& row, const std::string& end) {
    spool_.Add(start);
    for (const auto& line : DescribeLines(row)) spool_.Add(XmlText(line));
    spool_.Add("      " + end);
  }

  Output& out_;
  RowSpool spool_;
  std::size_t cases_ = 0;
  std::size_t failures_ = 0;
};

}  // namespace

std::unique_ptr<SurveyFormat> MakeJunitFormat(Output& out) {
  return std::make_unique<JunitFormat>(out);
}

}  // namespace fernwick::lab
