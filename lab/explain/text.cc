#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <sstream>

#include "lab/explain/print.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "personality/personality.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t LabelWidth = 16;
constexpr std::size_t PairWidth = 17;

// Those that match first, then the rejected ones, near misses first; the rest in the file's order.
std::vector<const ExplainedPair*> InReadingOrder(const std::vector<ExplainedPair>& pairs) {
  std::vector<const ExplainedPair*> order;
  for (const auto& pair : pairs) order.push_back(&pair);
  std::ranges::stable_sort(order, {}, [](const ExplainedPair* pair) {
    return std::pair(pair->outcome, pair->failures.size());
  });
  return order;
}

std::string_view ControllerKind(const ExplainedKey& key, bool plural) {
  if (key.type == Types::LegacyThunderbolt) {
    return plural ? "Thunderbolt controllers" : "Thunderbolt controller";
  }
  return plural ? "port controllers" : "port controller";
}

std::string CountedControllers(const ExplainedKey& key) {
  return Counted(key.controllers.size(), ControllerKind(key, false), ControllerKind(key, true));
}

std::string PersonalityName(const ExplainedKey& key, std::size_t index) {
  if (key.type == Types::LegacyUsbc) return "the personality";
  return "personality " + std::to_string(index + 1);
}

// "personality 2 at 50:3, "image.bin"".
std::string PersonalityText(const ExplainedKey& key, std::size_t index) {
  const auto& personality = key.personalities[index];
  auto text = PersonalityName(key, index);
  text += AtLocation(personality.location);
  if (personality.firmware) text += ", " + InlineText(*personality.firmware);
  return text;
}

std::string Named(const ExplainedController& controller) {
  auto text = PrintableText(controller.name);
  if (!controller.thunderboltName.empty()) {
    text += " below " + PrintableText(controller.thunderboltName);
  }
  return text;
}

// What identifies the controller at first sight.
std::string Traits(Dictionary record) {
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

std::string PropertyText(const ExplainedSource& source) {
  return "\"" + std::string(source.property) + "\" of " + PrintableText(source.name);
}

// ""UID" of ridge1 is 17 (0x11): the low 4 bits"; ""Revision" of hpm0 is absent".
std::string SourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  text += " is " + InlineTextWithHex(*source.value);
  if (!source.conversion.empty()) text.append(": ").append(source.conversion);
  return text;
}

// Of a property without use: it is not there, or of a kind that is not read.
std::string UselessSourceText(const ExplainedSource& source) {
  auto text = PropertyText(source);
  if (!source.value) return text + " is absent";
  return text + " is " + std::string(KindOf(*source.value)) + ", " + InlineText(*source.value);
}

// Where the hardware's side comes from, or why it is missing, a line for each property.
std::vector<std::string> SourceLines(const FailedRequirement& failed,
                                     const ExplainedController& controller) {
  if (IsUuidUnread(failed, controller)) {
    return {"its \"UUID\" is not read, as an earlier port has none"};
  }
  const auto& sources = controller.sources.at(failed.requirement->hardwareKey);
  if (sources.empty()) return {"there is no Thunderbolt controller above it"};
  std::vector<std::string> lines;
  for (const auto& source : sources) {
    lines.push_back(failed.found ? SourceText(source) : UselessSourceText(source));
  }
  return lines;
}

std::string BypassText(bool byOption, bool bySwitch) {
  return std::string("bypassed by ") + (byOption ? "the option --bypassVersion" : "") +
         (byOption && bySwitch ? " and " : "") +
         (bySwitch ? "the switch fernwick_bypassversioncheck" : "");
}

// The match that names no image.
std::string CulpritText(const Explanation& explanation) {
  const auto culprit = MatchedPairs(explanation.run)[explanation.run.result.plannedMatches];
  const auto index = culprit.key - explanation.run.trace.keys.data();
  const auto& key = explanation.keys[static_cast<std::size_t>(index)];
  return std::string(key.key) + ", " + PersonalityText(key, culprit.personality) +
         " names no firmware image";
}

