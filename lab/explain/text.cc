#include <algorithm>
#include <sstream>
#include <utility>

#include "lab/explain/explained_keys.h"
#include "lab/explain/phrases.h"
#include "lab/explain/print.h"
#include "lab/support/messages.h"
#include "lab/support/words.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t LabelWidth = 16;
constexpr std::size_t PairWidth = 17;

// The keys that are not read are listed up to this number under each top-level key.
constexpr std::size_t MaxUnread = 100;

// O(n log n).
std::vector<const ExplainedPair*> InDisplayOrder(const std::vector<ExplainedPair>& pairs) {
  std::vector<const ExplainedPair*> order;
  for (const auto& pair : pairs) order.push_back(&pair);
  std::ranges::sort(order, [](auto* a, auto* b) { return IsShownBefore(*a, *b); });
  return order;
}

// The rejected pair that is nearest to a match, the first of equals.
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
        const bool isNearer = nearest.pair == nullptr || pair.distance < nearest.pair->distance;
        if (pair.outcome == PairOutcome::Rejected && isNearer) nearest = {&key, &controller, &pair};
      }
    }
  }
  return nearest;
}

// Writes lines, with what is emphasised in bold where the reader is a terminal.
class LineWriter {
 public:
  LineWriter(bool emphasise, const TextSink& sink) : emphasise_(emphasise), sink_(sink) {}

 protected:
  std::string Bold(const std::string& text) const {
    return emphasise_ ? "\x1B[1m" + text + "\x1B[0m" : text;
  }

  void Line(const std::string& text, std::size_t indentation = 0) {
    sink_(std::string(indentation, ' ').append(text).append("\n"));
  }

 private:
  bool emphasise_;
  const TextSink& sink_;
};

// What an explanation begins with: the computer, the configuration and how the run ends.
class HeadWriter : LineWriter {
 public:
  HeadWriter(const Explanation& explanation, const LineWriter& lines)
      : LineWriter(lines), explanation_(explanation) {}

  void WriteComputer() {
    Labelled("Computer", IdentityText(explanation_.identity));
    for (const auto& change : explanation_.changes) Labelled("Changed by", PrintableText(change));
  }

  void Write() {
    const auto& path = explanation_.configurationPath;
    if (path) Labelled("Configuration", PrintableText(*path));
    if (explanation_.run.result.bypassesVersionCheck) {
      Labelled("Version check", BypassText(explanation_));
    }
    Labelled("Outcome", OutcomeText());
    WriteLog();
    for (const auto& set : explanation_.switches) WriteSource(set.source);
    for (const auto& source : explanation_.faultSources) WriteSource(source);
    WriteNearBoards();
    if (explanation_.plan) WritePlan(*explanation_.plan);
    if (explanation_.end == RunEnd::NothingMatched) WriteNearestMiss();
  }

 private:
  void Labelled(std::string label, const std::string& text) {
    label.resize(LabelWidth, ' ');
    Line(label + text);
  }

  std::string OutcomeText() const {
    const auto& result = explanation_.run.result;
    const auto status = ", status " + std::to_string(result.status);
    const auto matches = Counted(result.matches.size(), "match", "matches");
    switch (explanation_.end) {
      case RunEnd::Planned: return Bold(matches) + ", a plan" + status;
      case RunEnd::NothingMatched: return Bold("nothing matches") + ", no plan" + status;
      case RunEnd::NoFirmware:
        return Bold(matches + ", but no plan") + status + ": " + NoFirmwareText(explanation_);
      case RunEnd::NoDictionary:
        return Bold("the top of the configuration is not a dictionary") + ", no plan" + status;
      case RunEnd::NoConfiguration:
        return Bold("no configuration for this board can be used") + ", no plan" + status;
      case RunEnd::Bypassed:
        return Bold("USB-C updates are bypassed") + " by " +
               SwitchText(explanation_.switches.front()) + ", no plan" + status;
      case RunEnd::Abnormal: break;
    }
    return Bold("the run ends abnormally") + ", without any output: " + Describe(*result.fault);
  }

  // What the tool itself prints in a run that ends before or during matching.
  void WriteLog() {
    if (explanation_.end == RunEnd::Planned || explanation_.end == RunEnd::NothingMatched) return;
    const auto& run = explanation_.run;
    std::istringstream lines(run.standardOutput + run.standardError);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("** ")) Line("| " + PrintableText(line), LabelWidth);
    }
  }

  void WriteSource(const ExplainedSource& source) {
    Line(SourceText(source) + " (" + PrintableText(source.path) + ")", LabelWidth);
  }

  void WriteNearBoards() {
    if (explanation_.nearBoards.empty()) return;
    std::string names;
    for (const auto& board : explanation_.nearBoards) {
      names += (names.empty() ? "" : ", ") + PrintableText(board);
    }
    Line("the payload has boards with similar names: " + names, LabelWidth);
  }

  void WritePlan(const ExplainedPlan& plan) {
    Labelled("Plan", "priority " + std::to_string(plan.summary.priority));
    for (const auto& image : plan.images) {
      const auto version = [](const std::optional<PropertyValue>& value) {
        return value ? InlineText(*value) : "unknown";
      };
      Line(PrintableText(image.path) + (image.isMissing ? " " + Bold("(missing)") : ""),
           LabelWidth);
      Line("by " + std::string(image.key) + ", " + image.personality + " for " +
               PrintableText(image.name) + ", version " + version(image.installed) + " to " +
               version(image.version),
           LabelWidth + 2);
    }
    for (const auto& line : SettingLines(plan.summary)) Line(line, LabelWidth);
  }

  void WriteNearestMiss() {
    const auto [key, controller, pair] = FindNearestMiss(explanation_);
    if (pair == nullptr) return;
    Labelled("Nearest miss",
             std::string(key->key) + ", " + LocatedPersonality(*key, pair->personality) + " on " +
                 PrintableText(controller->name) + ": " +
                 Counted(pair->distance.whole, "requirement fails", "requirements fail"));
  }

  const Explanation& explanation_;
};

