#include "value/textual_dump.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::List;

struct DumpRow {
  PropertyValue value;
  std::string text;
};

void ExpectDumps(std::initializer_list<DumpRow> rows) {
  for (const auto& [value, text] : rows) EXPECT_EQ(DumpText(value), text);
}

TEST(TextualDump, NumbersBooleansAndDatesAreBare) {
  ExpectDumps({
      {0, "0"},
      {-5, "-5"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
      {3.0, "3"},
      {1e5, "1e+05"},
      {-0.0, "-0"},
      {0.1, "0.1"},
      {std::numeric_limits<double>::infinity(), "inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
      {-std::numeric_limits<double>::quiet_NaN(), "-nan"},
      {true, "true"},
      {false, "false"},
      {DateOf("2026-11-20T00:00:00Z"), "2026-11-20T00:00:00Z"},
      {Date{-1}, "1969-12-31T23:59:59Z"},
      {Date{-62'135'596'800}, "0001-01-01T00:00:00Z"},
  });
}

TEST(TextualDump, StringsAreInDoubleQuotes) {
  ExpectDumps({
      {"", "\"\""},
      {"a b", "\"a b\""},
      {"\"a\\b\"", "\"\\\"a\\\\b\\\"\""},
      {"a\nb\tc\rd", "\"a\\nb\\tc\\rd\""},
      {"it's <&> /* */", "\"it's <&> /* */\""},
      {"\xC3\xA4\xF0\x9F\x98\x80", "\"\xC3\xA4\xF0\x9F\x98\x80\""},
      {"\xC2\xA0\xEF\xBF\xBF", "\"\xC2\xA0\xEF\xBF\xBF\""},
  });
}

TEST(TextualDump, OtherControlCharactersAreOctal) {
  ExpectDumps({
      {std::string_view("\0", 1), "\"\\000\""},
      {std::string_view("\0"
                        "7",
                        2),
       "\"\\0007\""},
      {"\x01\x07\x08\x0B\x0C\x1B\x1F", "\"\\001\\007\\010\\013\\014\\033\\037\""},
      {"\x7F", "\"\\177\""},
      {"\xC2\x80\xC2\x85\xC2\x9F", "\"\\200\\205\\237\""},
  });
}

TEST(TextualDump, TextThatIsNotUtf8IsReplaced) {
  ExpectDumps({{"a\xFFz", "\"a\xEF\xBF\xBDz\""}, {"\xC3", "\"\xEF\xBF\xBD\""}});
}

TEST(TextualDump, DataHasABlankAfterEveryFourBytes) {
  ExpectDumps({
      {Bytes(""), "<>"},
      {Bytes("\xAB"), "<ab>"},
      {Bytes("Zed-"), "<5a65642d>"},
      {Bytes("Zed-42"), "<5a65642d 3432>"},
      {Bytes({"Zed-42\0", 7}), "<5a65642d 343200>"},
      {Bytes({"\0\1\2\3\4\5\6\7", 8}), "<00010203 04050607>"},
      {Bytes({"\0\1\2\3\4\5\6\7\x8", 9}), "<00010203 04050607 08>"},
  });
}

TEST(TextualDump, ContainersAreIndentedByFourBlanksALevel) {
  ExpectDumps({
      {Array(), "()"},
      {Dictionary(), "{}"},
      {List({1}), "(\n    1\n)"},
      {List({1, "a", true}), "(\n    1,\n    \"a\",\n    true\n)"},
      {Dict({{"b", 1}, {"a", 2}}), "{\n    \"b\" = 1;\n    \"a\" = 2;\n}"},
      {Dict({{"a \"b\"\n", "c"}}), "{\n    \"a \\\"b\\\"\\n\" = \"c\";\n}"},
      {List({Array(), Dictionary()}), "(\n    (),\n    {}\n)"},
      {Dict({{"a", List({Dict({{"b", Bytes("c")}}), 1})}, {"d", Dictionary()}}),
       "{\n"
       "    \"a\" = (\n"
       "        {\n"
       "            \"b\" = <63>;\n"
       "        },\n"
       "        1\n"
       "    );\n"
       "    \"d\" = {};\n"
       "}"},
  });
}

TEST(TextualDump, IsPassedOnInPartsOfWholeLines) {
  std::vector<PropertyValue> texts(100, PropertyValue(testing::Kept(std::string(1000, 'x'))));
  const PropertyValue value = Array(std::span<const PropertyValue>(texts));
  std::vector<std::string> parts;
  DumpText(value, {}, [&](std::string_view part) { parts.emplace_back(part); });
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_TRUE(parts[0].ends_with("\n"));
  EXPECT_EQ(parts[0] + parts[1], DumpText(value));
}

TEST(TextualDump, IsIndentedByALayout) {
  std::string text;
  DumpText(testing::NestedArrays(3, Array()), {.indentation = 2, .maxLevels = 1},
           [&](std::string_view part) { text += part; });
  EXPECT_EQ(text, "(\n      (\n      (\n      ()\n      )\n      )\n  )");
}

}  // namespace
}  // namespace fernwick
