#pragma once

#include <cstddef>
#include <functional>

#include "lab/survey/selection.h"

namespace fernwick::lab {

/// Reports the result of one path. Returns whether to go on.
using Report = std::function<bool()>;

/// What is done with one path, on any thread. Returns how the result is reported.
using Work = std::function<Report(const Selected& selected)>;

/// Works on every selected path on `jobs` threads, of which the calling one is the first, and calls
/// the reports one after the other in the order of the selection, each on some thread. At most 64
/// results a job are kept back for one that comes before them; then the threads wait. Returns
/// whether every path was reported, once all threads have ended: after a report that returns false
/// no other is called, and no path is taken. Where no more threads can be started, those that there
/// are do all the work. REQUIRES: jobs is at least 1.
bool WorkInOrder(Selection& selection, std::size_t jobs, const Work& work);

}  // namespace fernwick::lab
