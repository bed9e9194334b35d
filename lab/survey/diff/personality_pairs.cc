// A join in several passes. The exact passes look up a key of the personality in a sorted index,
// each by a less strict key than the one before: the purpose (what the controller and the board
// must be, whatever the version) with the version bounds and the image, with either, alone. What is
// left is joined by similarity: of all pairs of compatible personalities, which accept a common
// value under every key, the most similar first (greedy matching). A last exact pass pairs what has
// the same image and another purpose. The exact passes cost n log n of the size of the arrays, the
// similarity m log m of the pairs of what is left, at most MaxCompared elements of each array.

#include "lab/survey/diff/personality_pairs.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "lab/support/words.h"
#include "value/number_text.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxCompared = 256;

// The keys by which a personality of the type selects its controllers, whatever their versions.
std::vector<const Key*> PurposeKeys(TypeSet type) {
  std::vector<const Key*> keys;
  for (const auto& key : KeySchema()) {
    const bool isOfVersion = key.name == "Version" || key.name.starts_with("Existing ");
    if ((key.checkedBy & type) != 0 && !isOfVersion) keys.push_back(&key);
  }
  return keys;
}

// Whether any of the personality's values under the key is accepted; otherwise the value is a
// bound.
bool IsSet(const Key& key) {
  return key.kind != KeyKind::OneNumber;
}

using Texts = std::vector<std::string>;

// A value such that equal ones have equal texts: 3 and 3.0 are equal.
std::string CanonicalText(const PropertyValue& value) {
  if (const auto real = value.AsReal(); real && *real == std::trunc(*real)) {
    const auto text = FormatReal(*real);
    return text.find('e') == std::string::npos ? text : InlineText(value);
  }
  return InlineText(value);
}

// The accepted values, sorted, each once; nullopt where the key is absent.
std::optional<Texts> AcceptedValues(Dictionary personality, std::string_view key) {
  const auto* value = personality.Find(key);
  if (value == nullptr) return std::nullopt;
  Texts texts;
  if (const auto list = value->AsArray()) {
    for (const auto& element : *list) texts.push_back(CanonicalText(element));
  } else {
    texts.push_back(CanonicalText(*value));
  }
  std::ranges::sort(texts);
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  return texts;
}

// What the passes compare of a personality.
struct PersonalityTraits {
  std::size_t index;                           // in its array
  std::vector<std::optional<Texts>> accepted;  // by the keys of the purpose
  std::string purpose;                         // all that is accepted, as one text
  std::string bounds;                          // of the installed version
  std::string image;
};

void AppendField(std::string& text, std::string_view field) {
  text.append(std::to_string(field.size())).append(":").append(field);
}

std::string ValueText(Dictionary personality, std::string_view key) {
  const auto* value = personality.Find(key);
  return value == nullptr ? "" : CanonicalText(*value);
}

PersonalityTraits TraitsOf(std::size_t index, Dictionary personality,
                           const std::vector<const Key*>& keys) {
  PersonalityTraits traits{index, {}, {}, {}, {}};
  for (const auto* key : keys) {
    const auto& accepted = traits.accepted.emplace_back(AcceptedValues(personality, key->name));
    traits.purpose += accepted ? "[" : "-";
    if (!accepted) continue;
    for (const auto& text : *accepted) AppendField(traits.purpose, text);
    traits.purpose += "]";
  }
  AppendField(traits.bounds, ValueText(personality, "Existing Min Version"));
  AppendField(traits.bounds, ValueText(personality, "Existing Max Version"));
  traits.image = ValueText(personality, "Firmware");
  return traits;
}

std::vector<PersonalityTraits> TraitsOf(Array personalities, const std::vector<const Key*>& keys) {
  std::vector<PersonalityTraits> all;
  for (std::size_t i = 0; i < personalities.size(); ++i) {
    if (const auto personality = personalities[i].AsDictionary()) {
      all.push_back(TraitsOf(i, *personality, keys));
    }
  }
  return all;
}

