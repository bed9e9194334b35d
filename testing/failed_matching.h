#pragma once

#include <utility>

#include "registry/hardware_record.h"
#include "testing/call_lists.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"

namespace fernwick::testing {

/// The calls and the inventory that `collect` makes over the computer when the class of services
/// cannot be matched: the status of the matching, and whether there is an iterator.
template <typename Collect>
std::pair<CallList, InventoryResult> AfterFailedMatching(const Computer& computer, Collect collect,
                                                         RegistryStatus status, bool withIterator) {
  LoggingRegistry registry(computer.Recorded());
  registry.FailMatching(status, withIterator);
  auto inventory = collect(registry);
  return {registry.Calls(), std::move(inventory)};
}

}  // namespace fernwick::testing
