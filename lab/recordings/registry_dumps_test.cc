#include "lab/recordings/registry_dumps.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "registry/recording_reader.h"
#include "testing/property_values.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;

const DumpKeys Keys = {.name = "name", .children = "children", .className = "class", .id = "id"};

// The recording of planes "A", "B" and so on. An error as its message, after the name of the plane.
Result<PropertyList, std::string> Recorded(const std::vector<PropertyValue>& roots,
                                           const DumpKeys& keys = Keys) {
  std::vector<DumpedPlane> planes;
  for (const auto& root : roots) {
    const auto number = static_cast<char>('A' + planes.size());
    planes.push_back({std::string(1, number), PropertyList{Arena(), root}});
  }
  auto recorded = RecordDumps(planes, keys, std::nullopt);
  if (!recorded) return planes[recorded.Error().plane].name + ": " + recorded.Error().message;
  return *std::move(recorded);
}

std::string ErrorOf(const std::vector<PropertyValue>& roots) {
  const auto recorded = Recorded(roots);
  return recorded ? "" : recorded.Error();
}

PropertyValue Named(std::string_view name) {
  return Dict({{"name", name}});
}

PropertyValue WithId(std::string_view name, PropertyValue id) {
  return Dict({{"name", name}, {"id", id}});
}

PropertyValue WithChildren(std::vector<PropertyValue> children) {
  return Dict({{"children", List(children)}});
}

TEST(RecordDumps, MakesNodesOfEntries) {
  const auto root =
      Dict({{"speed", 3},
            {"children", List({Dict({{"class", "Bridge"},
                                     {"name", "a b"},
                                     {"made", testing::DateOf("2026-11-20T00:00:00Z")},
                                     {"nothing", Dict({})}}),
                               Named("c")})},
            {"name", "top"}});
  const auto recorded = Recorded({root});
  ASSERT_TRUE(recorded) << recorded.Error();
  const auto expected =
      Dict({{"Name", "top"},
            {"Properties", Dict({{"speed", 3}})},
            {"Children",
             List({Dict({{"Name", "a b"},
                         {"Class", "Bridge"},
                         {"Properties", Dict({{"made", testing::DateOf("2026-11-20T00:00:00Z")},
                                              {"nothing", Dict({})}})}}),
                   Dict({{"Name", "c"}})})}});
  EXPECT_EQ(recorded->value,
            PropertyValue(Dict({{"Recording Version", 1}, {"Planes", Dict({{"A", expected}})}})));
}

TEST(RecordDumps, HasTheClassesThatItIsGiven) {
  const std::vector<DumpedPlane> none;
  const auto recorded = RecordDumps(none, Keys, PropertyValue(Dict({{"Bridge", "Device"}})));
  ASSERT_TRUE(recorded);
  EXPECT_EQ(recorded->value, PropertyValue(Dict({{"Recording Version", 1},
                                                 {"Classes", Dict({{"Bridge", "Device"}})},
                                                 {"Planes", Dict({})}})));
}

TEST(RecordDumps, LinksEntriesOfOneIdentity) {
  const auto first = WithChildren({Dict({{"name", "a"}, {"id", 7}, {"x", 1}}), WithId("b", "own")});
  const auto second = WithChildren({Dict({{"name", "renamed/"},
                                          {"id", "7"},
                                          {"class", ""},
                                          {"x", 2},
                                          {"children", List({WithId("c", "new")})}})});
  const auto third = Dict({{"id", "new"}});
  const auto recorded = Recorded({first, second, third});
  ASSERT_TRUE(recorded) << recorded.Error();
  const auto planes = Dict(
      {{"A", Dict({{"Children",
                    List({Dict({{"Name", "a"}, {"Properties", Dict({{"x", 1}})}, {"ID", "7"}}),
                          Dict({{"Name", "b"}})})}})},
       {"B", Dict({{"Children",
                    List({Dict({{"Link", "7"},
                                {"Children", List({Dict({{"Name", "c"}, {"ID", "new"}})})}})})}})},
       {"C", Dict({{"Link", "new"}})}});
  EXPECT_EQ(recorded->value, PropertyValue(Dict({{"Recording Version", 1}, {"Planes", planes}})));
}

