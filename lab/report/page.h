#pragma once

#include <optional>
#include <string>

#include "lab/report/change_section.h"
#include "lab/report/commands.h"
#include "lab/report/computer_lists.h"
#include "lab/report/coverage_section.h"
#include "lab/report/lint_section.h"
#include "lab/report/obstacle_section.h"
#include "lab/report/reported_computer.h"
#include "lab/report/settle_section.h"
#include "lab/report/version_section.h"
#include "lab/survey/totals.h"

namespace fernwick::lab {

/// A page about what a payload does for many computers, for the one who decides about its release.
/// Stores what the page shows, which is bounded, whatever the number of computers.
class ReportPage {
 public:
  /// `console` is that of the coverage, on which nothing is written; it must outlive the page.
  ReportPage(ReportedPayloads payloads, std::string title, Console& console);

  /// Adds the next computer in the order of the selection. REQUIRES: its row has a class.
  void Add(const ReportedComputer& computer);

  LintSection& Lint() { return lint_; }
  CoverageSection& Coverage() { return coverage_; }

  /// How many recordings there are of each use.
  const RecordingCounts& Uses() const { return uses_; }

  /// The page. REQUIRES: the coverage is finished.
  std::string Markup() const;

 private:
  std::string TilesMarkup() const;
  std::string AlertsMarkup() const;
  std::string MainMarkup() const;

  ReportedPayloads payloads_;
  std::string title_;
  ReportCommands commands_;
  SurveyTotals totals_;
  ComputerLists lists_;
  VersionSection versions_;
  ObstacleSection obstacles_;
  SettleSection settling_;
  CoverageSection coverage_;
  LintSection lint_;
  ChangeSection changes_;
  RecordingCounts uses_ = {};
};

}  // namespace fernwick::lab