// One top-level key: each controller with the result of every personality.
class KeyWriter : LineWriter {
 public:
  explicit KeyWriter(const LineWriter& lines) : LineWriter(lines) {}

  void Write(const ExplainedKey& key) {
    if (!key.isSelected) return;
    Line("");
    Line(Bold(PrintableText(key.key)) + AtLocation(key.location) + ": " + KeySummary(key));
    if (key.type == Types::None || !key.hasExpectedShape) return;
    for (const auto& skip : key.skipped) Line(SkipText(key, skip), 2);
    for (const auto& controller : key.controllers) WriteController(key, controller);
    WriteUnread(key);
  }

 private:
  void WriteController(const ExplainedKey& key, const ExplainedController& controller) {
    Line("");
    Line(std::string(ControllerKind(key, false)) + " " + std::to_string(controller.number) + ", " +
             ControllerName(controller) + ControllerTraits(controller.record),
         2);
    Line(PrintableText(controller.path), 4);
    for (const auto* pair : InDisplayOrder(controller.pairs)) WritePair(key, controller, *pair);
    if (controller.otherPairs > 0) Line(OtherPairsText(controller), 4);
  }

  void WritePair(const ExplainedKey& key, const ExplainedController& controller,
                 const ExplainedPair& pair) {
    const auto personality = LocatedPersonality(key, pair.personality);
    switch (pair.outcome) {
      case PairOutcome::Matched: return WriteMatch(personality, controller, pair);
      case PairOutcome::Rejected: return WriteRejection(personality, controller, pair);
      case PairOutcome::NotReached:
        return Line("not reached  " + personality + "; an earlier one matched, " +
                        NotReachedText(key, pair),
                    4);
      case PairOutcome::NotAPersonality:
        return Line("skipped      " + personality + "; it is not a dictionary", 4);
    }
  }

  // What the pair would have been: "and this one would, too", "this one would fail RID, Version".
  static std::string NotReachedText(const ExplainedKey& key, const ExplainedPair& pair) {
    if (!key.personalities[pair.personality].isDictionary) return "and it is not a dictionary";
    if (pair.failures.empty()) return "and this one would, too";
    std::string keys;
    for (const auto& [failed, location] : pair.failures) {
      const auto name = std::string(failed.requirement->key);
      const bool isNew = !keys.ends_with(name);  // "Version" may fail for two reasons
      if (isNew) keys += (keys.empty() ? "" : ", ") + name;
    }
    return "this one would fail " + keys;
  }

  void WriteMatch(const std::string& personality, const ExplainedController& controller,
                  const ExplainedPair& pair) {
    const bool isByBypass = !pair.failures.empty();
    Line(Bold("matched") + "      " + personality +
             (isByBypass ? "; would be rejected without the bypass of the version check:" : ""),
         4);
    WriteFailures(controller, pair);
  }

  void WriteRejection(const std::string& personality, const ExplainedController& controller,
                      const ExplainedPair& pair) {
    const auto count = pair.failures.size();
    Line(Bold("rejected") + "     " + personality + "; would match if " +
             (count == 1 ? "this were met:" : "these " + std::to_string(count) + " were met:"),
         4);
    WriteFailures(controller, pair);
  }

  void WriteFailures(const ExplainedController& controller, const ExplainedPair& pair) {
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
    std::size_t count = 0;
    for (std::size_t i = 0; i < key.personalities.size(); ++i) {
      for (const auto& unread : key.personalities[i].unread) {
        if (count == 0) Line("");
        if (++count > MaxUnread) continue;
        Line("not read: " + InlineText(unread.key) + AtLocation(unread.location) + " of " +
                 PersonalityName(key.type, i) + ReadersText(unread, key.key),
             2);
      }
    }
    if (count > MaxUnread) {
      Line("not read: " + Counted(count - MaxUnread, "more key", "more keys"), 2);
    }
  }
};

void PrintWithoutComputer(const Explanation& explanation, const LineWriter& lines) {
  HeadWriter(explanation, lines).Write();
  for (const auto& key : explanation.keys) KeyWriter(lines).Write(key);
}

}  // namespace

void PrintExplanationText(const Explanation& explanation, bool emphasise, const TextSink& sink) {
  const LineWriter lines(emphasise, sink);
  HeadWriter(explanation, lines).WriteComputer();
  PrintWithoutComputer(explanation, lines);
  if (!explanation.withoutSwitch) return;
  sink("\nWithout the switch that ends the run:\n\n");
  PrintWithoutComputer(*explanation.withoutSwitch, lines);
}

}  // namespace fernwick::lab
