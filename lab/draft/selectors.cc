// Set cover with boxes. A selector accepts the product of the values of its controllers, which may
// contain an excepted one that no two of them are; a subset of its controllers never does if all
// together do not. For few controllers dynamic programming over the subsets finds a minimum, in
// 3^n steps and a comparison of 2^n selectors with each excepted controller. For more, which is
// NP-hard, each controller joins the latest selector that allows it (first fit), and selectors
// whose controllers others accept are dropped: a comparison of each controller with each excepted
// one for at most MaxTries selectors. The constraints of a selector are a minimum hitting set of
// what excludes each excepted controller, found by trying all sets of at most 13 constraints.

#include "lab/draft/selectors.h"

#include <algorithm>
#include <bit>
#include <map>
#include <set>
#include <span>

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxTries = 16;

// The keys that a personality may lack: those that describe a model first, then those of a position
// in the computer and of a version, and last those that are unique to one chip.
constexpr std::string_view Preference[] = {"Device Model Name",
                                           "Device Model ID",
                                           "Device Model Revision",
                                           "Port OTP Revision",
                                           "Firmware Mode",
                                           "MinBoardRevision",
                                           "MaxBoardRevision",
                                           "Port Address",
                                           "RID",
                                           "Existing Min Version",
                                           "Existing Max Version",
                                           "Port UUID",
                                           "Ridge UID"};

constexpr std::string_view Bounds[] = {"Existing Min Version", "Existing Max Version",
                                       "MinBoardRevision", "MaxBoardRevision"};

constexpr ConstraintSet BitOf(std::size_t index) {
  return ConstraintSet{1} << index;
}

bool IsIdentifying(std::string_view key) {
  return key == "Port UUID" || key == "Ridge UID";
}

bool Contains(const std::vector<std::uint32_t>& sorted, std::uint32_t value) {
  return std::ranges::binary_search(sorted, value);
}

// Extends the range to the number.
template <typename T>
void Widen(std::pair<T, T>& range, T number) {
  range = {std::min(range.first, number), std::max(range.second, number)};
}

// As ConstraintSchema::sets.
std::vector<ConstraintSet> SetsByPreference(const std::vector<std::size_t>& byPreference) {
  std::vector<std::uint32_t> ranks(std::size_t{1} << byPreference.size());
  for (std::uint32_t i = 0; i < ranks.size(); ++i) ranks[i] = i;
  std::ranges::stable_sort(ranks, {}, [](std::uint32_t set) { return std::popcount(set); });
  std::vector<ConstraintSet> sets;
  for (const auto rank : ranks) {
    auto& set = sets.emplace_back(0);
    for (std::size_t i = 0; i < byPreference.size(); ++i) {
      if ((rank >> i & 1) != 0) set |= BitOf(byPreference[i]);
    }
  }
  return sets;
}

using Rows = std::vector<ControllerRow>;

// The search for selectors with some of the constraints. Each wanted controller differs in one of
// them from every excepted one.
class SelectorSearch {
 public:
  SelectorSearch(const ConstraintSchema& schema, ConstraintSet allowed, const Rows& excepted)
      : schema_(schema), allowed_(allowed), excepted_(excepted) {}

  std::vector<Selector> Find(const Rows& wanted) const {
    const bool isSmall =
        wanted.size() <= MaxExhaustive && excepted_.size() << wanted.size() <= MaxComparedPairs;
    return isSmall ? FindFewest(wanted) : FindFew(wanted);
  }

 private:
  bool Excludes(const Selector& selector, const ControllerRow* extra = nullptr) const {
    return std::ranges::all_of(excepted_, [&](const ControllerRow& row) {
      return (selector.ExclusionsOf(row, extra) & allowed_) != 0;
    });
  }

  // Chooses the constraints that exclude every excepted controller.
  void Constrain(Selector& selector) const {
    std::set<ConstraintSet> exclusions;
    for (const auto& row : excepted_) {
      const auto excluding = selector.ExclusionsOf(row) & allowed_;
      if ((excluding & schema_.required) == 0) exclusions.insert(excluding);
    }
    selector.chosen = *std::ranges::find_if(schema_.sets, [&](ConstraintSet set) {
      return std::ranges::all_of(exclusions,
                                 [&](ConstraintSet excluding) { return (excluding & set) != 0; });
    });
  }

