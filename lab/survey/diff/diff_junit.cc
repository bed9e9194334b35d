#include <string>

#include "lab/survey/diff/diff_format.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

std::string Attribute(const char* name, std::string_view text) {
  return std::string(" ") + name + "=\"" + XmlText(text) + "\"";
}

std::string Skipped(const std::string& message) {
  return "      <skipped" + Attribute("message", message) + "/>\n";
}

// Line by line, since the line feeds stay as they are.
std::string LinesOf(const DiffChange& change) {
  const auto lines = DescribeChange(change, "  ");
  std::string text;
  for (std::size_t begin = 0, end = 0; begin < lines.size(); begin = end + 1) {
    end = lines.find('\n', begin);
    text += XmlText(std::string_view(lines).substr(begin, end - begin)) + "\n";
  }
  return text;
}

std::string Failure(const DiffRow& row) {
  std::string text = "      <failure type=\"changed\" message=\"not as with the old payload\">\n";
  for (const auto& change : row.changes) text += LinesOf(change);
  return text + "      </failure>\n";
}

std::string SystemOut(const DiffRow& row) {
  std::string text = "      <system-out>\n";
  for (const auto& note : row.notes) text += LinesOf(note);
  return text + "      </system-out>\n";
}

class DiffJunit : public DiffFormat {
 public:
  using DiffFormat::DiffFormat;

  void Add(const DiffRow& row) override {
    kept_ += "    <testcase" + Attribute("classname", row.board.value_or("-")) +
             Attribute("name", row.file) + ">\n";
    if (!row.refusal.empty()) kept_ += Skipped("refused: " + row.refusal);
    if (!row.abnormalEnd.empty()) kept_ += Skipped("ends abnormally with both payloads");
    if (!row.changes.empty()) kept_ += Failure(row);
    if (!row.notes.empty()) kept_ += SystemOut(row);
    kept_ += "    </testcase>\n";
  }

  void Finish(const DiffTotals& totals) override {
    Out().Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n");
    Out().Write("  <testsuite name=\"fernwick-lab diff\" tests=\"" +
                std::to_string(totals.Computers()) + "\" failures=\"" +
                std::to_string(totals.changed) + "\" errors=\"0\" skipped=\"" +
                std::to_string(totals.refused + totals.abnormal) + "\">\n");
    Out().Write(kept_);
    Out().Write("  </testsuite>\n</testsuites>\n");
  }

 private:
  std::string kept_;
};

}  // namespace

std::unique_ptr<DiffFormat> MakeDiffJunit(Console& console) {
  return std::make_unique<DiffJunit>(console);
}

}  // namespace fernwick::lab
