#include "lab/report/class_section.h"

#include <array>
#include <vector>

#include "lab/report/bars.h"
#include "lab/report/computer_lists.h"
#include "lab/report/markup.h"

namespace fernwick::lab {
namespace {

// In the order of the classes.
constexpr std::array<const char*, ClassCount> Meanings = {
    "an update is planned for at least one controller",
    "the installed versions are not older than those of the payload",
    "a personality is for the controller, but not for its version or the board’s revision, or "
    "names no image",
    "no personality is for any of the controllers",
    "the computer has no controllers",
    "the payload has no directory for the board, or the computer no board identifier",
    "the board’s configuration is missing or malformed",
    "a switch of the computer turns updates off",
    "the run of the tool ends abnormally",
    "the recording cannot be read",
};

}  // namespace

std::string ClassSectionMarkup(const SurveyTotals& totals) {
  const auto computers = totals.Computers();
  Bar bar;
  std::string rows;
  for (std::size_t i = 0; i < ClassCount; ++i) {
    const auto each = static_cast<ComputerClass>(i);
    const auto count = totals.Count(each);
    const std::string name(NameOf(each));
    bar.segments.push_back({name, count, Tone(i)});
    if (count == 0) continue;
    rows += "<tr>" + HeadCell(SwatchMarkup(Tone(i)) + " " + name) + TextCell(Meanings[i]) +
            NumberCell(NumberLink(ComputerLists::ClassId(each), count)) +
            NumberCell(ShareText(count, computers)) + "</tr>\n";
  }
  return BarsMarkup("classes", "Computers by class", {bar}) +
         StackMarkup(TableMarkup("class-table", "Computers by class",
                                 {{"Class"}, {"Meaning"}, {"Computers", true}, {"Share", true}},
                                 "<tbody>\n" + rows + "</tbody>\n"));
}

}  // namespace fernwick::lab
