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
  const auto name = PersonalityWithImage(personalities, index) + ": ";
  const auto key = std::ranges::find(run.trace.keys, type, &KeyTrace::key);
  const auto context = ContextOf(run.result, *key, pair.controller);
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
  const auto& counterparts = CounterpartsOf(pair.key->key);
  return (&other.run == &after_ ? counterparts.ofOld : counterparts.ofNew)[pair.personality];
}

const MatchReasons::Counterparts& MatchReasons::CounterpartsOf(std::string_view type) {
  const auto known = counterparts_.find(type);
  if (known != counterparts_.end()) return known->second;
  const auto after = PersonalitiesIn(after_, type);
  Counterparts counterparts = {
      PairPersonalities(TypeNamed(type), PersonalitiesIn(before_, type), after),
      PersonalityPairs(after.size())};
  for (std::size_t i = 0; i < counterparts.ofOld.size(); ++i) {
    if (counterparts.ofOld[i]) counterparts.ofNew[*counterparts.ofOld[i]] = i;
  }
  return counterparts_.emplace(type, std::move(counterparts)).first->second;
}

}  // namespace fernwick::lab
