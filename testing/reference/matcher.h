#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "value/record.h"

namespace fernwick::testing::reference {

/// The controllers of a computer, as each inventory lists them.
struct Controllers {
  std::vector<Record> thunderbolt;
  std::vector<Record> ports;
};

/// Which inventory was collected.
enum class Inventory { Thunderbolt, Ports };

/// The result of one matching.
struct Matching {
  std::optional<std::vector<Record>> records;  // absent instead of empty
  std::vector<Inventory> inventories;          // those collected, in their order
  std::string diagnostics;                     // what the checks write to standard error
  std::vector<std::string> log;                // the matcher's own lines to the system log
};

/// The record of a personality found under `type` and a controller that passed its check.
Record BuildMatchRecord(const Dictionary& personality, const Dictionary& hardware,
                        std::string_view type);

/// The reference implementation of the matcher, see testing/reference/checks.h. `configuration` is
/// as it was loaded, absent when it was not. Of `boardRevision` only the low 8 bits count.
Matching MatchPersonalities(const std::optional<PropertyValue>& configuration,
                            std::uint32_t boardRevision, const Controllers& controllers,
                            bool bypassVersionCheck);

}  // namespace fernwick::testing::reference
