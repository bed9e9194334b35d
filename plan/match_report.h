#pragma once

#include "personality/match_record.h"
#include "platform/output.h"

namespace fernwick {

/// Verbose output alone. Each line is flushed.

/// The line above the first match.
void PrintMatchReportHeader(Output& out);

/// The block of one match: 21 labelled lines, whatever its type, and a gap.
void PrintMatchReport(Output& out, const MatchRecord& match);

}  // namespace fernwick
