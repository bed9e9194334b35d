#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>

#include "lab/report/computer_groups.h"
#include "lab/report/computer_lists.h"
#include "lab/survey/row.h"

namespace fernwick::lab {

/// What keeps computers from an update: the first requirement that the nearest personality fails,
/// by its key, and images that the payload lacks.
class ObstacleSection {
 public:
  void Add(const SurveyRow& row, const ComputerName& computer);

  std::string Markup(const std::string& command) const;

 private:
  std::map<std::string, std::array<std::size_t, 2>> keys_;  // blocked, unmatched
  ComputerGroups blocked_ = ComputerGroups("blocked-by", 60'000);
  ComputerGroups unmatched_ = ComputerGroups("unmatched-by", 60'000);
  ComputerGroups images_ = ComputerGroups("missing-images", 30'000);
};

}  // namespace fernwick::lab
