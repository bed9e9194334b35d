#include "lab/survey/text.h"

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "registry/key_schema.h"

namespace fernwick::lab {
namespace {

template <typename Value>
std::string OrDash(const std::optional<Value>& value) {
  return value ? CellText(Json(*value)) : "-";
}

std::string OutcomeText(const SurveyRow& row) {
  return std::string(NameOf(row.outcome)) + ", status " + OrDash(row.status) +
         (row.reason.empty() ? "" : " (" + PrintableText(row.reason) + ")") + ", board " +
         OrDash(row.board) + ", revision " + OrDash(row.revision);
}

std::string MatchText(const SurveyMatch& match) {
  return PrintableText(match.type) + ": RID " + CellText(match.rid) + ", port " +
         CellText(match.portAddress) + ", " + CellText(match.installed) + " to " +
         CellText(match.version) + ", " + CellText(match.image) +
         (match.isImageMissing ? " (image missing)" : "");
}

std::string PlanText(const PlanSummary& plan) {
  return "plan: priority " + std::to_string(plan.priority) + ", SetNVRAM " +
         CellText(plan.setNvram) + ", ClearNVRAM " + CellText(plan.clearNvram) + ", options " +
         PrintableText(plan.options);
}

}  // namespace

std::string CellText(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return PrintableText(value.get_ref<const std::string&>());
  return PrintableText(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string StatusText(const SurveyRow& row) {
  switch (row.outcome) {
    case Outcome::AbnormalEnd: return PrintableText(row.reason);
    case Outcome::Bypassed:
    case Outcome::Refused: return OrDash(row.status) + " " + std::string(NameOf(row.outcome));
    default: return OrDash(row.status);
  }
}

std::string DiagnosticText(const DiagnosticCount& diagnostic) {
  return std::to_string(diagnostic.count) + " x " + PrintableText(diagnostic.text);
}

std::string MissingImageText(const SurveyMatch& match) {
  return "image missing: " + CellText(match.image);
}

std::string MissText(const NearestMiss& miss) {
  return PrintableText(miss.key + " " + miss.text + " (" + miss.type + ", ") +
         PersonalityName(TypeNamed(miss.type), miss.personality - 1) + " on " +
         PrintableText(miss.controller) + ")";
}

std::vector<std::string> DescribeLines(const SurveyRow& row) {
  std::vector<std::string> lines = {OutcomeText(row)};
  if (row.computerClass) lines.push_back("class " + std::string(NameOf(*row.computerClass)));
  for (const auto& match : row.matches) lines.push_back(MatchText(match));
  if (row.miss) lines.push_back("nearest miss: " + MissText(*row.miss));
  for (const auto& diagnostic : row.diagnostics) lines.push_back(DiagnosticText(diagnostic));
  if (row.plan) lines.push_back(PlanText(*row.plan));
  return lines;
}

}  // namespace fernwick::lab
