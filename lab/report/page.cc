#include "lab/report/page.h"

#include <utility>

#include "lab/report/bars.h"
#include "lab/report/class_section.h"
#include "lab/report/markup.h"
#include "lab/report/style.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

std::string Tile(const std::string& id, std::size_t number, const std::string& label) {
  return "<li><strong>" + NumberLink(id, number) + "</strong> <span>" + label + "</span></li>\n";
}

// The lines of what needs attention.
class Alerts {
 public:
  // Nothing when there are none of it. `singular` and `plural` follow the number.
  void Add(std::size_t number, const std::string& id, const char* singular, const char* plural,
           bool isMild = false) {
    if (number == 0) return;
    (isMild ? mild_ : grave_) += std::string(isMild ? "<li class=\"mild\">" : "<li>") + "<strong>" +
                                 NumberLink(id, number) + "</strong> " +
                                 (number == 1 ? singular : plural) + "</li>\n";
  }

  std::string Markup() const {
    if (grave_.empty() && mild_.empty()) return "<p>Nothing.</p>\n";
    return "<ul class=\"alerts\">\n" + grave_ + mild_ + "</ul>\n";
  }

 private:
  std::string grave_;
  std::string mild_;
};

std::string Section(const std::string& id, const std::string& title, const std::string& contents) {
  return "<section aria-labelledby=\"" + id + "-title\" id=\"" + id + "\">\n<h2 id=\"" + id +
         "-title\">" + title + "</h2>\n" + contents + "</section>\n";
}

std::string HeadMarkup(const std::string& title) {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
         "'unsafe-inline'\"/>\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
         "<meta name=\"color-scheme\" content=\"light dark\"/>\n<title>" +
         XmlText(title) + "</title>\n<style>" + ReportStyle + "</style>\n</head>\n";
}

constexpr std::pair<const char*, const char*> Contents[] = {
    {"classes-section", "Classes"}, {"versions", "Versions"},   {"obstacles", "Obstacles"},
    {"settling-section", "After"},  {"coverage", "Coverage"},   {"lint", "Lint"},
    {"changes-section", "Changes"}, {"computers", "Computers"},
};

std::string NavigationMarkup(bool isComparison) {
  std::string items;
  for (const auto& [id, name] : Contents) {
    if (std::string_view(name) == "Changes" && !isComparison) continue;
    items += "<li>" + LinkTo(id, name) + "</li>\n";
  }
  return "<nav aria-label=\"Sections\"><ul>\n" + items + "</ul></nav>\n";
}

}  // namespace

ReportPage::ReportPage(ReportedPayloads payloads, std::string title, Console& console)
    : payloads_(std::move(payloads)),
      title_(std::move(title)),
      commands_(payloads_),
      lists_(payloads_.old.has_value()),
      coverage_(console, commands_.coverage) {}

void ReportPage::Add(const ReportedComputer& computer) {
  totals_.Add(computer.row);
  ++uses_[static_cast<std::size_t>(computer.use)];
  const auto name = lists_.Add(computer);
  obstacles_.Add(computer.row, name);
  if (computer.settling) {
    settling_.Add(*computer.settling, name);
    versions_.Add(*computer.settling, name);
  }
  if (computer.difference) changes_.Add(*computer.difference, name);
}

std::string ReportPage::TilesMarkup() const {
  const auto count = [&](ComputerClass each) { return totals_.Count(each); };
  const auto tile = [&](ComputerClass each, const char* label) {
    return Tile(ComputerLists::ClassId(each), count(each), label);
  };
  const auto others = totals_.Computers() - count(ComputerClass::Planned) -
                      count(ComputerClass::Current) - count(ComputerClass::Blocked);
  auto tiles = Tile("computers", totals_.Computers(), "computers") +
               tile(ComputerClass::Planned, "get an update") +
               tile(ComputerClass::Current, "are current") +
               tile(ComputerClass::Blocked, "are blocked") +
               Tile("class-table", others, "get none for other reasons");
  if (payloads_.old)
    tiles += Tile("changes-section", changes_.Totals().changed, "differ from the old payload");
  return "<ul class=\"tiles\">\n" + tiles + "</ul>\n";
}

