#pragma once

#include <cstdio>

#include "personality/match_record.h"

namespace fernwick {

/// Verbose output alone. Each line is flushed.

/// The line above the first match.
void PrintMatchReportHeader(std::FILE* out);

/// The block of one match: 21 labelled lines, whatever its type, and a gap.
void PrintMatchReport(std::FILE* out, const MatchRecord& match);

}  // namespace fernwick
