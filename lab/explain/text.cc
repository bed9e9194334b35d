#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <sstream>

#include "lab/explain/failure_text.h"
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

// "personality 2 at 50:3, "image.bin"".
std::string PersonalityText(const ExplainedKey& key, std::size_t index) {
  const auto& personality = key.personalities[index];
  std::string text = key.type == Types::LegacyUsbc ? "the personality"
                                                   : "personality " + std::to_string(index + 1);
  text += AtPlace(personality.place);
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

// What the record tells of the controller at first sight.
std::string Traits(const HardwareRecord& record) {
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
    Labelled("Computer", IdentityText(explanation_.identity));
    const auto& path = explanation_.configurationPath;
    if (path) Labelled("Configuration", PrintableText(*path));
    if (explanation_.bypassesVersionCheck) Labelled("Version check", BypassText());
    Labelled("Outcome", OutcomeText());
    WriteLog();
    for (const auto& source : explanation_.faultSources) {
      Line(SourceText(source) + " (" + PrintableText(source.path) + ")", LabelWidth);
    }
    WriteNearest();
  }

  std::string BypassText() const {
    const char* option = explanation_.optionBypassesVersion ? "the option --bypassVersion" : "";
    const char* both =
        explanation_.optionBypassesVersion && explanation_.switchBypassesVersion ? " and " : "";
    const char* bypass =
        explanation_.switchBypassesVersion ? "the switch fernwick_bypassversioncheck" : "";
    return std::string("bypassed by ") + option + both + bypass;
  }

  std::string OutcomeText() const {
    const auto status = ", status " + std::to_string(explanation_.run.status);
    const auto matches = Counted(explanation_.matchCount, "match", "matches");
    switch (explanation_.end) {
      case RunEnd::Planned: return Bold(matches) + ", a plan" + status;
      case RunEnd::NothingMatched: return Bold("nothing matches") + ", no plan" + status;
      case RunEnd::NoFirmware:
        return Bold(matches + ", but no plan") + status + ": " + CulpritText();
      case RunEnd::NoDictionary:
        return Bold("the top of the configuration is no dictionary") + ", no plan" + status;
      case RunEnd::NoConfiguration:
        return Bold("no configuration for this board can be used") + ", no plan" + status;
      case RunEnd::Bypassed:
        return Bold("USB-C updates are bypassed") +
               " by the switch fernwick_bypass_usbc_updates, no plan" + status;
      case RunEnd::Abnormal: break;
    }
    return Bold("the run ends abnormally") + ", without any output: " + explanation_.fault;
  }

  // The match that names no image.
  std::string CulpritText() const {
    const auto place = MatchedPairs(explanation_)[explanation_.plannedMatchCount];
    return std::string(place.key->key) + ", " +
           PersonalityText(*place.key, place.pair->personality) + " names no firmware image";
  }

  // What the tool itself has to say where it does not come to matching, or not past it.
  void WriteLog() {
    if (explanation_.end == RunEnd::Planned || explanation_.end == RunEnd::NothingMatched) return;
    const auto& run = explanation_.run;
    std::istringstream lines(run.standardOutput + run.standardError);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("** ")) Line("| " + PrintableText(line), LabelWidth);
    }
  }

  // Which pairs of all came nearest, where nothing matches.
  void WriteNearest() {
    if (explanation_.end != RunEnd::NothingMatched) return;
    PairPlace nearest{};
    for (const auto& key : explanation_.keys) {
      for (const auto& controller : key.controllers) {
        for (const auto& pair : controller.pairs) {
          if (pair.outcome != PairOutcome::Rejected) continue;
          if (nearest.pair != nullptr && nearest.pair->failures.size() <= pair.failures.size()) {
            continue;
          }
          nearest = {&key, &controller, &pair};
        }
      }
    }
    if (nearest.pair == nullptr) return;
    Labelled("Nearest miss",
             nearest.key->key + ", " + PersonalityText(*nearest.key, nearest.pair->personality) +
                 " on " + PrintableText(nearest.controller->name) + ": " +
                 Counted(nearest.pair->failures.size(), "requirement fails", "requirements fail"));
  }

  void WriteKey(const ExplainedKey& key) {
    Line("");
    Line(Bold(PrintableText(key.key)) + AtPlace(key.place) + ": " + KeySummary(key));
    if (key.type == Types::None || !key.hasShape) return;
    for (const auto& omission : key.omitted) Line(OmissionText(key, omission), 2);
    for (std::size_t i = 0; i < key.controllers.size(); ++i) WriteController(key, i);
    WriteUnread(key);
  }

  static std::string KeySummary(const ExplainedKey& key) {
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

  static std::string OmissionText(const ExplainedKey& key, const ExplainedOmission& omission) {
    std::string text = "passed over: " + std::string(ControllerKind(key, false)) + " " +
                       PrintableText(omission.name);
    const bool isAddressed = omission.why == Omission::AddressBelowThunderbolt;
    text += isAddressed ? ", below Thunderbolt and not at address 0: "
                        : ", not of the computer itself: ";
    for (std::size_t i = 0; i < omission.sources.size(); ++i) {
      text += (i == 0 ? "" : ", ") + SourceText(omission.sources[i]);
    }
    return text;
  }

  void WriteController(const ExplainedKey& key, std::size_t index) {
    const auto& controller = key.controllers[index];
    Line("");
    Line(std::string(ControllerKind(key, false)) + " " + std::to_string(index + 1) + ", " +
             Named(controller) + Traits(controller.record),
         2);
    Line(PrintableText(controller.path), 4);
    for (const auto* pair : InReadingOrder(controller.pairs)) WritePair(key, *pair);
  }

  void WritePair(const ExplainedKey& key, const ExplainedPair& pair) {
    const auto personality = PersonalityText(key, pair.personality);
    switch (pair.outcome) {
      case PairOutcome::Matched: return Line(Bold("matched") + "      " + personality, 4);
      case PairOutcome::Rejected: return WriteRejection(personality, pair);
      case PairOutcome::NotReached:
        return Line("not reached  " + personality + "; an earlier one took the controller", 4);
      case PairOutcome::NotAPersonality:
        return Line("skipped      " + personality + "; it is no dictionary", 4);
    }
  }

  void WriteRejection(const std::string& personality, const ExplainedPair& pair) {
    const auto count = pair.failures.size();
    Line(Bold("rejected") + "     " + personality + "; would match if " +
             (count == 1 ? "this were met:" : "these " + std::to_string(count) + " were met:"),
         4);
    std::size_t width = 0;
    for (const auto& failure : pair.failures) {
      width = std::max(width, failure.requirement.key.size());
    }
    for (const auto& failure : pair.failures) {
      auto key = std::string(failure.requirement.key);
      key.resize(width + 2, ' ');
      Line(key + FailureText(failure) + " [" + std::string(failure.requirement.check) + " check]",
           PairWidth);
      for (const auto& line : SourceLines(failure)) Line(line, PairWidth + key.size());
    }
  }

  void WriteUnread(const ExplainedKey& key) {
    bool isFirst = true;
    for (std::size_t i = 0; i < key.personalities.size(); ++i) {
      for (const auto& unread : key.personalities[i].unread) {
        if (isFirst) Line("");
        isFirst = false;
        Line("not read: " + InlineText(unread.key) + AtPlace(unread.place) + " of " +
                 PersonalityName(key, i) + ReadersText(unread, key.key),
             2);
      }
    }
  }

  static std::string PersonalityName(const ExplainedKey& key, std::size_t index) {
    if (key.type == Types::LegacyUsbc) return "the personality";
    return "personality " + std::to_string(index + 1);
  }

  static std::string ReadersText(const UnreadKey& unread, const std::string& type) {
    if (unread.key == "Personality Type") return "; the matcher replaces it";
    if (unread.readBy == Types::None) return "; nothing reads such a key";
    std::string names;
    for (const auto name : NamesOf(unread.readBy)) {
      names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return "; read under " + names + ", not under " + type;
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