std::string ReportPage::AlertsMarkup() const {
  const auto settled = [&](SettleOutcome each) { return settling_.Totals().Count(each); };
  const auto& lint = lint_.Totals();
  const auto& coverage = coverage_.Totals();
  Alerts alerts;
  alerts.Add(totals_.Count(ComputerClass::Fault), "class-fault",
             "computer ends the tool abnormally", "computers end the tool abnormally");
  alerts.Add(settled(SettleOutcome::NeverSettles), "never-settles", "computer never settles",
             "computers never settle");
  alerts.Add(settled(SettleOutcome::Undecided), "undecided",
             "computer is not settled after very many runs",
             "computers are not settled after very many runs");
  alerts.Add(settling_.Totals().endedByPlans, "settling-table",
             "computer gets no further update: a plan turns updates off or makes the tool end "
             "abnormally",
             "computers get no further update: a plan turns updates off or makes the tool end "
             "abnormally");
  alerts.Add(totals_.missingImages, "missing-images",
             "match names an image that is missing in the payload",
             "matches name images that are missing in the payload");
  alerts.Add(changes_.Totals().lost, "changes", "computer loses its plan",
             "computers lose their plan");
  alerts.Add(lint.errors, "lint-errors", "error in a configuration", "errors in configurations");
  alerts.Add(totals_.Count(ComputerClass::NoConfiguration), "class-no-configuration",
             "computer has no configuration that can be used",
             "computers have no configuration that can be used");
  alerts.Add(settled(SettleOutcome::Stuck), "stuck", "computer is stuck below a newer version",
             "computers are stuck below a newer version");
  alerts.Add(totals_.Count(ComputerClass::Refused), "class-refused", "recording is refused",
             "recordings are refused");
  alerts.Add(lint.warnings, "lint-warnings", "warning about a configuration",
             "warnings about configurations", true);
  alerts.Add(coverage.counts.personalities - coverage.counts.matchedPersonalities, "personalities",
             "personality matches no recorded computer", "personalities match no recorded computer",
             true);
  alerts.Add(coverage.boardsWithoutRun, "covered-boards", "board has no recording",
             "boards have no recording", true);
  return "<h3>Needs attention</h3>\n" + alerts.Markup();
}

std::string ReportPage::MainMarkup() const {
  auto markup =
      Section("summary", "Summary", TilesMarkup() + AlertsMarkup()) +
      Section("classes-section", "Computers by class",
              ClassSectionMarkup(totals_) + lists_.BoardsMarkup(commands_.survey)) +
      Section("versions", "Installed versions before and after",
              versions_.Markup(commands_.settle)) +
      Section("obstacles", "What keeps computers from an update",
              obstacles_.Markup(commands_.survey)) +
      Section("settling-section", "After the updates", settling_.Markup(commands_.settle)) +
      Section("coverage", "Coverage of the payload", coverage_.Markup()) +
      Section("lint", "Findings of lint", lint_.Markup(commands_.lint));
  if (payloads_.old) {
    markup += Section("changes-section", "Changes against the old payload",
                      changes_.Markup(commands_.diff));
  }
  return markup + Section("computers", "Computers", StackMarkup(lists_.Markup(commands_.survey)));
}

std::string ReportPage::Markup() const {
  const auto old =
      payloads_.old ? ", compared with <code>" + XmlText(*payloads_.old) + "</code>" : "";
  return HeadMarkup(title_) + "<body>\n" + FillPatterns() + "<header>\n<h1>" + XmlText(title_) +
         "</h1>\n<p class=\"lead\">What <code>" + XmlText(payloads_.payload) + "</code> does for " +
         ComputersText(totals_.Computers()) + old + ".</p>\n" +
         NavigationMarkup(payloads_.old.has_value()) + "</header>\n<main>\n" + MainMarkup() +
         "</main>\n<footer><p>Made by fernwick-lab. Lists have their first items; the command "
         "after one prints all.</p></footer>\n</body>\n</html>\n";
}

}  // namespace fernwick::lab
