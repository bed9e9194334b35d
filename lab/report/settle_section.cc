#include "lab/report/settle_section.h"

#include <array>

#include "lab/report/bars.h"
#include "lab/report/markup.h"
#include "lab/support/words.h"
#include "lab/survey/short_text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

struct OutcomeStyle {
  std::size_t tone;
  const char* meaning;
  const char* list;  // the ID
};

// In the order of the outcomes.
constexpr std::array<OutcomeStyle, SettleOutcomeCount> Styles = {{
    {0, "nothing more is planned", "settled-after"},
    {2, "nothing more is planned, but the payload has newer versions for its controllers", "stuck"},
    {8, "a plan is printed again and again", "never-settles"},
    {7, "not settled within the bounds of the simulation", "undecided"},
    {4, "there is no configuration for the board, or a match names no image", "no-plan"},
    {1, "a switch of the computer turns updates off, now or after an update", "bypassed-after"},
    {9, "the recording cannot be used", "class-refused"},
    {6, "the run of the tool ends abnormally, now or after an update", "abnormal-after"},
}};

std::string StuckReason(const StuckInRow& stuck) {
  auto text = DescribeOffer(stuck) + ", but ";
  for (std::size_t i = 0; i < stuck.requirements.size(); ++i) {
    text += (i == 0 ? "" : "; ") + stuck.requirements[i].key + " " + stuck.requirements[i].text;
  }
  return text;
}

std::string GroupsMarkup(const ComputerGroups& groups, const std::string& title,
                         const std::string& textColumn, const std::string& command) {
  if (groups.IsEmpty()) return "";
  return "<h3>" + title + "</h3>\n" + groups.Markup(title, textColumn, command);
}

}  // namespace

void SettleSection::Add(const SettleRow& row, const ComputerName& computer) {
  totals_.Add(row.outcome, row.runs);
  for (const auto& repetition : row.repetitions) {
    never_.Add(XmlText(ShortText(DescribeCause(repetition))), computer);
  }
  for (const auto& stuck : row.stuck) stuck_.Add(XmlText(ShortText(StuckReason(stuck))), computer);
  const auto runs = "after " + Counted(row.runs, "run", "runs");
  if (SettleTotals::IsSettled(row.outcome))
    settled_.Add(row.runs == 0 ? "at once" : runs, computer);
  if (row.outcome == SettleOutcome::Undecided) undecided_.Add(runs, computer);
  if (row.outcome == SettleOutcome::Bypassed) bypassed_.Add(runs, computer);
  if (row.outcome == SettleOutcome::AbnormalEnd) abnormal_.Add(runs, computer);
  if (row.outcome == SettleOutcome::NoPlan) {
    noPlan_.Add(XmlText(ShortText(row.reason)), computer);
  }
}

std::string SettleSection::Markup(const std::string& command) const {
  Bar bar;
  std::string rows;
  for (std::size_t i = 0; i < SettleOutcomeCount; ++i) {
    const auto outcome = static_cast<SettleOutcome>(i);
    const auto count = totals_.Count(outcome);
    const auto& [tone, meaning, list] = Styles[i];
    const std::string name(NameOf(outcome));
    bar.segments.push_back({name, count, Tone(tone)});
    if (count == 0) continue;
    rows += "<tr>" + HeadCell(SwatchMarkup(Tone(tone)) + " " + name) + TextCell(meaning) +
            NumberCell(NumberLink(list, count)) + "</tr>\n";
  }
  return BarsMarkup("settling", "Computers after all updates", {bar}) +
         StackMarkup(TableMarkup("settling-table", "Computers after all updates",
                                 {{"Result"}, {"Meaning"}, {"Computers", true}},
                                 "<tbody>\n" + rows + "</tbody>\n")) +
         GroupsMarkup(settled_, "Settled", "When", command) +
         GroupsMarkup(never_, "Never settle", "Why", command) +
         GroupsMarkup(stuck_, "Stuck below a newer version", "Why", command) +
         GroupsMarkup(undecided_, "Undecided", "When", command) +
         GroupsMarkup(noPlan_, "No plan", "Why", command) +
         GroupsMarkup(bypassed_, "Bypassed", "When", command) +
         GroupsMarkup(abnormal_, "Abnormal end", "When", command);
}

}  // namespace fernwick::lab