std::string KeySummary(const ExplainedKey& key) {
  if (key.type == Types::None) return "names no type; nothing reads it";
  if (!key.hasShape) {
    const bool isSingle = key.type == Types::LegacyUsbc;
    return "holds " + std::string(KindOf(key.value)) + " where the type needs " +
           (isSingle ? "one dictionary" : "an array of dictionaries") + "; nothing matches";
  }
  const auto personalities = Counted(key.personalities.size(), "personality", "personalities");
  if (!key.controllers.empty()) return CountedControllers(key) + ", " + personalities;
  return "no " + std::string(ControllerKind(key, false)) + " for its " + personalities;
}

std::string SkipText(const ExplainedKey& key, const ExplainedSkip& skip) {
  std::string text =
      "passed over: " + std::string(ControllerKind(key, false)) + " " + PrintableText(skip.name);
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
  if (unread.readBy == Types::None) return "; nothing reads such a key";
  std::string names;
  for (const auto name : NamesOf(unread.readBy)) {
    names += (names.empty() ? "" : ", ") + std::string(name);
  }
  return "; read under " + names + ", not under " + std::string(type);
}

// A rejected pair of all that fails the fewest requirements.
struct NearMiss {
  const ExplainedKey* key = nullptr;
  const ExplainedController* controller = nullptr;
  const ExplainedPair* pair = nullptr;  // null: there is none
};

NearMiss FindNearestMiss(const Explanation& explanation) {
  NearMiss nearest;
  for (const auto& key : explanation.keys) {
    for (const auto& controller : key.controllers) {
      for (const auto& pair : controller.pairs) {
        const bool isNearer =
            nearest.pair == nullptr || pair.failures.size() < nearest.pair->failures.size();
        if (pair.outcome == PairOutcome::Rejected && isNearer) nearest = {&key, &controller, &pair};
      }
    }
  }
  return nearest;
}

class TextWriter {
 public:
  TextWriter(const Explanation& explanation, bool emphasise, const TextSink& sink)
      : explanation_(explanation), emphasise_(emphasise), sink_(sink) {}

  void Write() {
    WriteHead();
    for (const auto& key : explanation_.keys) WriteKey(key);
  }

 private:
  std::string Bold(const std::string& text) const {
    return emphasise_ ? "\x1B[1m" + text + "\x1B[0m" : text;
  }

  void Line(const std::string& text, std::size_t indentation = 0) {
    sink_(std::string(indentation, ' ').append(text).append("\n"));
  }

  void Labelled(std::string label, const std::string& text) {
    label.resize(LabelWidth, ' ');
    Line(label + text);
  }

  void WriteHead() {
    const auto& result = explanation_.run.result;
    Labelled("Computer", IdentityText(explanation_.identity));
    const auto& path = explanation_.configurationPath;
    if (path) Labelled("Configuration", PrintableText(*path));
    if (result.bypassesVersionCheck) {
      Labelled("Version check",
               BypassText(explanation_.optionBypassesVersion, result.switchBypassesVersion));
    }
    Labelled("Outcome", OutcomeText());
    WriteLog();
    for (const auto& source : explanation_.faultSources) {
      Line(SourceText(source) + " (" + PrintableText(source.path) + ")", LabelWidth);
    }
    if (explanation_.end == RunEnd::NothingMatched) WriteNearestMiss();
  }

  std::string OutcomeText() const {
    const auto& result = explanation_.run.result;
    const auto status = ", status " + std::to_string(result.status);
    const auto matches = Counted(result.matches.size(), "match", "matches");
    switch (explanation_.end) {
      case RunEnd::Planned: return Bold(matches) + ", a plan" + status;
      case RunEnd::NothingMatched: return Bold("nothing matches") + ", no plan" + status;
      case RunEnd::NoFirmware:
        return Bold(matches + ", but no plan") + status + ": " + CulpritText(explanation_);
      case RunEnd::NoDictionary:
        return Bold("the top of the configuration is no dictionary") + ", no plan" + status;
      case RunEnd::NoConfiguration:
        return Bold("no configuration for this board can be used") + ", no plan" + status;
      case RunEnd::Bypassed:
        return Bold("USB-C updates are bypassed") +
               " by the switch fernwick_bypass_usbc_updates, no plan" + status;
      case RunEnd::Abnormal: break;
    }
    return Bold("the run ends abnormally") + ", without any output: " + Describe(*result.fault);
  }

