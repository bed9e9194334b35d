// Selectors of small random problems, compared with every partition of the wanted controllers.

#include "lab/draft/selectors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "testing/inputs/random_choice.h"

namespace fernwick::lab {
namespace {

using testing::RandomChoice;
using RowList = std::vector<ControllerRow>;

const ControllerTable Ports(Types::Thunderbolt);
const ConstraintSchema Schema(Types::Thunderbolt, Ports);

std::size_t ColumnOf(std::string_view key) {
  return static_cast<std::size_t>(std::ranges::find(Ports.Columns(), key, &Key::name) -
                                  Ports.Columns().begin());
}

// A controller whose values are all 1, except these.
ControllerRow RowWith(const std::vector<std::pair<std::string_view, std::uint32_t>>& values,
                      std::uint32_t version = 1, int revision = 0) {
  ControllerRow row{.values = std::vector<std::uint32_t>(Ports.Columns().size(), 1),
                    .version = version,
                    .boardRevision = revision};
  for (const auto& [key, value] : values) row.values[ColumnOf(key)] = value;
  return row;
}

std::vector<std::string_view> ChosenKeys(const Selector& selector) {
  std::vector<std::string_view> keys;
  for (std::size_t i = 0; i < Schema.names.size(); ++i) {
    if ((selector.chosen >> i & 1) != 0) keys.push_back(Schema.names[i]);
  }
  return keys;
}

using Keys = std::vector<std::string_view>;

TEST(ConstraintSchema, OfATypeHasTheKeysThatItTests) {
  const auto names = [&](const ConstraintSchema& schema, ConstraintSet set) {
    Keys keys;
    for (std::size_t i = 0; i < schema.names.size(); ++i) {
      if ((set >> i & 1) != 0) keys.push_back(schema.names[i]);
    }
    return keys;
  };
  const ConstraintSchema legacy(Types::LegacyUsbc, Ports);
  EXPECT_EQ(names(legacy, legacy.All()),
            (Keys{"Port Address", "Existing Min Version", "Existing Max Version"}));
  EXPECT_EQ(legacy.required | legacy.identifying, 0u);
  EXPECT_EQ(names(Schema, Schema.required),
            (Keys{"Port Silicon Vendor ID", "Port Silicon Device ID", "Port Silicon Revision",
                  "Ridge Silicon Vendor ID", "Ridge Silicon Device ID", "Ridge Silicon Revision"}));
  EXPECT_EQ(names(Schema, Schema.identifying), (Keys{"Port UUID", "Ridge UID"}));
  EXPECT_EQ(Schema.byPreference.size(), 13u);
}

TEST(Selectors, NeedNoConstraintWithoutExceptedControllers) {
  const auto [selectors, indistinguishable, isTooLarge] =
      FindSelectors(Schema, {RowWith({}), RowWith({{"RID", 2}}, 5, 3)}, {});
  ASSERT_EQ(selectors.size(), 1u);
  EXPECT_EQ(ChosenKeys(selectors[0]), Keys{});
  EXPECT_FALSE(isTooLarge);
}

TEST(Selectors, PreferKeysOfTheModel) {
  const auto wanted = RowWith({});
  const auto chosen = [&](const RowList& excepted) {
    return ChosenKeys(FindSelectors(Schema, {wanted}, excepted).selectors.at(0));
  };
  EXPECT_EQ(chosen({RowWith({{"Device Model Name", 2}, {"RID", 2}, {"Ridge UID", 2}})}),
            Keys{"Device Model Name"});
  EXPECT_EQ(chosen({RowWith({{"RID", 2}, {"Ridge UID", 2}})}), Keys{"RID"});
  EXPECT_EQ(chosen({RowWith({{"Ridge UID", 2}, {"Port UUID", 2}})}), Keys{"Port UUID"});
  EXPECT_EQ(chosen({RowWith({{"Port Silicon Revision", 2}})}), Keys{});
  EXPECT_EQ(chosen({RowWith({}, 2), RowWith({{"RID", 2}})}), (Keys{"RID", "Existing Max Version"}));
  EXPECT_EQ(chosen({RowWith({}, 1, 2), RowWith({}, 2, 2)}), Keys{"MaxBoardRevision"});
}

// The product of the models and addresses of both contains the excepted one.
TEST(Selectors, AreSeveralWhereOneWouldAcceptAnExceptedProduct) {
  const RowList wanted = {RowWith({{"Device Model ID", 1}, {"Port Address", 1}}),
                          RowWith({{"Device Model ID", 2}, {"Port Address", 2}})};
  const auto excepted = RowWith({{"Device Model ID", 1}, {"Port Address", 2}});
  EXPECT_EQ(FindSelectors(Schema, wanted, {excepted}).selectors.size(), 2u);
}

TEST(Selectors, IdentifyOnlyControllersThatNothingElseDistinguishes) {
  const RowList wanted = {RowWith({{"Ridge UID", 2}}),
                          RowWith({{"Ridge UID", 3}, {"Device Model Name", 2}}),
                          RowWith({{"Ridge UID", 4}})};
  const RowList excepted = {RowWith({{"Ridge UID", 5}})};
  const auto selectors = FindSelectors(Schema, wanted, excepted).selectors;
  ASSERT_EQ(selectors.size(), 2u);
  EXPECT_EQ(ChosenKeys(selectors[0]), Keys{"Device Model Name"});
  EXPECT_EQ(ChosenKeys(selectors[1]), Keys{"Ridge UID"});
  EXPECT_EQ(selectors[1].ValuesOf(ColumnOf("Ridge UID")), (std::vector<std::uint32_t>{2, 4}));
}

// A personality cannot require that a controller lacks a key.
TEST(Selectors, DoNotDistinguishAControllerWithoutAKeyFromOneWithIt) {
  const RowList with = {RowWith({})};
  const RowList without = {RowWith({{"RID", 0}})};
  EXPECT_EQ(FindSelectors(Schema, without, with).indistinguishable,
            (std::vector<Indistinguishable>{{0, 0}}));
  EXPECT_EQ(ChosenKeys(FindSelectors(Schema, with, without).selectors.at(0)), Keys{"RID"});
}

TEST(Selectors, AreNotSearchedForAmongTooManyPairs) {
  RowList wanted;
  RowList excepted;
  const auto fill = [&](std::string_view key) {
    wanted.clear();
    excepted.clear();
    for (std::uint32_t i = 0; i < 2049; ++i) {
      wanted.push_back(RowWith({{key, 2 * i + 2}}));
      excepted.push_back(RowWith({{key, 2 * i + 3}}));
    }
  };
  for (const std::string_view key : {"RID", "Ridge UID"}) {
    fill(key);
    EXPECT_TRUE(FindSelectors(Schema, wanted, excepted).isTooLarge);
  }
  excepted.resize(1);
  EXPECT_EQ(FindSelectors(Schema, wanted, excepted).selectors.size(), 1u);
}

ControllerRow RandomRow(RandomChoice& random) {
  const auto value = [&] { return static_cast<std::uint32_t>(random.Below(3)); };
  return RowWith({{"Device Model Name", value()},
                  {"Port Address", value()},
                  {"Ridge UID", 1 + value()},
                  {"Port Silicon Revision", 1 + value() / 2}},
                 1 + value(), static_cast<int>(value()));
}

RowList RandomRows(std::size_t count, RandomChoice& random) {
  RowList rows;
  for (std::size_t i = 0; i < count; ++i) rows.push_back(RandomRow(random));
  return rows;
}

// Whether a personality with everything that these have in common excludes the row; identifying
// columns do not count unless `identifies`.
bool HullExcludes(const RowList& hull, const ControllerRow& row, bool identifies) {
  const auto lies = [&](auto valueOf) {
    const auto [lowest, highest] = std::ranges::minmax(hull, {}, valueOf);
    return valueOf(lowest) <= valueOf(row) && valueOf(row) <= valueOf(highest);
  };
  if (!lies([](const ControllerRow& each) { return each.version; })) return true;
  if (!lies([](const ControllerRow& each) { return each.boardRevision; })) return true;
  for (std::size_t i = 0; i < row.values.size(); ++i) {
    const auto name = Schema.names[i];
    if (!identifies && (name == "Ridge UID" || name == "Port UUID")) continue;
    const auto has = [&](std::uint32_t value) {
      return std::ranges::any_of(hull, [&](const auto& each) { return each.values[i] == value; });
    };
    if (!has(0) && !has(row.values[i])) return true;
  }
  return false;
}

bool HullExcludesAll(const RowList& hull, const RowList& excepted, bool identifies) {
  return std::ranges::all_of(excepted,
                             [&](const auto& row) { return HullExcludes(hull, row, identifies); });
}

// The fewest parts of the rows from `next` on, each of which has a hull without an excepted row.
std::size_t FewestParts(const RowList& rows, std::size_t next, std::vector<RowList>& parts,
                        const RowList& excepted, bool identifies) {
  if (next == rows.size()) {
    const bool isPossible = std::ranges::all_of(
        parts, [&](const auto& part) { return HullExcludesAll(part, excepted, identifies); });
    return isPossible ? parts.size() : rows.size() + 1;
  }
  auto fewest = rows.size() + 1;
  for (std::size_t i = 0; i <= parts.size(); ++i) {
    const bool isNew = i == parts.size();
    if (isNew) parts.emplace_back();
    parts[i].push_back(rows[next]);
    fewest = std::min(fewest, FewestParts(rows, next + 1, parts, excepted, identifies));
    parts[i].pop_back();
    if (isNew) {
      parts.pop_back();
      break;
    }
  }
  return fewest;
}

// No smaller set of constraints, and no preferred one of the same size, excludes them all.
void ExpectFewestConstraints(Selector selector, const RowList& excepted) {
  const auto chosen = selector.chosen;
  const auto excludesAll = [&] {
    return std::ranges::none_of(excepted, [&](const auto& row) { return selector.Accepts(row); });
  };
  EXPECT_TRUE(excludesAll());
  for (std::size_t i = 0; i < Schema.names.size(); ++i) {
    if ((chosen >> i & 1) == 0) continue;
    selector.chosen = chosen & ~(ConstraintSet{1} << i);
    EXPECT_FALSE(excludesAll()) << Schema.names[i];
  }
}

void ExpectSeparation(const RowList& wanted, const RowList& excepted) {
  const auto [selectors, indistinguishable, isTooLarge] = FindSelectors(Schema, wanted, excepted);
  ASSERT_FALSE(isTooLarge);
  RowList models;
  RowList pieces;
  std::size_t hopeless = 0;
  for (const auto& row : wanted) {
    const bool isModel = HullExcludesAll({row}, excepted, false);
    (isModel ? models : pieces).push_back(row);
    if (!isModel && !HullExcludesAll({row}, excepted, true)) ++hopeless;
  }
  ASSERT_EQ(indistinguishable.size(), hopeless);
  if (hopeless > 0) {
    EXPECT_TRUE(selectors.empty());
    return;
  }
  for (const auto& row : wanted) {
    EXPECT_TRUE(
        std::ranges::any_of(selectors, [&](const auto& each) { return each.Accepts(row); }));
  }
  for (const auto& selector : selectors) ExpectFewestConstraints(selector, excepted);
  if (wanted.size() > 6) return;
  std::vector<RowList> parts;
  const auto fewest = FewestParts(models, 0, parts, excepted, false) +
                      FewestParts(pieces, 0, parts, excepted, true);
  EXPECT_LE(selectors.size(), fewest);
}

TEST(Selectors, OfFewControllersAreAsFewAsPossible) {
  RandomChoice random(11);
  for (int i = 0; i < 400; ++i) {
    const auto wanted = RandomRows(1 + random.Below(6), random);
    ExpectSeparation(wanted, RandomRows(random.Below(6), random));
  }
}

TEST(Selectors, OfManyControllersAcceptThemAllAndNoExceptedOne) {
  RandomChoice random(12);
  for (int i = 0; i < 60; ++i) {
    RowList all = RandomRows(60, random);
    std::ranges::sort(all);
    all.erase(std::unique(all.begin(), all.end()), all.end());
    random.Shuffle(all);
    const auto middle = all.begin() + 20 + static_cast<std::ptrdiff_t>(random.Below(20));
    ExpectSeparation({all.begin(), middle}, {middle, all.end()});
  }
}

// None of many selectors is needless: each is the only one for some controller.
TEST(Selectors, OfManyControllersAreAllNeeded) {
  RandomChoice random(13);
  for (int i = 0; i < 60; ++i) {
    RowList wanted;
    RowList excepted;
    for (int j = 0; j < 40; ++j) {
      auto row = RandomRow(random);
      for (const char* key : {"Device Model Name", "Port Address"}) {
        auto& value = row.values[ColumnOf(key)];
        value = std::max(value, 1u);
      }
      (random.OnceIn(3) ? excepted : wanted).push_back(row);
    }
    const auto contains = [&](const ControllerRow& row) {
      return std::ranges::find(excepted, row) != excepted.end();
    };
    std::erase_if(wanted, contains);
    const auto selectors = FindSelectors(Schema, wanted, excepted).selectors;
    for (const auto& selector : selectors) {
      EXPECT_TRUE(std::ranges::any_of(wanted, [&](const ControllerRow& row) {
        return selector.Accepts(row) && std::ranges::count_if(selectors, [&](const auto& each) {
                                          return each.Accepts(row);
                                        }) == 1;
      }));
    }
  }
}

}  // namespace
}  // namespace fernwick::lab
