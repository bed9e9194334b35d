#pragma once

namespace fernwick::testing {

/// Whether the programs count what is reached. At the end of a process the counters are written,
/// which needs memory and disk space that a test may have exhausted.
#ifdef FERNWICK_COVERAGE
inline constexpr bool CountingCoverage = true;
#else
inline constexpr bool CountingCoverage = false;
#endif

}  // namespace fernwick::testing
