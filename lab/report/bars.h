#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace fernwick::lab {

/// A part of a bar.
struct Segment {
  std::string label;  // a text
  std::size_t count;
  std::string fill;  // the ID of one of FillPatterns
};

/// A stacked bar; the widths are shares of the sum.
struct Bar {
  std::string label;  // a text; may be empty
  std::vector<Segment> segments;
};

/// The fills of values in no order: each is a colour and a pattern, so that no two look alike
/// without colours.
inline constexpr std::size_t ToneCount = 10;

/// The ID of the fill in FillPatterns. REQUIRES: index < ToneCount.
std::string Tone(std::size_t index);

/// The fills of an ordered scale from light to dark, and the ID of one for what is not on the
/// scale.
inline constexpr std::size_t ShadeCount = 6;
inline constexpr char OtherShade[] = "sx";

/// The ID of the fill of one of `count` values in their order, in FillPatterns. REQUIRES: index <
/// count <= ShadeCount.
std::string Shade(std::size_t index, std::size_t count);

/// The definitions that every picture of the page refers to, as an element.
std::string FillPatterns();

/// The bars as one picture with a text alternative: the title and, bar by bar, every label with its
/// count. As wide as there is room. `id` must be unique on the page.
std::string BarsMarkup(const std::string& id, const std::string& title,
                       const std::vector<Bar>& bars);

/// A sample of a fill for a legend.
std::string SwatchMarkup(const std::string& fill);

}  // namespace fernwick::lab
