#pragma once

#include <string>

#include "lab/report/reported_computer.h"

namespace fernwick::lab {

/// The commands that print what a list of the page leaves out, with the payloads as they were named
/// and RECORDING... for the recordings.
struct ReportCommands {
  explicit ReportCommands(const ReportedPayloads& payloads);

  std::string survey;
  std::string settle;
  std::string coverage;
  std::string lint;
  std::string diff;  // empty without an old payload
};

}  // namespace fernwick::lab
