#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/messages.h"
#include "lab/support/words.h"
#include "lab/survey/coverage/coverage_format.h"
#include "lab/survey/short_text.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

// As many elements as a line shows.
constexpr std::size_t MaxElements = 8;

std::string_view NameOf(const Requirement& requirement) {
  const bool isOfFirmware = requirement.test == RequirementTest::ReleasedFirmware;
  return isOfFirmware ? "engineering firmware" : requirement.key;
}

// "matched 2 of 6, rejected first by Version 4"
std::string ResultText(std::size_t tested, std::size_t matched,
                       const std::vector<Rejection>& rejections) {
  if (tested == 0) return "never tested";
  return (matched == 0 ? "never matched, tested " + std::to_string(tested)
                       : "matched " + std::to_string(matched) + " of " + std::to_string(tested)) +
         (rejections.empty() ? "" : ", rejected first by " + RejectionsText(rejections));
}

std::string ElementResultText(const TypeCoverage& coverage, std::size_t element) {
  return ResultText(coverage.elements.tested[element], coverage.elements.matched[element],
                    RejectionsOfElement(coverage, element));
}

std::string CountsText(const CoverageCounts& counts) {
  return std::to_string(counts.matchedPersonalities) + " of " +
         Counted(counts.personalities, "personality", "personalities") + " and " +
         std::to_string(counts.matchedElements) + " of " +
         Counted(counts.elements, "list element", "list elements") + " matched";
}

// One top-level key with its personalities.
class KeyText {
 public:
  KeyText(const ConfigurationFile& file, const TypeCoverage& coverage, const KeyLocation& location,
          Console& console)
      : file_(file), coverage_(coverage), location_(location), console_(console) {}

  void Print(const PropertyValue& value) {
    const auto name = PrintableText(location_.key) + At(location_.offset);
    const auto candidates = PersonalitiesOf(location_.key, value);
    if (coverage_.type == Types::None) return Line(1, name + ": names no type and is not read");
    if (!candidates) {
      return Line(1, name + ": is " + std::string(KindOf(value)) + ", in which nothing matches");
    }
    for (std::size_t i = 0; i < candidates->size(); ++i) PrintCandidate((*candidates)[i], i);
  }

 private:
  std::string At(std::size_t offset) const { return " at " + Describe(file_.LocationOf(offset)); }

  void Line(std::size_t level, const std::string& text) {
    console_.Write(std::string(2 * level, ' ') + text + "\n");
  }

  void PrintCandidate(const PropertyValue& candidate, std::size_t index) {
    const bool isSingle = coverage_.type == Types::LegacyUsbc;
    const auto& location = *LocationOfCandidate(&location_, coverage_.type, index);
    auto text = std::string(location_.key) + (isSingle ? "" : " " + std::to_string(index + 1)) +
                At(location.offset);
    const auto personality = candidate.AsDictionary();
    if (!personality) return Line(1, text + ": is " + std::string(KindOf(candidate)));
    const auto* firmware = personality->Find("Firmware");
    if (firmware != nullptr) text += ", " + ShortText(InlineText(*firmware));
    Line(1, text + ": " +
                ResultText(coverage_.tested[index], coverage_.matched[index],
                           RejectionsOf(coverage_, index)));
    PrintLists(*personality, location, index);
  }

  void PrintLists(Dictionary personality, const ValueLocation& location, std::size_t index) {
    const KeyLocations keys(&location);
    auto element = coverage_.firstElement[index];
    ForEachList(coverage_.type, personality, [&](const Requirement& requirement, Array list) {
      PrintList(*keys.Find(requirement.key), list, element);
      element += list.size();
    });
  }

