// Stacked bars in SVG. All horizontal lengths are percentages, so that a bar is as wide as the page
// while its text keeps the size of the page's.

#include "lab/report/bars.h"

#include <cstdio>

#include "lab/report/markup.h"
#include "lab/survey/xml_text.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t LabelHeight = 20;
constexpr std::size_t BarHeight = 34;
constexpr std::size_t Gap = 10;

// The lines of a pattern of 8 x 8; a solid one has none.
constexpr std::array<const char*, ToneCount> Lines = {
    "",
    "M1 2h2M5 6h2",
    "M-2 2l4-4M0 8l8-8M6 10l4-4",
    "M-2 6l4 4M0 0l8 8M6-2l4 4",
    "M3.5 4h1",
    "M0 4h8",
    "M4 0v8",
    "M0 4h8M4 0v8",
    "M0 0l8 8M0 8l8-8",
    "M0 2h8M0 6h8",
};

std::string Percent(std::size_t part, std::size_t whole) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f%%",
                static_cast<double>(part) * 100 / static_cast<double>(whole));
  return text;
}

std::size_t SumOf(const Bar& bar) {
  std::size_t sum = 0;
  for (const auto& segment : bar.segments) sum += segment.count;
  return sum;
}

// A label needs some 2.4 percent a character on a phone.
bool Fits(const Segment& segment, std::size_t sum) {
  return segment.count * 1000 >= sum * (24 * CountCharacters(segment.label) + 20);
}

std::string SegmentMarkup(const Segment& segment, std::size_t begin, std::size_t sum,
                          std::size_t top) {
  const auto y = std::to_string(top);
  auto markup = "<rect x=\"" + Percent(begin, sum) + "\" y=\"" + y + "\" width=\"" +
                Percent(segment.count, sum) + "\" height=\"" + std::to_string(BarHeight) +
                "\" fill=\"url(#" + segment.fill + ")\"/>";
  if (Fits(segment, sum)) {
    markup += "<text class=\"on " + segment.fill + "\" x=\"" +
              Percent(2 * begin + segment.count, 2 * sum) + "\" y=\"" +
              std::to_string(top + BarHeight / 2 + 5) + "\">" + XmlText(segment.label) + "</text>";
  }
  return markup;
}

std::string DescriptionOf(const Bar& bar) {
  std::string text;
  for (const auto& segment : bar.segments) {
    if (segment.count == 0) continue;
    text += (text.empty() ? "" : ", ") + segment.label + ": " + NumberText(segment.count);
  }
  if (text.empty()) text = "nothing";
  return (bar.label.empty() ? "" : bar.label + ": ") + text + ". ";
}

std::string PatternMarkup(const std::string& id, const char* lines) {
  return "<pattern id=\"" + id +
         "\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\"><rect class=\"" + id +
         "\" width=\"8\" height=\"8\"/><path d=\"" + lines + "\"/></pattern>\n";
}

}  // namespace

std::string Tone(std::size_t index) {
  return "t" + std::to_string(index);
}

std::string Shade(std::size_t index, std::size_t count) {
  const auto shade = count == 1 ? ShadeCount - 1 : index * (ShadeCount - 1) / (count - 1);
  return "s" + std::to_string(shade);
}

std::string FillPatterns() {
  std::string markup = "<svg class=\"defs\" width=\"0\" height=\"0\" aria-hidden=\"true\"><defs>\n";
  for (std::size_t i = 0; i < ToneCount; ++i) markup += PatternMarkup(Tone(i), Lines[i]);
  for (std::size_t i = 0; i < ShadeCount; ++i) {
    markup += PatternMarkup(Shade(i, ShadeCount), "");
  }
  return markup + PatternMarkup(OtherShade, Lines[2]) + "</defs></svg>\n";
}

std::string BarsMarkup(const std::string& id, const std::string& title,
                       const std::vector<Bar>& bars) {
  std::string pictures;
  std::string description;
  std::size_t top = 0;
  for (const auto& bar : bars) {
    description += DescriptionOf(bar);
    if (!bar.label.empty()) {
      pictures += "<text x=\"0\" y=\"" + std::to_string(top + LabelHeight - 6) + "\">" +
                  XmlText(bar.label) + "</text>";
      top += LabelHeight;
    }
    const auto sum = SumOf(bar);
    std::size_t begin = 0;
    for (const auto& segment : bar.segments) {
      if (segment.count == 0) continue;
      pictures += SegmentMarkup(segment, begin, sum, top);
      begin += segment.count;
    }
    top += BarHeight + Gap;
  }
  description.pop_back();
  return "<svg class=\"bars\" role=\"img\" aria-labelledby=\"" + id + "-t " + id +
         "-d\" width=\"100%\" height=\"" + std::to_string(top - Gap) + "\"><title id=\"" + id +
         "-t\">" + XmlText(title) + "</title><desc id=\"" + id + "-d\">" + XmlText(description) +
         "</desc>" + pictures + "</svg>\n";
}

std::string SwatchMarkup(const std::string& fill) {
  return "<svg class=\"swatch\" width=\"16\" height=\"16\" aria-hidden=\"true\">"
         "<rect width=\"16\" height=\"16\" fill=\"url(#" +
         fill + ")\"/></svg>";
}

}  // namespace fernwick::lab
