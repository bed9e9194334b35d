// How many personalities are compared, and that a limit is reported.

#include "lab/lint/candidates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lab/lint/linted.h"
#include "testing/dictionaries.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::Kept;
using testing::List;
using testing::With;

const Record Both = {{"Version", 200},
                     {"Port Silicon Vendor ID", 1},
                     {"Port Silicon Device ID", 2},
                     {"Port Silicon Revision", 3},
                     {"Ridge Silicon Vendor ID", 4},
                     {"Ridge Silicon Device ID", 5},
                     {"Ridge Silicon Revision", 6},
                     {"Firmware", "a.bin"},
                     {"Priority", 20}};

// The messages of what is found in so many personalities of "Thunderbolt", with what `make` returns
// for each index.
template <typename Make>
std::vector<std::string> MessagesOf(int count, Make make) {
  std::vector<PropertyValue> personalities;
  for (int i = 0; i < count; ++i) personalities.emplace_back(Dict(With(Both, make(i))));
  std::vector<std::string> messages;
  const testing::TemporaryDirectory directory;
  for (const auto& row : LintedRows(directory.Path(), Dict({{"Thunderbolt", List(personalities)}}),
                                    {"a.bin", "b.bin"})) {
    messages.push_back(row.message + " [" + std::string(row.rule->id) + "]");
  }
  return messages;
}

using Messages = std::vector<std::string>;

TEST(Limits, OfComparedNvramSettingsAreReported) {
  const auto forModel = [](int i) {
    return Record{{"Device Model ID", i}, {"SetNVRAM", Dict({{"staged", i}})}};
  };
  EXPECT_EQ(MessagesOf(257, forModel), Messages{});
  EXPECT_EQ(MessagesOf(258, forModel),
            Messages{"\"staged\" is used 258 times, and each use was compared with 256 others only "
                     "[overlap-not-examined]"});
}

TEST(Limits, OfNvramSettingsDoNotCountThoseOfTheSameValue) {
  const auto forModel = [](int i) {
    return Record{{"Device Model ID", i}, {"SetNVRAM", Dict({{"staged", 1}})}};
  };
  EXPECT_EQ(MessagesOf(300, forModel), Messages{});
}

TEST(Limits, OfComparedListsAreReported) {
  const auto withCommonValue = [](int i) {
    return Record{{"Device Model ID", List({0, i + 1})},
                  {"Existing Min Version", 199 - i},
                  {"Firmware", i == 0 ? "b.bin" : "a.bin"}};
  };
  EXPECT_EQ(MessagesOf(129, withCommonValue), Messages{});
  EXPECT_EQ(
      MessagesOf(130, withCommonValue),
      Messages{"1 personality of \"Thunderbolt\" was compared with 256 others only to find out "
               "whether the order decides which image a controller gets [overlap-not-examined]"});
  EXPECT_EQ(MessagesOf(131, withCommonValue).at(0).substr(0, 37),
            "2 personalities of \"Thunderbolt\" were");
}

class Index : public ::testing::Test {
 protected:
  // What a personality accepts that is for these model IDs; any when there are none.
  Acceptance Of(const std::vector<PropertyValue>& models) {
    Acceptance acceptance;
    acceptance.sets.resize(SetKeys().size());
    std::vector<const PropertyValue*> values;
    kept_.push_back(List(models));
    for (const auto& model : kept_.back()) values.push_back(&model);
    if (!models.empty()) acceptance.sets[SetIndexOf("Device Model ID")] = sets_.SetOf(values);
    return acceptance;
  }

  // The numbers that a search offers; the last one is wanted.
  static std::vector<std::size_t> Offered(const AcceptanceIndex& index,
                                          const Acceptance& acceptance, bool isCovering) {
    std::vector<std::size_t> offered;
    const auto collect = [&](std::size_t number) {
      offered.push_back(number);
      return false;
    };
    const auto found = isCovering ? index.FindCovering(acceptance, collect)
                                  : index.FindOverlapping(acceptance, collect);
    EXPECT_EQ(found.personality, npos);
    EXPECT_FALSE(found.isCutShort);
    return offered;
  }

  ValueSets sets_;
  std::vector<Array> kept_;
};

using Numbers = std::vector<std::size_t>;

TEST_F(Index, OffersThoseThatMayCover) {
  AcceptanceIndex index;
  index.Add(Of({1, 2}), 0);
  index.Add(Of({2, 3}), 1);
  index.Add(Of({}), 2);
  EXPECT_EQ(Offered(index, Of({1}), true), (Numbers{0, 2}));
  EXPECT_EQ(Offered(index, Of({4}), true), (Numbers{2}));
  EXPECT_EQ(Offered(index, Of({}), true), (Numbers{2}));
}

TEST_F(Index, OffersThoseThatMayOverlap) {
  AcceptanceIndex index;
  index.Add(Of({1, 2}), 0);
  index.Add(Of({2, 3}), 1);
  index.Add(Of({}), 2);
  index.Add(Of({5}), 3);
  EXPECT_EQ(Offered(index, Of({3, 4}), false), (Numbers{1, 2}));
  EXPECT_EQ(Offered(index, Of({}), false), (Numbers{0, 1, 2, 3}));
}

}  // namespace
}  // namespace fernwick::lab