  // What the tool itself prints where it does not come to matching, or not past it.
  void WriteLog() {
    if (explanation_.end == RunEnd::Planned || explanation_.end == RunEnd::NothingMatched) return;
    const auto& run = explanation_.run;
    std::istringstream lines(run.standardOutput + run.standardError);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("** ")) Line("| " + PrintableText(line), LabelWidth);
    }
  }

  void WriteNearestMiss() {
    const auto [key, controller, pair] = FindNearestMiss(explanation_);
    if (pair == nullptr) return;
    Labelled("Nearest miss",
             std::string(key->key) + ", " + PersonalityText(*key, pair->personality) + " on " +
                 PrintableText(controller->name) + ": " +
                 Counted(pair->failures.size(), "requirement fails", "requirements fail"));
  }

  void WriteKey(const ExplainedKey& key) {
    Line("");
    Line(Bold(PrintableText(key.key)) + AtLocation(key.location) + ": " + KeySummary(key));
    if (key.type == Types::None || !key.hasShape) return;
    for (const auto& skip : key.skipped) Line(SkipText(key, skip), 2);
    for (std::size_t i = 0; i < key.controllers.size(); ++i) WriteController(key, i);
    WriteUnread(key);
  }

  void WriteController(const ExplainedKey& key, std::size_t index) {
    const auto& controller = key.controllers[index];
    Line("");
    Line(std::string(ControllerKind(key, false)) + " " + std::to_string(index + 1) + ", " +
             Named(controller) + Traits(controller.record),
         2);
    Line(PrintableText(controller.path), 4);
    for (const auto* pair : InReadingOrder(controller.pairs)) WritePair(key, controller, *pair);
  }

  void WritePair(const ExplainedKey& key, const ExplainedController& controller,
                 const ExplainedPair& pair) {
    const auto personality = PersonalityText(key, pair.personality);
    switch (pair.outcome) {
      case PairOutcome::Matched: return Line(Bold("matched") + "      " + personality, 4);
      case PairOutcome::Rejected: return WriteRejection(personality, controller, pair);
      case PairOutcome::NotReached:
        return Line("not reached  " + personality + "; an earlier one took the controller", 4);
      case PairOutcome::NotAPersonality:
        return Line("skipped      " + personality + "; it is no dictionary", 4);
    }
  }

  void WriteRejection(const std::string& personality, const ExplainedController& controller,
                      const ExplainedPair& pair) {
    const auto count = pair.failures.size();
    Line(Bold("rejected") + "     " + personality + "; would match if " +
             (count == 1 ? "this were met:" : "these " + std::to_string(count) + " were met:"),
         4);
    std::size_t width = 0;
    for (const auto& [failed, location] : pair.failures) {
      width = std::max(width, failed.requirement->key.size());
    }
    for (const auto& [failed, location] : pair.failures) {
      auto key = std::string(failed.requirement->key);
      key.resize(width + 2, ' ');
      Line(key + FailureText(failed, location) + " [" + std::string(failed.requirement->type) +
               " check]",
           PairWidth);
      for (const auto& line : SourceLines(failed, controller)) Line(line, PairWidth + key.size());
    }
  }

  void WriteUnread(const ExplainedKey& key) {
    bool isFirst = true;
    for (std::size_t i = 0; i < key.personalities.size(); ++i) {
      for (const auto& unread : key.personalities[i].unread) {
        if (isFirst) Line("");
        isFirst = false;
        Line("not read: " + InlineText(unread.key) + AtLocation(unread.location) + " of " +
                 PersonalityName(key, i) + ReadersText(unread, key.key),
             2);
      }
    }
  }

  const Explanation& explanation_;
  bool emphasise_;
  const TextSink& sink_;
};

}  // namespace

void PrintExplanationText(const Explanation& explanation, bool emphasise, const TextSink& sink) {
  TextWriter(explanation, emphasise, sink).Write();
}

}  // namespace fernwick::lab
