#include "personality/requirement_recorder.h"

#include <algorithm>
#include <utility>

namespace fernwick {

void RequirementRecorder::Add(FailedRequirement failure) {
  const bool isKept = std::ranges::any_of(failures_, [&](const FailedRequirement& kept) {
    return kept.key == failure.key && kept.shortfall == failure.shortfall;
  });
  if (isKept) return;
  failure.check = check_;
  failures_.push_back(std::move(failure));
}

}  // namespace fernwick
