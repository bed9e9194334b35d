#pragma once

namespace fernwick::testing {

/// Whether the programs count what is reached. At the end of a process the counters are written,
/// which takes memory and room for files that a test may have taken away.
#ifdef FERNWICK_COVERAGE
inline constexpr bool CountingCoverage = true;
#else
inline constexpr bool CountingCoverage = false;
#endif

}  // namespace fernwick::testing
