#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "lab/support/json_values.h"
#include "lab/support/tool_run.h"

namespace fernwick::lab {

/// What a plan says besides its images, without the payload directory.
struct PlanSummary {  // NOLINT: Json moves without exceptions, whatever it is made of
  std::uint32_t priority = 0;
  Json setNvram = Json::object();   // variable to value
  Json clearNvram = Json::array();  // names of variables; of very many only the first and a count
  std::string options = {};         // the options argument of the boot-target tool
};

/// Empty where the run printed no plan.
std::optional<PlanSummary> SummaryOfPlan(const ToolRun& run);

/// In JSON, all keys always there and in the same order.
Json ToJson(const PlanSummary& plan);

/// The path of the image that a match of the run plans; empty when it names none.
/// `personalitiesDirectory` is that of the run's options.
std::optional<std::string> ImagePath(const MatchedPair& pair, const ToolRun& run,
                                     const std::optional<std::string>& personalitiesDirectory);

}  // namespace fernwick::lab
