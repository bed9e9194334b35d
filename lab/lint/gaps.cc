// Interval covering. The personalities are grouped by what they accept; in each group the intervals
// are sorted by where they begin, and a gap is where one begins after all earlier ones have ended.
// O(n log n) for a group, and O(n) for each board revision at which one of its personalities
// begins.

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "lab/lint/comparisons.h"
#include "lab/lint/rules/version_rules.h"

namespace fernwick::lab {
namespace {

using Line = std::vector<const LivePersonality*>;

std::string LocationOf(const LintSubject& subject, const LivePersonality& live) {
  return Describe(subject.file.LocationOf(live.personality->offset));
}

void LintRevisions(const LintSubject& subject, Line line, ConfigurationFindings& findings) {
  std::ranges::stable_sort(line, {}, [](auto* live) { return live->acceptance.revisions.lowest; });
  const auto* last = line.front();
  for (const auto* live : line) {
    const int end = last->acceptance.revisions.highest;
    const int begin = live->acceptance.revisions.lowest;
    if (begin > end + 1) {
      findings.Enter(live->personality);
      findings.Add(LintRuleOf::BoardRevisionGap, live->personality->offset,
                   "this personality begins at board revision " + std::to_string(begin) +
                       ", but the one for the same controllers at " + LocationOf(subject, *last) +
                       " ends at " + std::to_string(end));
    }
    if (live->acceptance.revisions.highest > end) last = live;
  }
}

bool HasFraction(const PropertyValue* number) {
  return number != nullptr && !IsWhole(*number);
}

// The one scale of the windows of a line.
VersionScales ScaleOf(const Line& line) {
  const auto scales = line.front()->acceptance.scales;
  const bool isRidge =
      (line.front()->personality->type & (Types::LegacyThunderbolt | Types::Thunderbolt)) != 0;
  const bool hasFractions = std::ranges::any_of(line, [](const LivePersonality* live) {
    const auto& [offered, minimum, maximum] = live->acceptance.window;
    return HasFraction(offered) || HasFraction(minimum) || HasFraction(maximum);
  });
  const bool isThunderbolt = isRidge || (hasFractions && scales.thunderbolt);
  return {.thunderbolt = isThunderbolt, .port = !isThunderbolt};
}

bool BeginsBefore(const LivePersonality* a, const LivePersonality* b) {
  const auto* beginOfB = b->acceptance.window.minimum;
  if (beginOfB == nullptr) return false;
  const auto* beginOfA = a->acceptance.window.minimum;
  return beginOfA == nullptr || NumberLess(*beginOfA, *beginOfB);
}

// A personality of a line, and the version at which its window ends; nullopt when it never does.
struct Step {
  const LivePersonality* live;
  std::optional<PropertyValue> end;
};

// The steps in the order in which their windows begin.
std::vector<Step> StepsOf(Line line) {
  std::ranges::stable_sort(line, BeginsBefore);
  const auto scale = ScaleOf(line);
  std::vector<Step> steps;
  for (const auto* live : line) {
    const auto& window = live->acceptance.window;
    steps.push_back({live, LowestVersionAfter(scale, *window.offered, window.maximum)});
  }
  return steps;
}

// The personalities with a gap before their windows, and the lowest version in it.
using Gaps = std::map<const LivePersonality*, PropertyValue>;

void FindGaps(const std::vector<Step>& steps, int revision, Gaps& gaps) {
  std::optional<PropertyValue> end;
  for (const auto& [live, next] : steps) {
    const auto& [lowest, highest] = live->acceptance.revisions;
    if (revision < lowest || revision > highest) continue;
    const auto* minimum = live->acceptance.window.minimum;
    if (end && minimum != nullptr && NumberGreater(*minimum, *end)) gaps.emplace(live, *end);
    if (!next) return;
    if (!end || NumberGreater(*next, *end)) end = next;
  }
}

void LintWindows(const Line& line, ConfigurationFindings& findings) {
  std::set<int> revisions;
  for (const auto* live : line) revisions.insert(live->acceptance.revisions.lowest);
  const auto steps = StepsOf(line);
  Gaps gaps;
  for (const int revision : revisions) FindGaps(steps, revision, gaps);
  for (const auto& [live, version] : gaps) {
    const auto* minimum = live->personality->Find("Existing Min Version");
    findings.Enter(live->personality);
    findings.Add(LintRuleOf::VersionGap, minimum->valueOffset,
                 "this personality begins at " + Shown(*minimum->value) +
                     ", but the installed version " + Shown(version) +
                     " is accepted neither by this personality nor by an earlier step of the "
                     "upgrade");
  }
}

}  // namespace

void LintGaps(const LintSubject& subject, const std::vector<LivePersonality>& live,
              ConfigurationFindings& findings) {
  // By the type and all that is accepted.
  std::map<std::pair<TypeSet, std::vector<const ValueSet*>>, Line> lines;
  for (const auto& one : live) {
    lines[{one.personality->type, one.acceptance.sets}].push_back(&one);
  }
  for (const auto& [controllers, line] : lines) {
    if (line.size() < 2) continue;
    LintRevisions(subject, line, findings);
    LintWindows(line, findings);
  }
  findings.Enter(nullptr);
}

}  // namespace fernwick::lab