  static Selector SelectorOf(const Rows& wanted, std::size_t subset, const ConstraintSchema& of) {
    Selector selector(of);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if ((subset >> i & 1) != 0) selector.Add(wanted[i]);
    }
    return selector;
  }

  // The number of selectors, then that of their constraints.
  using Cost = std::pair<std::size_t, int>;

  // The best cover of a subset, and the part of it that the first selector accepts.
  struct Cover {
    Cost cost = {~std::size_t{0}, 0};
    std::size_t first = 0;
  };

  // By subset of the wanted controllers.
  std::vector<Selector> FindFewest(const Rows& wanted) const {
    const auto count = std::size_t{1} << wanted.size();
    std::vector<std::optional<int>> constraints(count);  // of one selector; empty: there is none
    std::vector<Cover> covers(count);
    covers[0].cost = {0, 0};
    for (std::size_t subset = 1; subset < count; ++subset) {
      auto selector = SelectorOf(wanted, subset, schema_);
      if (Excludes(selector)) {
        Constrain(selector);
        constraints[subset] = std::popcount(selector.chosen);
      }
      covers[subset] = BestCover(subset, constraints, covers);
    }
    std::vector<Selector> selectors;
    for (auto rest = count - 1; rest != 0; rest ^= covers[rest].first) {
      Constrain(selectors.emplace_back(SelectorOf(wanted, covers[rest].first, schema_)));
    }
    return selectors;
  }

  // Each selector is the one of the lowest controller of a subset, with others of the subset.
  static Cover BestCover(std::size_t subset, const std::vector<std::optional<int>>& constraints,
                         const std::vector<Cover>& covers) {
    Cover best;
    const auto others = subset & (subset - 1);
    for (auto part = others;; part = (part - 1) & others) {
      const auto first = part | (subset ^ others);
      if (constraints[first]) {
        const auto& [selectors, keys] = covers[subset ^ first].cost;
        const Cost cost = {selectors + 1, keys + *constraints[first]};
        if (cost < best.cost) best = {cost, first};
      }
      if (part == 0) return best;
    }
  }

  std::vector<Selector> FindFew(const Rows& wanted) const {
    std::vector<Selector> selectors;
    for (const auto& row : wanted) {
      const auto tries = std::min(selectors.size(), MaxTries);
      const auto latest = std::span(selectors).last(tries);
      const auto joined = std::find_if(latest.rbegin(), latest.rend(),
                                       [&](const Selector& each) { return Excludes(each, &row); });
      (joined == latest.rend() ? selectors.emplace_back(schema_) : *joined).Add(row);
    }
    for (auto& selector : selectors) Constrain(selector);
    return selectors;
  }

  const ConstraintSchema& schema_;
  const ConstraintSet allowed_;
  const Rows& excepted_;
};

// The row without the values of the constraints.
ControllerRow WithoutColumns(ControllerRow row, ConstraintSet constraints) {
  for (std::size_t i = 0; i < row.values.size(); ++i) {
    if ((constraints & BitOf(i)) != 0) row.values[i] = 0;
  }
  return row;
}

bool IsTooLarge(std::size_t wanted, std::size_t excepted) {
  return excepted != 0 && wanted > MaxComparedPairs / excepted;
}

// The index of an excepted controller that the selector of the one controller does not exclude.
std::optional<std::size_t> FindEqual(const ConstraintSchema& schema, ConstraintSet allowed,
                                     const ControllerRow& row, const Rows& excepted) {
  Selector selector(schema);
  selector.Add(row);
  const auto equal = std::ranges::find_if(excepted, [&](const ControllerRow& other) {
    return (selector.ExclusionsOf(other) & allowed) == 0;
  });
  if (equal == excepted.end()) return std::nullopt;
  return static_cast<std::size_t>(equal - excepted.begin());
}

// Drops selectors whose wanted controllers others accept.
void DropUnneeded(const Rows& wanted, std::vector<Selector>& selectors) {
  std::vector<std::size_t> accepting;
  for (const auto& row : wanted) {
    accepting.push_back(static_cast<std::size_t>(
        std::ranges::count_if(selectors, [&](const Selector& each) { return each.Accepts(row); })));
  }
  std::erase_if(selectors, [&](const Selector& selector) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (accepting[i] == 1 && selector.Accepts(wanted[i])) return false;
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (selector.Accepts(wanted[i])) --accepting[i];
    }
    return true;
  });
}

