#include "lab/report/obstacle_section.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "lab/report/bars.h"
#include "lab/report/markup.h"
#include "lab/survey/short_text.h"
#include "lab/survey/text.h"
#include "lab/survey/xml_text.h"

namespace fernwick::lab {
namespace {

// Two lists with the same names are drawn one below the other.
std::string KeysMarkup(const std::map<std::string, std::array<std::size_t, 2>>& keys) {
  using Key = std::pair<std::string, std::array<std::size_t, 2>>;
  std::vector<Key> order(keys.begin(), keys.end());
  const auto total = [](const Key& key) { return key.second[0] + key.second[1]; };
  std::ranges::stable_sort(order, std::greater(), total);
  std::string rows;
  Bar bar;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto& [key, counts] = order[i];
    const auto fill = Tone((i + 2) % ToneCount);
    bar.segments.push_back({key, total(order[i]), fill});
    rows += "<tr>" + HeadCell(SwatchMarkup(fill) + " " + XmlText(key)) +
            NumberCell(NumberLink("blocked-by", counts[0])) +
            NumberCell(NumberLink("unmatched-by", counts[1])) + "</tr>\n";
  }
  return BarsMarkup("keys", "What keeps computers from an update, by key", {bar}) +
         TableMarkup("key-table", "What keeps computers from an update, by key",
                     {{"Key"}, {"Blocked", true}, {"Unmatched", true}},
                     "<tbody>\n" + rows + "</tbody>\n");
}

}  // namespace

void ObstacleSection::Add(const SurveyRow& row, const ComputerName& computer) {
  for (const auto& match : row.matches) {
    if (match.isImageMissing) images_.Add(XmlText(ShortText(CellText(match.image))), computer);
  }
  const bool isBlocked = row.computerClass == ComputerClass::Blocked;
  if (!row.miss || (!isBlocked && row.computerClass != ComputerClass::Unmatched)) return;
  ++keys_[row.miss->key][isBlocked ? 0 : 1];
  (isBlocked ? blocked_ : unmatched_).Add(XmlText(ShortText(MissReason(*row.miss))), computer);
}

std::string ObstacleSection::Markup(const std::string& command) const {
  std::string markup = keys_.empty()
                           ? "<p>No computer is blocked or unmatched by a requirement.</p>\n"
                           : KeysMarkup(keys_);
  if (!blocked_.IsEmpty()) {
    markup += "<h3>Blocked</h3>\n" +
              blocked_.Markup("Why computers are blocked", "First requirement that fails", command);
  }
  if (!unmatched_.IsEmpty()) {
    markup += "<h3>Unmatched</h3>\n" + unmatched_.Markup("Why computers are unmatched",
                                                         "First requirement that fails", command);
  }
  if (!images_.IsEmpty()) {
    markup += "<h3>Missing images</h3>\n" +
              images_.Markup("Planned images that the payload lacks", "Image", command, "Matches");
  }
  return markup;
}

}  // namespace fernwick::lab
