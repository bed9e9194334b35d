// The first rows of each rule by a bounded buffer: when it has twice as many rows as are listed, a
// partial sort drops the later half. Linear time in the number of violations, constant memory.

#include "lab/lint/finding.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "lab/support/words.h"
#include "value/textual_dump.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

auto OrderOf(const ConfigurationFindings::Row& row) {
  return std::tie(row.offset, row.rule->id, row.message);
}

}  // namespace

std::string MessageOfUnlisted(std::size_t count) {
  return Counted(count, "more finding", "more findings") + " of this kind";
}

void ConfigurationFindings::Enter(const LocatedPersonality* personality) {
  if (personality == personality_) return;
  personality_ = personality;
  identity_.reset();
}

void ConfigurationFindings::Add(const LintRule& rule, std::size_t offset, std::string message) {
  if (!identity_) identity_ = personality_ == nullptr ? 0 : IdentityOf(*personality_);
  const FindingIdentity identity = {&rule, path_, *identity_, message};
  if (filter_ && !filter_(identity)) return;
  const auto fingerprint = FingerprintOf(identity);
  auto& ofRule = found_[&rule];
  ofRule.rows.push_back({&rule, offset, std::move(message), fingerprint});
  if (ofRule.rows.size() == 2 * MaxListed) Shorten(ofRule);
}

void ConfigurationFindings::Shorten(RowsOfRule& ofRule) {
  auto& [rows, unlisted, unlistedOffset] = ofRule;
  if (rows.size() <= MaxListed) return;
  const auto end = rows.begin() + MaxListed;
  std::ranges::nth_element(rows, end, {}, OrderOf);
  unlistedOffset = unlisted == 0 ? end->offset : std::min(unlistedOffset, end->offset);
  unlisted += rows.size() - MaxListed;
  rows.erase(end, rows.end());
}

std::vector<ConfigurationFindings::Row> ConfigurationFindings::TakeSorted() {
  std::vector<Row> sorted;
  for (auto& [rule, ofRule] : found_) {
    Shorten(ofRule);
    std::ranges::move(ofRule.rows, std::back_inserter(sorted));
    const auto unlisted = ofRule.unlisted;
    if (unlisted == 0) continue;
    const auto fingerprint = FingerprintOf({rule, path_, 0, ""});
    sorted.push_back(
        {rule, ofRule.unlistedOffset, MessageOfUnlisted(unlisted), fingerprint, unlisted});
  }
  found_.clear();
  std::ranges::sort(sorted, {}, OrderOf);
  return sorted;
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