  // Nothing where no element was tested: then not even the first one was.
  void PrintList(const KeyLocation& key, Array list, std::size_t first) {
    if (list.empty() || coverage_.elements.tested[first] == 0) return;
    for (std::size_t i = 0; i < list.size();) {
      const auto result = ElementResultText(coverage_, first + i);
      std::string text;
      std::size_t count = 0;
      for (; i < list.size() && ElementResultText(coverage_, first + i) == result; ++i) {
        if (++count > MaxElements) continue;
        text += (count == 1 ? "" : ", ") + ShortText(InlineText(list[i])) +
                At(key.value.Elements()[i].offset);
      }
      if (count > MaxElements) text += " and " + std::to_string(count - MaxElements) + " more";
      Line(2, std::string(key.key) + " " + text + ": " + result);
    }
  }

  const ConfigurationFile& file_;
  const TypeCoverage& coverage_;
  const KeyLocation& location_;
  Console& console_;
};

class CoverageText : public CoverageFormat {
 public:
  using CoverageFormat::CoverageFormat;

  void AddBoard(const CoveredBoard& board) override {
    const auto& [name, file, problem, coverage] = board;
    Out().Write(
        PrintableText(name) + ": " +
        (coverage.runs == 0 ? "no recording" : Counted(coverage.runs, "recording", "recordings")) +
        ", " + (file == nullptr ? PrintableText(problem) : CountsText(CountsOf(coverage))) + "\n");
    if (coverage.runs == 0) return;
    const KeyLocations locations(&file->Root());
    const auto entries = file->Value().AsDictionary()->Entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      KeyText(*file, coverage.keys[i], *locations.Find(entries[i].key), Out())
          .Print(entries[i].value);
    }
  }

  void Finish(const CoverageTotals& totals) override {
    static constexpr std::array<const char*, 6> Uses = {
        "counted",  "without a configuration", "of boards that the payload lacks",
        "bypassed", "ended abnormally",        "refused"};
    std::size_t all = 0;
    std::string uses;
    for (std::size_t i = 0; i < Uses.size(); ++i) {
      const auto count = totals.recordings[i];
      all += count;
      if (i > 0 && count == 0) continue;
      uses += (uses.empty() ? "" : ", ") + std::to_string(count) + " " + Uses[i];
    }
    Out().Write(Counted(all, "recording", "recordings") + ": " + uses + "\n" +
                Counted(totals.boards, "board", "boards") + ": " +
                std::to_string(totals.boardsWithoutRun) + " without a recording\n" +
                CountsText(totals.counts) + ": " + PercentText(totals.counts) + " %\n");
  }
};

std::vector<Rejection> RejectionsIn(const TestCounts& counts, TypeSet type, std::size_t item) {
  std::vector<Rejection> rejections;
  const auto requirements = RequirementsOf(type);
  for (std::size_t i = 0; i < requirements.size(); ++i) {
    const auto& rejected = counts.rejected[i];
    if (rejected.empty() || rejected[item] == 0) continue;
    rejections.push_back({&requirements[i], rejected[item]});
  }
  return rejections;
}

}  // namespace

std::vector<Rejection> RejectionsOf(const TypeCoverage& coverage, std::size_t personality) {
  return RejectionsIn(coverage, coverage.type, personality);
}

std::vector<Rejection> RejectionsOfElement(const TypeCoverage& coverage, std::size_t element) {
  return RejectionsIn(coverage.elements, coverage.type, element);
}

std::string RejectionsText(std::vector<Rejection> rejections) {
  std::ranges::stable_sort(rejections, std::greater(), &Rejection::count);
  std::string text;
  for (const auto& [requirement, count] : rejections) {
    text += (text.empty() ? "" : ", ") + std::string(NameOf(*requirement)) + " " +
            std::to_string(count);
  }
  return text;
}

std::string PercentText(const CoverageCounts& counts) {
  const auto perMille = counts.PerMille();
  return std::to_string(perMille / 10) + "." + std::to_string(perMille % 10);
}

std::unique_ptr<CoverageFormat> MakeCoverageText(Console& console) {
  return std::make_unique<CoverageText>(console);
}

}  // namespace fernwick::lab
