#include "lab/support/json_values.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;

std::string RowOf(const PropertyValue& value) {
  return PrintJsonRow(ToJson(value));
}

TEST(JsonValues, KeepIntegersExact) {
  EXPECT_EQ(RowOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615\n");
  EXPECT_EQ(RowOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808\n");
  EXPECT_EQ(RowOf(0), "0\n");
}

TEST(JsonValues, DistinguishRealsFromIntegers) {
  EXPECT_EQ(RowOf(3.0), "3.0\n");
  EXPECT_EQ(RowOf(41.050000001), "41.050000001\n");
  EXPECT_EQ(RowOf(1e300), "1e+300\n");
  EXPECT_EQ(RowOf(-0.0), "-0.0\n");
}

TEST(JsonValues, SpellWhatJsonLacks) {
  EXPECT_EQ(RowOf(std::numeric_limits<double>::quiet_NaN()), "{\"real\":\"nan\"}\n");
  EXPECT_EQ(RowOf(-std::numeric_limits<double>::infinity()), "{\"real\":\"-inf\"}\n");
  EXPECT_EQ(RowOf(testing::Bytes("Ze\xFF")), "{\"data\":\"5a65ff\"}\n");
  EXPECT_EQ(RowOf(Date{0}), "{\"date\":\"1970-01-01T00:00:00Z\"}\n");
}

TEST(JsonValues, KeepTheOrderOfKeys) {
  EXPECT_EQ(RowOf(Dict({{"b", true}, {"a", List({"x", List({}), Dict({})})}})),
            "{\"b\":true,\"a\":[\"x\",[],{}]}\n");
}

TEST(JsonValues, OfAnAbsentValueIsNull) {
  EXPECT_EQ(PrintJsonRow(ToJson(static_cast<const PropertyValue*>(nullptr))), "null\n");
}

TEST(JsonValues, ArePrintedByTwoBlanksALevel) {
  EXPECT_EQ(PrintJson(ToJson(Dict({{"a", List({1})}}))), "{\n  \"a\": [\n    1\n  ]\n}\n");
}

TEST(JsonValues, EscapeControlCharactersAndReplaceWhatIsNotUtf8) {
  EXPECT_EQ(PrintJsonRow(Json("\x1B[31m\xFF")), "\"\\u001b[31m\xEF\xBF\xBD\"\n");
  EXPECT_EQ(PrintJsonRow(Json("\x7F \xC2\x80\xC2\x9F \xC2\xA0\xC3\x80\x7F")),
            "\"\\u007f \\u0080\\u009f \xC2\xA0\xC3\x80\\u007f\"\n");
}

TEST(JsonValues, EscapeWhatChangesTheDirectionOrTheLinesOfAText) {
  EXPECT_EQ(PrintJsonRow({{"a\u202E", "\u2028b\u00E9\u202F\u2069"}}),
            "{\"a\\u202e\":\"\\u2028b\u00E9\u202F\\u2069\"}\n");
}

// As a document without a bound on its indentation would be.
TEST(JsonValues, ArePrintedAsTheLibraryDoes) {
  const Json json = {{"a", {1, -2.5, "x\ty", nullptr, true}},
                     {"empty", {{"array", Json::array()}, {"object", Json::object()}}}};
  EXPECT_EQ(PrintJson(json), json.dump(2) + "\n");
  EXPECT_EQ(PrintJsonRow(json), json.dump() + "\n");
}

TEST(JsonValues, OfAPropertyListArePrintedWithoutBuildingThem) {
  const auto value = testing::Dict({{"a", testing::List({1, "x", testing::Bytes("Z")})},
                                    {"b\u202E", Array()},
                                    {"c", Dictionary()}});
  std::string text;
  PrintJsonAt(0, value, [&](std::string_view part) { text += part; });
  EXPECT_EQ(text + "\n", PrintJson(ToJson(value)));
}

TEST(JsonValues, ThatAreDeepHaveABoundedIndentation) {
  std::string text;
  PrintJsonAt(1, testing::NestedArrays(40, 1), [&](std::string_view part) { text += part; });
  EXPECT_NE(text.find("\n" + std::string(64, ' ') + "1\n"), std::string::npos);
  EXPECT_EQ(text.find(std::string(65, ' ')), std::string::npos);
}

TEST(JsonValues, ThatAreLongArePrintedInParts) {
  std::size_t parts = 0;
  PrintJsonAt(0, Json(std::vector<int>(100'000, 1)), [&](std::string_view part) {
    EXPECT_LT(part.size(), 70'000u);
    ++parts;
  });
  EXPECT_GT(parts, 3u);
}

}  // namespace
}  // namespace fernwick::lab
