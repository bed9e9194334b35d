#pragma once

#include <cstddef>
#include <functional>

#include "lab/survey/selection.h"

namespace fernwick::lab {

/// Reports the result of one path. Returns whether to go on.
using Report = std::function<bool()>;

/// Processes one path, on any thread. Returns the function that reports the result.
using Work = std::function<Report(Selected selected)>;

/// Processes every selected path on `jobs` threads, of which the calling one is the first, and
/// calls the reports one after the other in the order of the selection, each on some thread. At
/// most 64 results a job wait for an earlier one; then the threads wait. Returns whether every path
/// was reported, once all threads have ended: after a report that returns false no other is called,
/// and no further path is processed. Where no more threads can be started, the existing ones do all
/// the work. REQUIRES: jobs is at least 1.
bool WorkInOrder(Selection& selection, std::size_t jobs, const Work& work);

}  // namespace fernwick::lab
