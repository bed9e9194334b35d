#include "personality/matcher.h"

#include <utility>

#include "personality/checked_values.h"
#include "personality/configuration.h"
#include "personality/legacy_thunderbolt_check.h"
#include "personality/legacy_usbc_check.h"
#include "personality/personality.h"
#include "personality/thunderbolt_check.h"
#include "personality/usbc_check.h"
#include "platform/platform_log.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick {
namespace {

// One key of the configuration, while its personalities are matched. Its recording is null where
// nobody wants to know.
class KeyMatcher {
 public:
  KeyMatcher(std::string_view type, const HardwareInventory& controllers, KeyDecisions* recording,
             std::vector<MatchRecord>& matches)
      : type_(type), controllers_(controllers), recording_(recording), matches_(matches) {
    if (recording_ == nullptr || !controllers_) return;
    for (const auto& controller : *controllers_) recording_->controllers.push_back({controller});
  }

  // Gives each controller the first personality of the array that passes `check`.
  template <typename Check>
  void MatchFirstOfEach(const PropertyValue& personalities, Check check) {
    const auto candidates = PersonalitiesOf(type_, personalities);
    if (!candidates || !controllers_) return;
    for (std::size_t i = 0; i < controllers_->size(); ++i) {
      const auto passes = CheckOf(i, check);
      auto candidate = candidates->begin();
      while (candidate != candidates->end() && !Matches(*candidate++, i, passes)) continue;
      for (; candidate != candidates->end(); ++candidate) Record(i, {PairOutcome::NotReached});
    }
  }

  // The one type whose value is a single personality, which may apply to several ports.
  template <typename Check>
  void MatchSingle(const PropertyValue& value, Check check) {
    if (!PersonalitiesOf(type_, value) || !controllers_) return;
    for (std::size_t i = 0; i < controllers_->size(); ++i) Matches(value, i, CheckOf(i, check));
  }

 private:
  // The check of one controller, whose values are looked up once for all personalities.
  template <typename Check>
  auto CheckOf(std::size_t index, Check check) const {
    return [=, controller = CheckedValues((*controllers_)[index])](const CheckedValues& personality,
                                                                   RequirementRecorder* recorder) {
      return check(personality, controller, recorder);
    };
  }

  template <typename Check>
  bool Matches(const PropertyValue& candidate, std::size_t index, const Check& passes) {
    const auto* personality = candidate.AsDictionary();
    if (personality == nullptr) {
      Record(index, {PairOutcome::NotAPersonality});
      return false;
    }
    RequirementRecorder why;
    if (!passes(CheckedValues(*personality, memo_), recording_ == nullptr ? nullptr : &why)) {
      Record(index, {PairOutcome::Rejected, why.Failures()});
      return false;
    }
    Record(index, {PairOutcome::Matched});
    matches_.push_back(BuildMatchRecord(*personality, (*controllers_)[index], type_));
    return true;
  }

  void Record(std::size_t index, PairDecision decision) {
    if (recording_ != nullptr) recording_->controllers[index].pairs.push_back(std::move(decision));
  }

  std::string_view type_;
  const HardwareInventory& controllers_;
  KeyDecisions* recording_;
  std::vector<MatchRecord>& matches_;
  CheckedKeyMemo memo_;  // of the personalities' keys
};

// The three checks of ports by one form: personality, port record, recorder.
auto WithBoardRevision(bool (*check)(const CheckedValues&, const CheckedValues&, unsigned,
                                     RequirementRecorder*),
                       std::uint32_t boardRevision) {
  return [=](const CheckedValues& personality, const CheckedValues& port,
             RequirementRecorder* recorder) {
    return check(personality, port, boardRevision, recorder);
  };
}

InventoryRecorder* InventoryOf(KeyDecisions* recording) {
  return recording == nullptr ? nullptr : &recording->inventory;
}

void MatchThunderboltControllers(Registry& registry, const PropertyValue& value,
                                 KeyDecisions* recording, std::vector<MatchRecord>& matches) {
  const auto check = [](const CheckedValues& personality, const CheckedValues& controller,
                        RequirementRecorder* recorder) {
    return CheckLegacyThunderboltRequirements(personality, controller, 0, recorder);
  };
  const auto controllers = CollectThunderboltControllers(registry, InventoryOf(recording));
  KeyMatcher(PersonalityType::LegacyThunderbolt, controllers, recording, matches)
      .MatchFirstOfEach(value, check);
}

void MatchPortControllers(Registry& registry, std::string_view key, const PropertyValue& value,
                          std::uint32_t boardRevision, KeyDecisions* recording,
                          std::vector<MatchRecord>& matches) {
  // Taken for every key, also for one that names no type, and shared between none.
  const auto ports = CollectPortControllers(registry, InventoryOf(recording));
  KeyMatcher matcher(key, ports, recording, matches);
  if (key == PersonalityType::Thunderbolt) {
    matcher.MatchFirstOfEach(value, WithBoardRevision(CheckThunderboltRequirements, boardRevision));
  } else if (key == PersonalityType::LegacyUsbc) {
    matcher.MatchSingle(value, CheckLegacyUsbcRequirements);
  } else if (key == PersonalityType::Usbc) {
    matcher.MatchFirstOfEach(value, WithBoardRevision(CheckUsbcRequirements, boardRevision));
  }
}

// A place for the decisions under the key; null where nobody wants to know.
KeyDecisions* StartRecording(MatchRecorder* recorder, std::string_view key) {
  return recorder == nullptr ? nullptr
                             : &recorder->keys.emplace_back(KeyDecisions{std::string(key)});
}

}  // namespace

std::optional<std::vector<MatchRecord>> MatchPersonalities(
    Registry& registry, const std::optional<std::string>& boardIdString,
    std::uint32_t boardRevision, const std::optional<std::string>& personalitiesDirectory,
    MatchRecorder* recorder) {
  const auto configuration = LoadPersonalityConfiguration(boardIdString, personalitiesDirectory);
  if (recorder != nullptr) recorder->configuration = configuration;
  const auto* personalities = configuration ? configuration->AsDictionary() : nullptr;
  if (personalities == nullptr) {
    PlatformLog("Unexpected format for config plist file.  Aborting");
    return std::nullopt;
  }
  std::vector<MatchRecord> matches;
  for (const auto& [key, value] : personalities->Entries()) {
    auto* recording = StartRecording(recorder, key.View());
    if (key.View() == PersonalityType::LegacyThunderbolt) {
      MatchThunderboltControllers(registry, value, recording, matches);
    } else {
      MatchPortControllers(registry, key.View(), value, boardRevision & 0xFF, recording, matches);
    }
  }
  if (matches.empty()) return std::nullopt;
  return matches;
}

}  // namespace fernwick
