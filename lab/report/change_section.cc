#include "lab/report/change_section.h"

#include "lab/report/bars.h"
#include "lab/report/markup.h"
#include "lab/survey/short_text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

// A change and, line by line, its reasons.
std::string ChangeMarkup(const DiffRow& row, const DiffChange& change) {
  auto text = ShortText(DescribeChange(change, ""));
  if (text.ends_with('\n')) text.pop_back();
  auto markup = "<strong>" + XmlText(ShortText(row.board.value_or("-"))) + "</strong> ";
  for (std::string_view rest = text;;) {
    const auto end = rest.find('\n');
    markup += XmlText(rest.substr(0, end));
    if (end == std::string_view::npos) return markup;
    markup += "<br/>";
    rest.remove_prefix(end + 1);
  }
}

struct Kind {
  const char* label;
  std::size_t count;
  std::size_t tone;
  const char* list;
};

}  // namespace

void ChangeSection::Add(const DiffRow& row, const ComputerName& computer) {
  totals_.Add(row);
  for (const auto* list : {&row.notes, &row.changes}) {
    for (const auto& change : *list) changes_.Add(ChangeMarkup(row, change), computer);
  }
}

std::string ChangeSection::Markup(const std::string& command) const {
  const Kind kinds[] = {{"changed", totals_.changed, 0, "changes"},
                        {"unchanged", totals_.unchanged, 4, "computers"},
                        {"end abnormally with both", totals_.abnormal, 8, "class-fault"}};
  Bar bar;
  std::string legend;
  for (const auto& [label, count, tone, list] : kinds) {
    bar.segments.push_back({label, count, Tone(tone)});
    legend +=
        "<li>" + SwatchMarkup(Tone(tone)) + " " + NumberLink(list, count) + " " + label + "</li>";
  }
  auto markup = BarsMarkup("changes-bar", "Computers against the old payload", {bar}) +
                "<ul class=\"legend\">" + legend + "</ul>\n<p>" +
                NumberLink("changes", totals_.gained) + " gained a plan, " +
                NumberLink("changes", totals_.lost) + " lost it.</p>\n";
  if (changes_.IsEmpty()) return markup;
  return markup + changes_.Markup("Changes", "Board and change", command);
}

}  // namespace fernwick::lab