TEST(RecordDumps, WithoutTheKeyOfIdentitiesLinksNothing) {
  const auto root = WithChildren({WithId("a", 7), WithId("a", 7)});
  const auto recorded = Recorded({root, root}, {.name = "name", .children = "children"});
  ASSERT_TRUE(recorded) << recorded.Error();
  const auto node = Dict({{"Name", "a"}, {"Properties", Dict({{"id", 7}})}});
  const auto plane = Dict({{"Children", List({node, node})}});
  EXPECT_EQ(recorded->value, PropertyValue(Dict({{"Recording Version", 1},
                                                 {"Planes", Dict({{"A", plane}, {"B", plane}})}})));
}

TEST(RecordDumps, RefusesWhatIsNoEntryWithThePathToIt) {
  EXPECT_EQ(ErrorOf({List({})}), "A: not a dictionary");
  EXPECT_EQ(ErrorOf({WithChildren({Named("a"), "b"})}), "A: children[1]: not a dictionary");
  EXPECT_EQ(ErrorOf({WithChildren({}), Dict({{"children", "x"}})}),
            "B: \"children\" is not an array");
}

TEST(RecordDumps, RefusesNames) {
  EXPECT_EQ(ErrorOf({Dict({})}), "");
  EXPECT_EQ(ErrorOf({WithChildren({Dict({})})}), "A: children[0]: \"name\" is missing");
  EXPECT_EQ(ErrorOf({WithChildren({Dict({{"name", 1}})})}),
            "A: children[0]: \"name\" is not a string");
  EXPECT_EQ(ErrorOf({Named("")}), "A: \"name\" is empty");
  const auto inner = Dict({{"name", "a"}, {"children", List({Named("b"), Named("c/d")})}});
  EXPECT_EQ(ErrorOf({WithChildren({Named("x"), inner})}),
            "A: children[1]/children[1]: \"name\" is \"c/d\", with a \"/\"");
}

TEST(RecordDumps, RefusesClasses) {
  EXPECT_EQ(ErrorOf({Dict({{"class", 1}})}), "A: \"class\" is not a string");
  EXPECT_EQ(ErrorOf({Dict({{"class", ""}})}), "A: \"class\" is empty");
}

TEST(RecordDumps, RefusesIdentities) {
  EXPECT_EQ(ErrorOf({Dict({{"id", true}})}), "A: \"id\" is neither a string nor an integer");
  EXPECT_EQ(ErrorOf({Dict({{"id", ""}})}), "A: \"id\" is empty");
}

TEST(RecordDumps, RefusesAnEntryTwiceInAPlane) {
  const auto twice = WithChildren({WithId("a", 7), WithId("b", 8), WithId("c", "7")});
  EXPECT_EQ(ErrorOf({twice}),
            "A: children[2]: the entry with the identity \"7\" is in this plane twice");
  EXPECT_EQ(ErrorOf({WithId("a", 7), twice}),
            "B: children[2]: the entry with the identity \"7\" is in this plane twice");
}

PropertyValue Deep(std::size_t levels, PropertyValue innermost) {
  for (std::size_t i = 0; i < levels; ++i) {
    innermost = Dict({{"name", "d"}, {"children", List({innermost})}});
  }
  return innermost;
}

// What fits exactly can be read again.
TEST(RecordDumps, RefusesWhatWouldBeNestedTooDeeply) {
  EXPECT_EQ(ErrorOf({Deep(254, Named("x"))}), "");
  EXPECT_TRUE(ErrorOf({Deep(255, Named("x"))})
                  .ends_with("children[0]: in a recording the entry would be nested too deeply"));
  const auto with = [](std::size_t arrays) {
    return Dict({{"name", "x"}, {"deep", testing::NestedArrays(arrays, Dict({}))}});
  };
  EXPECT_EQ(ErrorOf({with(507)}), "");
  EXPECT_EQ(ErrorOf({with(508)}), "A: in a recording \"deep\" would be nested too deeply");
  for (const PropertyValue& root : std::initializer_list<PropertyValue>{
           Deep(254, Dict({{"name", "x"}, {"p", 1}})), with(507)}) {
    const auto recorded = Recorded({root});
    ASSERT_TRUE(recorded);
    const auto read = ReadRecording(WriteXmlPropertyList(recorded->value));
    EXPECT_TRUE(read) << read.Error().message;
  }
}

}  // namespace
}  // namespace fernwick::lab
