#pragma once

#include "personality/match_record.h"
#include "platform/console.h"

namespace fernwick {

// For verbose output only. Each line is flushed.

/// The line above the first match.
void PrintMatchReportHeader(Console& console);

/// The block of one match: 21 labelled lines, whatever its type, and a gap.
void PrintMatchReport(Console& console, const MatchRecord& match);

}  // namespace fernwick
