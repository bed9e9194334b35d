#include "lab/explain/phrases.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "personality/personality.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

std::string CountedControllers(const ExplainedKey& key) {
  return Counted(key.controllerCount, ControllerKind(key, false), ControllerKind(key, true));
}

std::string PropertyText(const ExplainedSource& source) {
  return "\"" + std::string(source.property) + "\" of " + PrintableText(source.name);
}

// Why a property provides no value: it is absent, or of a kind that is not read.
std::string UnusableSourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  return text + " is " + std::string(KindOf(*source.value)) + ", " + InlineText(*source.value);
}

}  // namespace

std::string_view ControllerKind(const ExplainedKey& key, bool plural) {
  if (key.type == Types::LegacyThunderbolt) {
    return plural ? "Thunderbolt controllers" : "Thunderbolt controller";
  }
  return plural ? "port controllers" : "port controller";
}

std::string LocatedPersonality(const ExplainedKey& key, std::size_t index) {
  const auto& personality = key.personalities[index];
  auto text = PersonalityName(key.type, index);
  text += AtLocation(personality.location);
  if (personality.firmware) text += ", " + InlineText(*personality.firmware);
  return text;
}

std::string ControllerName(const ExplainedController& controller) {
  auto text = PrintableText(controller.name);
  if (!controller.thunderboltName.empty()) {
    text += " below " + PrintableText(controller.thunderboltName);
  }
  return text;
}

std::string ControllerTraits(Dictionary record) {
  std::string text;
  const std::pair<const char*, const char*> traits[] = {
      {"RID", "RID"}, {"Port Address", "address"}, {"Version", "version"}};
  for (const auto& [key, label] : traits) {
    const auto* value = record.Find(key);
    if (value == nullptr) continue;
    text += std::string(text.empty() ? ": " : ", ") + label + " " + InlineText(*value);
  }
  return text;
}

std::string IdentityText(const BoardIdentity& identity) {
  char numbers[64];
  std::snprintf(numbers, sizeof numbers, " (0x%" PRIX64 "), revision %u", identity.boardId,
                unsigned{identity.boardRevision});
  return (identity.boardIdString ? PrintableText(*identity.boardIdString) : AbsentText) + numbers;
}

std::string SourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  text += " is " + InlineTextWithHex(*source.value);
  if (!source.conversion.empty()) text.append(": ").append(source.conversion);
  return text;
}

std::vector<std::string> SourceLines(const FailedRequirement& failed,
                                     const ExplainedController& controller) {
  if (IsUuidUnread(failed, controller)) {
    return {"its \"UUID\" is not read, as an earlier port has none"};
  }
  const auto& sources = controller.sources.at(failed.requirement->hardwareKey);
  if (sources.empty()) return {"there is no Thunderbolt controller above it"};
  std::vector<std::string> lines;
  for (const auto& source : sources) {
    lines.push_back(failed.found ? SourceText(source) : UnusableSourceText(source));
  }
  return lines;
}

std::string SwitchText(const ActiveSwitch& set) {
  return std::string("the ") + (set.isBootArgument ? "boot argument " : "NVRAM variable ") +
         std::string(set.name);
}

std::string BypassText(const Explanation& explanation) {
  std::string text = "bypassed by ";
  if (explanation.optionBypassesVersion) text += "the option --bypassVersion";
  for (const auto& set : explanation.switches) {
    text += (explanation.optionBypassesVersion ? " and " : "") + SwitchText(set);
  }
  return text;
}

std::vector<std::string> SettingLines(const PlanSummary& plan) {
  std::vector<std::string> lines;
  std::string text;
  for (const auto& [name, value] : plan.setNvram.items()) {
    text += (text.empty() ? "" : ", ") + InlineText(name) + " to " + PrintableText(value.dump());
  }
  if (!text.empty()) lines.push_back("set NVRAM " + text);
  text.clear();
  for (const auto& name : plan.clearNvram) {
    text += (text.empty() ? "" : ", ") + PrintableText(name.dump());
  }
  if (!text.empty()) lines.push_back("clear NVRAM " + text);
  lines.push_back("options " + PrintableText(plan.options));
  return lines;
}

std::string OtherPairsText(const ExplainedController& controller) {
  return "and " + Counted(controller.otherPairs, "personality", "personalities") +
         " farther from a match; --nearest shows more";
}

std::string NoFirmwareText(const Explanation& explanation) {
  const auto match = MatchedPairs(explanation.run)[explanation.run.result.plannedMatches];
  const auto index = match.key - explanation.run.trace.keys.data();
  const auto& key = explanation.keys[static_cast<std::size_t>(index)];
  return std::string(key.key) + ", " + LocatedPersonality(key, match.personality) +
         " names no firmware image";
}

std::string KeySummary(const ExplainedKey& key) {
  if (key.type == Types::None) return "names no type and is not read";
  if (!key.hasExpectedShape) {
    const bool isSingle = key.type == Types::LegacyUsbc;
    return "is " + std::string(KindOf(key.value)) + " where the type needs " +
           (isSingle ? "one dictionary" : "an array of dictionaries") + "; nothing matches";
  }
  const auto personalities = Counted(key.personalities.size(), "personality", "personalities");
  if (key.controllerCount > 0) return CountedControllers(key) + ", " + personalities;
  return "no " + std::string(ControllerKind(key, false)) + " for its " + personalities;
}

std::string SkipText(const ExplainedKey& key, const ExplainedSkip& skip) {
  std::string text =
      "skipped: " + std::string(ControllerKind(key, false)) + " " + PrintableText(skip.path);
  const bool isAddressed = skip.reason == SkipReason::AddressBelowThunderbolt;
  text +=
      isAddressed ? ", below Thunderbolt and not at address 0: " : ", not of the computer itself: ";
  for (std::size_t i = 0; i < skip.sources.size(); ++i) {
    text += (i == 0 ? "" : ", ") + SourceText(skip.sources[i]);
  }
  return text;
}

std::string ReadersText(const UnreadKey& unread, std::string_view type) {
  if (unread.key == "Personality Type") return "; the matcher replaces it";
  if (unread.readBy == Types::None) return "; no type reads such a key";
  std::string names;
  for (const auto name : NamesOf(unread.readBy)) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return "; read under " + names + ", not under " + std::string(type);
}

}  // namespace fernwick::lab
