#include "fuzz/matching_properties.h"

#include <algorithm>
#include <vector>

#include "fuzz/require.h"
#include "fuzz/same_value.h"
#include "personality/matcher.h"
#include "registry/board_identity.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/reference/matcher.h"

namespace fernwick::fuzz {
namespace {

namespace reference = testing::reference;

bool IsThunderbolt(const DictionaryEntry& entry) {
  return entry.key == PersonalityType::LegacyThunderbolt;
}

// Those that the configuration asks for, and no others: those could be a fault.
reference::Controllers ControllersFor(Registry& registry, Dictionary configuration) {
  reference::Controllers controllers;
  const auto entries = configuration.Entries();
  if (std::ranges::any_of(entries, IsThunderbolt)) {
    controllers.thunderbolt = CollectThunderboltControllers(registry)->records;
  }
  if (!std::ranges::all_of(entries, IsThunderbolt)) {
    controllers.ports = CollectPortControllers(registry)->records;
  }
  return controllers;
}

bool Same(const std::vector<Record>& a, const std::vector<Record>& b) {
  return std::ranges::equal(a, b, [](const Record& x, const Record& y) {
    return SameValue(Dictionary(x), Dictionary(y));
  });
}

}  // namespace

void CheckMatching(const Recording& recording, const std::string& personalitiesDirectory,
                   Dictionary configuration) {
  RecordedRegistry registry(recording);
  const auto identity = ReadBoardIdentity(registry);
  const auto controllers = ControllersFor(registry, configuration);
  for (const bool isBypassed : {true, false}) {
    StringConsole console;
    const auto matching =
        MatchPersonalities({registry, console, isBypassed}, identity.boardIdString,
                           identity.boardRevision, personalitiesDirectory);
    Require(bool(matching), "what is no fault in a run is none in the matcher");
    const auto expected = reference::MatchPersonalities(
        PropertyValue(configuration), identity.boardRevision, controllers, isBypassed);
    Require(expected.records.has_value() == !matching->matches.empty(),
            "the matcher finds a match when the plain one does");
    Require(!expected.records || Same(matching->matches, *expected.records),
            "the matcher returns the records of the plain one");
    Require(console.Error() == expected.diagnostics, "and writes the same diagnostics");
  }
}

}  // namespace fernwick::fuzz
