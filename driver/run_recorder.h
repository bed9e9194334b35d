#pragma once

#include <optional>
#include <vector>

#include "driver/options.h"
#include "personality/match_record.h"
#include "personality/match_recorder.h"
#include "registry/board_identity.h"

namespace fernwick {

/// Learns what a run finds and decides, as far as it comes.
struct RunRecorder {
  std::optional<Options> options = {};  // none when a switch ended the run before they were read
  bool bypassesVersionCheck = false;    // by an option or a switch
  std::optional<BoardIdentity> identity = {};
  MatchRecorder matching = {};
  std::vector<MatchRecord> matches = {};  // in the order of the plan; empty without a match
};

}  // namespace fernwick
