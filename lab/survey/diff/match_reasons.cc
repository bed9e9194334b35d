#include "lab/survey/diff/match_reasons.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "lab/explain/failed_requirement.h"
#include "lab/support/words.h"
#include "lab/survey/row.h"
#include "personality/personality.h"

namespace fernwick::lab {
namespace {

std::optional<Dictionary> TypesOf(const ToolRun& run) {
  const auto& configuration = run.result.configuration;
  return configuration ? configuration->value.AsDictionary() : std::nullopt;
}

// Empty where the payload has none of the type.
Array PersonalitiesIn(const ToolRun& run, std::string_view type) {
  const auto types = TypesOf(run);
  const auto* value = types ? types->Find(type) : nullptr;
  return value == nullptr ? Array() : PersonalitiesOf(type, *value).value_or(Array());
}

std::vector<std::string> FailureTexts(const MatchedPair& pair, const ToolRun& run,
                                      std::size_t index) {
  const auto type = pair.key->key;
  const auto personalities = PersonalitiesIn(run, type);
  const auto name = PersonalityName(personalities, index) + ": ";
  const auto key = std::ranges::find(run.trace.keys, type, &KeyTrace::key);
  const RequirementContext context = {key->inventory.records[pair.controller],
                                      run.result.identity->boardRevision,
                                      run.result.bypassesVersionCheck};
  std::vector<std::string> texts;
  const auto personality = personalities[index].AsDictionary();
  for (const auto& failed : FailedRequirements(TypeNamed(type), *personality, context)) {
    texts.push_back(name + "\"" + std::string(failed.requirement->key) + "\" " +
                    FailureText(failed));
  }
  return texts;
}

}  // namespace

std::vector<std::string> LogLines(const ToolRun& run) {
  std::vector<std::string> lines;
  for (const auto& [text, count] : run.diagnostics) {
    if (!text.starts_with("** ")) lines.push_back(text);
  }
  return lines;
}

std::vector<std::string> MatchReasons::WithoutInOld(const MatchedPair& pair) {
  return Reasons(pair, {before_, "the old payload"});
}

std::vector<std::string> MatchReasons::WithoutInNew(const MatchedPair& pair) {
  return Reasons(pair, {after_, "the new payload"});
}

std::vector<std::string> MatchReasons::Reasons(const MatchedPair& pair, const Other& other) {
  const auto types = TypesOf(other.run);
  if (!types) return LogLines(other.run);
  const auto& type = pair.key->key;
  const auto* value = types->Find(type);
  if (value == nullptr) return {std::string(other.payload) + " has no key \"" + type + "\""};
  if (!PersonalitiesOf(type, *value)) {
    return {"\"" + type + "\" of " + other.payload + " is " + std::string(KindOf(*value)) +
            ", which matches nothing"};
  }
  const auto counterpart = CounterpartOf(pair, other);
  if (!counterpart) return {std::string(other.payload) + " has no such personality"};
  return FailureTexts(pair, other.run, *counterpart);
}

// The index of the personality of the other run that has the same purpose as the pair's.
std::optional<std::size_t> MatchReasons::CounterpartOf(const MatchedPair& pair,
                                                       const Other& other) {
  const auto& pairs = PairsOf(pair.key->key);
  if (&other.run == &after_) return pairs[pair.personality];
  const auto found = std::ranges::find(pairs, std::optional(pair.personality));
  if (found == pairs.end()) return std::nullopt;
  return static_cast<std::size_t>(found - pairs.begin());
}

const PersonalityPairs& MatchReasons::PairsOf(std::string_view type) {
  const auto known = pairs_.find(type);
  if (known != pairs_.end()) return known->second;
  auto pairs = PairPersonalities(PersonalitiesIn(before_, type), PersonalitiesIn(after_, type));
  return pairs_.emplace(type, std::move(pairs)).first->second;
}

}  // namespace fernwick::lab
