#include "lab/report/lint_section.h"

#include "lab/report/markup.h"
#include "lab/survey/short_text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

constexpr std::array<const char*, 3> Titles = {"Notes", "Warnings", "Errors"};
constexpr std::array<const char*, 3> Ids = {"lint-notes", "lint-warnings", "lint-errors"};

std::string FindingMarkup(const Finding& finding) {
  return "<tr>" + HeadCell("<code>" + XmlText(finding.path) + "</code>") +
         LineCell(finding.location ? Describe(*finding.location) : "") +
         TextCell(XmlText(ShortText(finding.message))) +
         TextCell("<code>" + std::string(finding.rule->id) + "</code>") + "</tr>\n";
}

}  // namespace

void LintSection::Add(const Finding& finding) {
  Count(finding, totals_);
  auto& findings = bySeverity_[static_cast<std::size_t>(finding.severity)];
  ByteBudget none(0);
  findings.violations += finding.count;
  if (findings.list.Add(FindingMarkup(finding), findings.limit, none)) {
    findings.listed += finding.count;
  }
}

std::string LintSection::Markup(const std::string& command) const {
  std::string markup;
  for (std::size_t i = bySeverity_.size(); i-- > 0;) {
    const auto& [limit, list, violations, listed] = bySeverity_[i];
    if (violations == 0) continue;
    const auto table =
        StackMarkup(TableMarkup(Ids[i], Titles[i], {{"File"}, {"Line"}, {"Finding"}, {"ID"}},
                                "<tbody>\n" + list.Markup() + "</tbody>\n"));
    markup += "<h3>" + std::string(Titles[i]) + "</h3>\n" +
              DetailsMarkup(NumberText(violations) + (violations == 1 ? " finding" : " findings"),
                            table + OthersMarkup(violations - listed, command),
                            list.Listed() <= MaxOpenItems);
  }
  return markup.empty() ? "<p>Nothing was found.</p>\n" : markup;
}

}  // namespace fernwick::lab