// How alike two personalities are; nullopt when no controller matches both.
std::optional<int> Similarity(const PersonalityTraits& before, const PersonalityTraits& after,
                              const std::vector<const Key*>& keys) {
  int similarity = before.image == after.image ? 1 : 0;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto& a = before.accepted[i];
    const auto& b = after.accepted[i];
    if (a == b) {
      similarity += a ? 4 : 2;
    } else if (IsSet(*keys[i]) && a && b) {
      Texts common;
      std::ranges::set_intersection(*a, *b, std::back_inserter(common));
      if (common.empty()) return std::nullopt;
      similarity += 2;
    }
  }
  return similarity;
}

class Join {
 public:
  Join(TypeSet type, Array before, Array after)
      : keys_(PurposeKeys(type)),
        before_(TraitsOf(before, keys_)),
        after_(TraitsOf(after, keys_)),
        pairs_(before.size()) {}

  PersonalityPairs Pairs() && {
    ByKey([](const PersonalityTraits& t) { return t.purpose + t.bounds + t.image; });
    ByKey([](const PersonalityTraits& t) { return t.purpose + t.image; });
    ByKey([](const PersonalityTraits& t) { return t.purpose + t.bounds; });
    ByKey([](const PersonalityTraits& t) { return t.purpose; });
    BySimilarity();
    ByKey([](const PersonalityTraits& t) { return t.image; });
    return std::move(pairs_);
  }

 private:
  // Pairs what has equal keys, in the order of the arrays.
  template <typename Key>
  void ByKey(Key key) {
    std::map<std::string, std::vector<std::size_t>> unpaired;
    for (std::size_t i = after_.size(); i-- > 0;) {
      if (auto text = key(after_[i]); !text.empty()) unpaired[std::move(text)].push_back(i);
    }
    std::vector<bool> isPaired(after_.size());
    std::erase_if(before_, [&](const PersonalityTraits& traits) {
      const auto found = unpaired.find(key(traits));
      if (found == unpaired.end() || found->second.empty()) return false;
      isPaired[found->second.back()] = true;
      pairs_[traits.index] = after_[found->second.back()].index;
      found->second.pop_back();
      return true;
    });
    RemovePaired(isPaired);
  }

  struct Candidate {
    int similarity;
    std::size_t before;
    std::size_t after;
  };

  void BySimilarity() {
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < std::min(before_.size(), MaxCompared); ++i) {
      for (std::size_t j = 0; j < std::min(after_.size(), MaxCompared); ++j) {
        if (const auto similarity = Similarity(before_[i], after_[j], keys_)) {
          candidates.push_back({*similarity, i, j});
        }
      }
    }
    std::ranges::stable_sort(candidates, std::greater(), &Candidate::similarity);
    std::vector<bool> isBeforePaired(before_.size());
    std::vector<bool> isPaired(after_.size());
    for (const auto& [similarity, i, j] : candidates) {
      if (isBeforePaired[i] || isPaired[j]) continue;
      isBeforePaired[i] = isPaired[j] = true;
      pairs_[before_[i].index] = after_[j].index;
    }
    std::erase_if(before_, [&](const PersonalityTraits& t) { return pairs_[t.index].has_value(); });
    RemovePaired(isPaired);
  }

  void RemovePaired(const std::vector<bool>& isPaired) {
    std::size_t i = 0;
    std::erase_if(after_, [&](const PersonalityTraits&) { return isPaired[i++]; });
  }

  std::vector<const Key*> keys_;
  std::vector<PersonalityTraits> before_;  // those without a counterpart, in the order of the array
  std::vector<PersonalityTraits> after_;
  PersonalityPairs pairs_;
};

}  // namespace

PersonalityPairs PairPersonalities(TypeSet type, Array before, Array after) {
  return Join(type, before, after).Pairs();
}

std::string PersonalityWithImage(Array personalities, std::size_t index) {
  auto name = "personality " + std::to_string(index + 1);
  const auto personality = personalities[index].AsDictionary();
  const auto* image = personality ? personality->Find("Firmware") : nullptr;
  const auto text = image == nullptr ? std::nullopt : image->AsString();
  return text ? name + " (" + std::string(*text) + ")" : name;
}

}  // namespace fernwick::lab
