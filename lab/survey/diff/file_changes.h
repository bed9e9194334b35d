#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "driver/options.h"
#include "lab/support/messages.h"
#include "lab/support/tool_run.h"
#include "lab/survey/diff/diff_row.h"
#include "value/result.h"

namespace fernwick::lab {

/// Compares the files of two payloads. Remembers each comparison by its two paths, since the
/// computers of one board plan the same images. May be used on several threads.
class PayloadFiles {
 public:
  /// The sizes of both files; empty where there is no file that can be read.
  struct Comparison {
    std::optional<std::uint64_t> sizeBefore;
    std::optional<std::uint64_t> sizeAfter;
    bool isSame = false;  // same name, same bytes
  };

  /// Fails when a file cannot be looked at or read for lack of permission, memory or descriptors.
  Result<Comparison, LabError> Compare(const std::string& before, const std::string& after);

 private:
  std::mutex mutex_;
  std::map<std::pair<std::string, std::string>, Comparison> known_;
};

/// How the files that the plans need, images and flashing utilities, differ between two runs over
/// the same computer: a planned image that the new payload lacks and the old one does not, the
/// reverse, and other bytes under the same name. `before` and `after` are the options of the runs,
/// neither of which ended with a fault. Fails as PayloadFiles::Compare.
Result<std::vector<DiffChange>, LabError> FindFileChanges(const ToolRun& runBefore,
                                                          const Options& before,
                                                          const ToolRun& runAfter,
                                                          const Options& after,
                                                          PayloadFiles& files);

}  // namespace fernwick::lab
