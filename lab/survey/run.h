#pragma once

#include <string>

#include "lab/survey/row.h"
#include "lab/survey/worker.h"
#include "lab/survey/worker_pool.h"

namespace fernwick::lab {

/// What a survey runs over every computer.
struct SurveyedTool {
  std::string payload;
  bool bypassVersion = false;
};

/// Runs the tool over a recorded computer. Notes, in JSON, the row of a computer whose run ends
/// abnormally, before it runs. A run that ends abnormally ends this process.
SurveyRow SurveyRecording(const std::string& path, const SurveyedTool& tool, const Note& note);

/// The row that came of it in a worker that prints rows in JSON.
SurveyRow RowOf(const WorkResult& result);

}  // namespace fernwick::lab
