#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "personality/configuration.h"
#include "personality/match_record.h"
#include "personality/run_trace.h"
#include "platform/console.h"
#include "platform/fault.h"
#include "registry/registry.h"
#include "value/property_list_reader.h"
#include "value/result.h"

namespace fernwick {

/// What the matcher works with.
struct MatchContext {
  Registry& registry;
  Console& console;  // for the diagnostics of the requirements and the system log
  bool bypassVersionCheck = false;
  RunTrace* trace = nullptr;  // may be null
  ConfigurationLoader load = LoadPersonalityConfiguration;
};

/// What the matcher found. The records view the configuration and the registry, which must outlive
/// them; moving this keeps them valid.
struct Matching {
  std::optional<PropertyList> configuration = {};  // as it was loaded, its value of whatever kind
  std::optional<Error> configurationError = {};    // why there is none
  std::vector<MatchRecord> matches = {};           // empty: the result of the match is nothing
};

/// Pairs the personalities of the board's configuration with the controllers of the computer. Of
/// `boardRevision` only the low 8 bits count. The records come in the order of the file's top-level
/// keys and, within a type, in inventory order. When there is no usable configuration there are
/// lines in the system log. The fault is one of an inventory.
Result<Matching, Fault> MatchPersonalities(
    const MatchContext& context, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory);

}  // namespace fernwick
