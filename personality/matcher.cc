#include "personality/matcher.h"

#include <utility>

#include "personality/configuration.h"
#include "personality/legacy_thunderbolt_check.h"
#include "personality/legacy_usbc_check.h"
#include "personality/thunderbolt_check.h"
#include "personality/usbc_check.h"
#include "platform/platform_log.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick {
namespace {

using Matches = std::vector<MatchRecord>;

// Gives each controller the first personality of the array that passes `check`.
template <typename Check>
void MatchFirstOfEach(const PropertyValue& personalities, const HardwareInventory& controllers,
                      std::string_view type, Check check, Matches& matches) {
  const auto* candidates = personalities.AsArray();
  if (candidates == nullptr || !controllers) return;
  for (const auto& controller : *controllers) {
    for (const auto& candidate : *candidates) {
      const auto* personality = candidate.AsDictionary();
      if (personality == nullptr || !check(*personality, controller)) continue;
      matches.push_back(BuildMatchRecord(*personality, controller, type));
      break;
    }
  }
}

// The one type whose value is a single personality, which may apply to several ports.
void MatchSingle(const PropertyValue& value, const HardwareInventory& ports, Matches& matches) {
  const auto* personality = value.AsDictionary();
  if (personality == nullptr || !ports) return;
  for (const auto& port : *ports) {
    if (!CheckLegacyUsbcRequirements(*personality, port)) continue;
    matches.push_back(BuildMatchRecord(*personality, port, PersonalityType::LegacyUsbc));
  }
}

void MatchThunderboltControllers(Registry& registry, const PropertyValue& value, Matches& matches) {
  const auto check = [](const Personality& personality, const HardwareRecord& controller) {
    return CheckLegacyThunderboltRequirements(personality, controller, 0);
  };
  MatchFirstOfEach(value, CollectThunderboltControllers(registry),
                   PersonalityType::LegacyThunderbolt, check, matches);
}

void MatchPortControllers(Registry& registry, std::string_view key, const PropertyValue& value,
                          std::uint32_t boardRevision, Matches& matches) {
  // Taken for every key, also for one that names no type, and shared between none.
  const auto ports = CollectPortControllers(registry);
  const auto withBoardRevision = [&](auto check) {
    return [=](const Personality& personality, const HardwareRecord& port) {
      return check(personality, port, boardRevision);
    };
  };
  if (key == PersonalityType::Thunderbolt) {
    MatchFirstOfEach(value, ports, key, withBoardRevision(CheckThunderboltRequirements), matches);
  } else if (key == PersonalityType::LegacyUsbc) {
    MatchSingle(value, ports, matches);
  } else if (key == PersonalityType::Usbc) {
    MatchFirstOfEach(value, ports, key, withBoardRevision(CheckUsbcRequirements), matches);
  }
}

}  // namespace

std::optional<std::vector<MatchRecord>> MatchPersonalities(
    Registry& registry, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory) {
  const auto configuration = LoadPersonalityConfiguration(boardIdString, personalitiesDirectory);
  const auto* personalities = configuration ? configuration->AsDictionary() : nullptr;
  if (personalities == nullptr) {
    PlatformLog("Unexpected format for config plist file.  Aborting");
    return std::nullopt;
  }
  Matches matches;
  for (const auto& [key, value] : personalities->Entries()) {
    if (key.View() == PersonalityType::LegacyThunderbolt) {
      MatchThunderboltControllers(registry, value, matches);
    } else {
      MatchPortControllers(registry, key.View(), value, boardRevision & 0xFF, matches);
    }
  }
  if (matches.empty()) return std::nullopt;
  return matches;
}

}  // namespace fernwick
