#include "fuzz/matching_properties.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "fuzz/hold.h"
#include "fuzz/same_value.h"
#include "fuzz/standard_error.h"
#include "personality/bypass_flags.h"
#include "personality/matcher.h"
#include "registry/board_identity.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/reference/matcher.h"

namespace fernwick::fuzz {
namespace {

using Records = std::optional<std::vector<Dictionary>>;

bool IsThunderbolt(const DictionaryEntry& entry) {
  return entry.key.View() == PersonalityType::LegacyThunderbolt;
}

// Those that the configuration asks for, and no others: taking them could be a fault.
testing::reference::Controllers ControllersFor(Registry& registry,
                                               const Dictionary& configuration) {
  testing::reference::Controllers controllers;
  const auto entries = configuration.Entries();
  if (std::ranges::any_of(entries, IsThunderbolt)) {
    controllers.thunderbolt =
        CollectThunderboltControllers(registry).value_or(Records::value_type());
  }
  if (!std::ranges::all_of(entries, IsThunderbolt)) {
    controllers.ports = CollectPortControllers(registry).value_or(Records::value_type());
  }
  return controllers;
}

bool Same(const Records& a, const Records& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return SameValue(Array(a->begin(), a->end()), Array(b->begin(), b->end()));
}

}  // namespace

void HoldMatching(const Recording& recording, const std::string& personalitiesDirectory,
                  const Dictionary& configuration) {
  RecordedRegistry registry(recording);
  const auto boardIdString = ReadBoardIdString(registry);
  std::uint64_t boardId = 0;
  std::uint8_t boardRevision = 0;
  ReadBoardId(registry, boardId, boardRevision);
  const auto controllers = ControllersFor(registry, configuration);
  for (const bool isBypassed : {true, false}) {
    BypassVersionCheck = isBypassed;
    TakeStandardError();
    const auto records =
        MatchPersonalities(registry, boardIdString, boardRevision, personalitiesDirectory);
    const auto diagnostics = TakeStandardError();
    const auto expected = testing::reference::MatchPersonalities(
        PropertyValue(configuration), boardRevision, controllers, isBypassed);
    Hold(Same(records, expected.records), "the matcher gives the records of the plain one");
    Hold(diagnostics == expected.diagnostics, "and writes the same diagnostics");
  }
}

}  // namespace fernwick::fuzz
