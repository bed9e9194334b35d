#include "lab/lint/report.h"

#include <string_view>

#include "lab/support/json_stream.h"
#include "lab/support/messages.h"
#include "lab/support/stable_hash.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

class LintText : public LintFormat {
 public:
  using LintFormat::LintFormat;

  void Add(const Finding& finding) override {
    auto line = PrintableText(finding.path);
    if (finding.location) line.append(":").append(Describe(*finding.location));
    line.append(": ").append(NameOf(finding.severity)).append(": ");
    line.append(PrintableText(finding.message)).append(" [").append(finding.rule->id);
    Out().Write(line.append("]\n"));
  }

  void Finish(const LintTotals& totals) override {
    auto line = Counted(totals.boards, "board", "boards") + ": " +
                Counted(totals.errors, "error", "errors") + ", " +
                Counted(totals.warnings, "warning", "warnings") + ", " +
                Counted(totals.notes, "note", "notes");
    if (totals.known > 0) {
      line += "; " + Counted(totals.known, "finding is", "findings are") + " in the baseline";
    }
    Out().Write(line + "\n");
  }
};

Json ToJson(const Finding& finding) {
  Json json = {
      {"id", finding.rule->id}, {"severity", NameOf(finding.severity)}, {"path", finding.path}};
  if (finding.location && finding.location->line != 0) {
    json["line"] = finding.location->line;
    json["column"] = finding.location->column;
  } else if (finding.location) {
    json["byte"] = finding.location->byte;
  }
  json["message"] = finding.message;
  json["count"] = finding.count;
  json["fingerprint"] = HashText(finding.fingerprint);
  return json;
}

class LintJson : public LintFormat {
 public:
  explicit LintJson(Console& console)
      : LintFormat(console), stream_([this](std::string_view text) { Out().Write(text); }) {}

  void Add(const Finding& finding) override {
    Begin();
    stream_.Add(ToJson(finding));
  }

  void Finish(const LintTotals& totals) override {
    Begin();
    stream_.End();
    stream_.AddMembers({{"boards", totals.boards},
                        {"errors", totals.errors},
                        {"warnings", totals.warnings},
                        {"notes", totals.notes},
                        {"known", totals.known}});
    stream_.End();
  }

 private:
  void Begin() {
    if (hasBegun_) return;
    stream_.Begin('{');
    stream_.Begin("findings", '[');
    hasBegun_ = true;
  }

  JsonStream stream_;
  bool hasBegun_ = false;
};

}  // namespace

void Count(const Finding& finding, LintTotals& totals) {
  switch (finding.severity) {
    case Severity::Error: totals.errors += finding.count; return;
    case Severity::Warning: totals.warnings += finding.count; return;
    case Severity::Note: break;
  }
  totals.notes += finding.count;
}

std::unique_ptr<LintFormat> MakeLintText(Console& console) {
  return std::make_unique<LintText>(console);
}

std::unique_ptr<LintFormat> MakeLintJson(Console& console) {
  return std::make_unique<LintJson>(console);
}

}  // namespace fernwick::lab
