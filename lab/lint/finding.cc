#include "lab/lint/finding.h"

#include <algorithm>
#include <tuple>

#include "value/textual_dump.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {

std::vector<ConfigurationFindings::Row> ConfigurationFindings::TakeSorted() {
  const auto order = [](const Row& row) { return std::tie(row.offset, row.rule->id, row.message); };
  std::ranges::sort(rows_, {}, order);
  return std::move(rows_);
}

std::string Quoted(std::string_view text) {
  return "\"" + Excerpt(text) + "\"";
}

std::string Shown(const PropertyValue& value) {
  if (const auto text = value.AsString()) return Quoted(*text);
  if (value.AsDictionary()) return "a dictionary";
  if (value.AsArray()) return "an array";
  if (value.AsData()) return "data";
  return DumpText(value);
}

}  // namespace fernwick::lab
