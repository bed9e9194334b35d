#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "driver/options.h"
#include "personality/match_record.h"
#include "personality/match_recorder.h"
#include "registry/board_identity.h"

namespace fernwick {

/// Learns what a run finds and decides, as far as it comes.
struct RunRecorder {
  bool bypassesUpdates = false;         // by a switch, which ends the run
  bool switchBypassesVersion = false;   // a switch does what the option --bypassVersion does
  std::optional<Options> options = {};  // none when a switch ended the run before they were read
  bool bypassesVersionCheck = false;    // by an option or a switch
  std::optional<BoardIdentity> identity = {};
  MatchRecorder matching = {};
  std::vector<MatchRecord> matches = {};  // in the order of the plan; empty without a match
  std::size_t plannedMatches = 0;         // fewer than matches when the next one ended the run
};

}  // namespace fernwick