// Controllers without their identifying values, with the indexes of the rows that are equal then.
using Models = std::map<ControllerRow, std::vector<std::size_t>>;

Models ModelsOf(const ConstraintSchema& schema, const Rows& rows) {
  Models models;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    models[WithoutColumns(rows[i], schema.identifying)].push_back(i);
  }
  return models;
}

Rows RowsOf(const Models& models) {
  Rows rows;
  for (const auto& [row, indexes] : models) rows.push_back(row);
  return rows;
}

}  // namespace

ConstraintSchema::ConstraintSchema(TypeSet type, const ControllerTable& table)
    : columns(table.Columns().size()) {
  const auto add = [&](std::string_view name) {
    const auto* key = FindKey(name);
    const auto bit = BitOf(names.size());
    names.push_back(name);
    if ((key->checkedBy & type) == 0) return;
    const bool isRequired = (key->requiredBy & type) != 0;
    (isRequired ? required : IsIdentifying(name) ? identifying : optional) |= bit;
  };
  for (const auto* key : table.Columns()) add(key->name);
  for (const auto bound : Bounds) add(bound);
  for (const auto name : Preference) {
    const auto index = static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
    if (index < names.size() && (All() & BitOf(index)) != 0) byPreference.push_back(index);
  }
  sets = SetsByPreference(byPreference);
}

void Selector::Add(const ControllerRow& row) {
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const auto value = row.values[i];
    if (value == 0) lacking_ |= BitOf(i);
    const auto position = std::ranges::lower_bound(values_[i], value);
    if (position == values_[i].end() || *position != value) values_[i].insert(position, value);
  }
  if (row.version != 0) Widen(versions_, row.version);
  Widen(revisions_, row.boardRevision);
}

ConstraintSet Selector::ExclusionsOf(const ControllerRow& row, const ControllerRow* extra) const {
  ConstraintSet exclusions = 0;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const auto value = row.values[i];
    const bool isAdded = extra != nullptr && (extra->values[i] == 0 || extra->values[i] == value);
    if (!isAdded && !Contains(values_[i], value)) exclusions |= BitOf(i);
  }
  auto versions = versions_;
  auto revisions = revisions_;
  if (extra != nullptr) {
    if (extra->version != 0) Widen(versions, extra->version);
    Widen(revisions, extra->boardRevision);
  }
  const auto begin = values_.size();
  // A version that is not known is within all bounds.
  if (row.version != 0 && versions.first <= versions.second) {
    if (row.version < versions.first) exclusions |= BitOf(begin);
    if (row.version > versions.second) exclusions |= BitOf(begin + 1);
  }
  if (row.boardRevision < revisions.first) exclusions |= BitOf(begin + 2);
  if (row.boardRevision > revisions.second) exclusions |= BitOf(begin + 3);
  return exclusions & ~lacking_;
}

Separation FindSelectors(const ConstraintSchema& schema, const std::vector<ControllerRow>& wanted,
                         const std::vector<ControllerRow>& excepted) {
  const auto models = ModelsOf(schema, wanted);
  const auto exceptedModels = RowsOf(ModelsOf(schema, excepted));
  if (IsTooLarge(models.size(), exceptedModels.size())) return {.isTooLarge = true};
  const auto describing = schema.required | schema.optional;
  Rows separable;
  std::vector<std::size_t> others;
  for (const auto& [model, indexes] : models) {
    if (FindEqual(schema, describing, model, exceptedModels)) {
      others.insert(others.end(), indexes.begin(), indexes.end());
    } else {
      separable.push_back(model);
    }
  }
  if (IsTooLarge(others.size(), excepted.size())) return {.isTooLarge = true};
  Separation separation;
  Rows identified;
  for (const auto index : others) {
    const auto equal = FindEqual(schema, schema.All(), wanted[index], excepted);
    if (equal) separation.indistinguishable.emplace_back(index, *equal);
    identified.push_back(wanted[index]);
  }
  if (!separation.indistinguishable.empty()) return separation;
  separation.selectors = SelectorSearch(schema, describing, exceptedModels).Find(separable);
  const auto identifying = SelectorSearch(schema, schema.All(), excepted).Find(identified);
  separation.selectors.insert(separation.selectors.end(), identifying.begin(), identifying.end());
  DropUnneeded(wanted, separation.selectors);
  return separation;
}

}  // namespace fernwick::lab
