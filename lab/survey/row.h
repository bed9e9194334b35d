#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/support/diagnostics.h"
#include "lab/support/json_values.h"
#include "lab/support/plan_summary.h"
#include "lab/survey/computer_class.h"

namespace fernwick::lab {

/// The result of one computer.
enum class Outcome {
  Plan,
  NoPlan,
  Bypassed,  // by a switch of the computer
  Refused,   // its recording
  AbnormalEnd,
};

/// "plan", "no plan", "bypassed", "refused" and "abnormal end".
std::string_view NameOf(Outcome outcome);

/// A personality that applies to a controller: the RID, address and installed version are the
/// controller's, the new version and the image are the plan's. Null where a value is absent.
struct SurveyMatch {  // NOLINT: Json moves without exceptions, whatever it is made of
  std::string type;
  Json rid;
  Json portAddress;
  Json installed;  // the controller's version
  Json version;    // the new one
  Json image;
  bool isImageMissing = false;  // the payload has no such file
};

/// One computer of a survey.
struct SurveyRow {
  std::string file;
  Outcome outcome = Outcome::NoPlan;
  std::optional<ComputerClass> computerClass = {};  // empty: the row was saved before rows had one
  std::optional<int> status = {};                   // the tool's; the lab's of a refused recording
  std::string reason = {};  // why it was refused, or what ended it, such as "SIGABRT"
  std::optional<std::string> board = {};
  std::optional<int> revision = {};
  std::vector<SurveyMatch> matches = {};          // in the order of the plan
  std::optional<NearestMiss> miss = {};           // of a Classification
  std::vector<DiagnosticCount> diagnostics = {};  // in the order in which they first came
  std::optional<PlanSummary> plan = {};           // empty without a plan
};

/// In JSON, all keys always there and in the same order.
Json ToJson(const SurveyRow& row);

/// A row from its JSON document, as ParseSurveyRow.
std::optional<SurveyRow> SurveyRowOf(const Json& json);

/// A row from its JSON, such as one of an earlier survey: one that was saved before rows had
/// "imageMissing" and "plan", or before they had "class" and "nearestMiss", lacks them. Empty when
/// it is not a row, or nested too deep to be one.
std::optional<SurveyRow> ParseSurveyRow(std::string_view json);

}  // namespace fernwick::lab
