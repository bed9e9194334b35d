#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "personality/match_record.h"
#include "personality/match_recorder.h"
#include "registry/registry.h"

namespace fernwick {

/// Pairs the personalities of the board's configuration with the controllers of the computer. Of
/// `boardRevision` only the low 8 bits count. The records come in the order of the file's top-level
/// keys and, within a type, in inventory order. None instead of an empty list: when nothing
/// matched, or after lines in the PlatformLog when there is no usable configuration. A recorder
/// learns of every decision and changes none.
std::optional<std::vector<MatchRecord>> MatchPersonalities(
    Registry& registry, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory,
    MatchRecorder* recorder = nullptr);

}  // namespace fernwick
