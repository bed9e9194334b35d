#include "lab/report/coverage_section.h"

#include <utility>

#include "lab/report/bars.h"
#include "lab/report/markup.h"
#include "lab/support/words.h"
#include "lab/survey/short_text.h"
#include "lab/survey/xml_text.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t Bytes = 150'000;
constexpr std::size_t MaxBoards = 200;
constexpr std::size_t MaxPersonalities = 1000;

std::string OfText(std::size_t part, std::size_t whole) {
  return NumberText(part) + " of " + NumberText(whole);
}

// "2 of 4: Port Address 56, RID 1": the first ones, with their keys.
std::string ElementsMarkup(const TypeCoverage& coverage, const DictionaryEntry& type,
                           std::size_t index) {
  constexpr std::size_t MaxNamed = 5;
  const auto candidates = *PersonalitiesOf(type.key, type.value);
  auto element = coverage.firstElement[index];
  std::size_t all = 0;
  std::size_t unmatched = 0;
  std::string names;
  ForEachList(coverage.type, *candidates[index].AsDictionary(),
              [&](const Requirement& requirement, Array list) {
                for (const auto& value : list) {
                  ++all;
                  if (coverage.elements.matched[element++] > 0) continue;
                  if (++unmatched > MaxNamed) continue;
                  names += (names.empty() ? ": " : ", ") + std::string(requirement.key) + " " +
                           ShortText(InlineText(value));
                }
              });
  if (unmatched == 0) return "";
  return OfText(unmatched, all) + XmlText(names) + (unmatched > MaxNamed ? ", ..." : "");
}

Segment Part(const char* label, std::size_t count, std::size_t tone) {
  return {label, count, Tone(tone)};
}

}  // namespace

CoverageSection::CoverageSection(Console& console, std::string command)
    : CoverageFormat(console),
      command_(std::move(command)),
      budget_(Bytes),
      boardLimit_(MaxBoards),
      personalityLimit_(MaxPersonalities) {}

void CoverageSection::AddBoard(const CoveredBoard& board) {
  const auto counts = CountsOf(board.coverage);
  tested_ += counts.testedPersonalities;
  matched_ += counts.matchedPersonalities;
  const auto name = XmlText(ShortText(board.name));
  const auto id = "covered-" + std::to_string(boards_.Count() + 1);
  const auto problem = board.file == nullptr ? " (" + XmlText(ShortText(board.problem)) + ")" : "";
  const auto before = personalities_.Listed();
  if (board.file != nullptr) AddPersonalities(board);
  const bool isListed = personalities_.Listed() > before;
  const auto personalities = OfText(counts.matchedPersonalities, counts.personalities);
  const auto elements = OfText(counts.matchedElements, counts.elements);
  boards_.Add("<tr>" + HeadCell(name + problem) +
                  NumberCell(NumberLink("boards", board.coverage.runs)) +
                  NumberCell(isListed ? LinkTo(id, personalities) : personalities) +
                  NumberCell(isListed ? LinkTo(id, elements) : elements) +
                  NumberCell(PercentText(counts) + " %") + "</tr>\n",
              boardLimit_, budget_);
}

void CoverageSection::AddPersonalities(const CoveredBoard& board) {
  const KeyLocations locations(&board.file->Root());
  const auto entries = board.file->Value().AsDictionary()->Entries();
  auto id = " id=\"covered-" + std::to_string(boards_.Count() + 1) + "\"";
  for (std::size_t key = 0; key < entries.size(); ++key) {
    const auto& location = *locations.Find(entries[key].key);
    const auto& coverage = board.coverage.keys[key];
    const bool isSingle = coverage.type == Types::LegacyUsbc;
    for (std::size_t i = 0; i < coverage.tested.size(); ++i) {
      if (!coverage.isPersonality[i]) continue;
      const auto& value = *LocationOfCandidate(&location, coverage.type, i);
      const auto name = std::string(location.key) + (isSingle ? "" : " " + std::to_string(i + 1));
      personalities_.Add("<tr" + std::exchange(id, "") + ">" +
                             TextCell(XmlText(ShortText(board.name))) + HeadCell(XmlText(name)) +
                             LineCell(Describe(board.file->LocationOf(value.offset))) +
                             NumberCell(NumberText(coverage.tested[i])) +
                             NumberCell(NumberText(coverage.matched[i])) +
                             TextCell(XmlText(RejectionsText(RejectionsOf(coverage, i)))) +
                             TextCell(ElementsMarkup(coverage, entries[key], i)) + "</tr>\n",
                         personalityLimit_, budget_);
    }
  }
}

void CoverageSection::Finish(const CoverageTotals& totals) {
  totals_ = totals;
  const auto all = totals.counts.personalities;
  const auto boards = boards_.Count() - boards_.Listed();
  const auto personalities = personalities_.Count() - personalities_.Listed();
  markup_ =
      "<p>" + PercentText(totals.counts) +
      " % of the personalities and list elements of the payload matched a controller of these "
      "recordings; " +
      NumberLink("covered-boards", totals.boardsWithoutRun) + " of " + NumberText(totals.boards) +
      (totals.boards == 1 ? " board has" : " boards have") + " no recording.</p>\n" +
      BarsMarkup(
          "coverage-bar", "Personalities of the payload",
          {{"",
            {Part("matched", matched_, 0), Part("tested, never matched", tested_ - matched_, 2),
             Part("never tested", all - tested_, 8)}}}) +
      "<ul class=\"legend\"><li>" + SwatchMarkup(Tone(0)) + " " +
      NumberLink("personalities", matched_) + " matched</li><li>" + SwatchMarkup(Tone(2)) + " " +
      NumberLink("personalities", tested_ - matched_) + " tested, never matched</li><li>" +
      SwatchMarkup(Tone(8)) + " " + NumberLink("personalities", all - tested_) +
      " never tested</li></ul>\n" +
      WideMarkup("Coverage by board", TableMarkup("covered-boards", "Coverage by board",
                                                  {{"Board"},
                                                   {"Recordings", true},
                                                   {"Personalities", true},
                                                   {"List elements", true},
                                                   {"Share", true}},
                                                  "<tbody>\n" + boards_.Markup() + "</tbody>\n")) +
      OthersMarkup(boards, command_) +
      DetailsMarkup(NumberText(personalities_.Count()) + " personalities",
                    WideMarkup("Coverage by personality",
                               TableMarkup("personalities", "Coverage by personality",
                                           {{"Board"},
                                            {"Personality"},
                                            {"Line"},
                                            {"Tested", true},
                                            {"Matched", true},
                                            {"Rejected first by"},
                                            {"List elements that never matched"}},
                                           "<tbody>\n" + personalities_.Markup() + "</tbody>\n")) +
                        OthersMarkup(personalities, command_),
                    personalities_.Count() <= MaxOpenItems);
}

}  // namespace fernwick::lab
