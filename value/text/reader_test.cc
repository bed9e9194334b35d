#include "value/text/reader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "testing/inputs/corruption.h"
#include "testing/inputs/parse_tables.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Dict;
using testing::ErrorOf;
using testing::ExpectAccepted;
using testing::ExpectRejected;
using testing::List;
using testing::NestedArrays;
using testing::RejectedRow;
using testing::Repeated;
using testing::Truncated;

Result<PropertyValue> Parse(std::string text) {
  auto& arena = testing::ValueArena();
  return ParseTextPropertyList(DecodeSource(arena.Adopt(std::move(text)), arena), arena);
}

TEST(TextPropertyList, AcceptsStrings) {
  ExpectAccepted(Parse, {
                            {"\"\"", ""},
                            {"\"a string\"", "a string"},
                            {"'a string'", "a string"},
                            {" /* a */ \"b\" // c", "b"},
                            {"(a)", List({"a"})},
                            {"(\"tab\\t\\101\\U00e4\")", List({"tab\tA\xC3\xA4"})},
                            {"('\xC3\xA4')", List({"\xC3\xA4"})},
                            {"(/usr/lib//x)", List({"/usr/lib//x"})},
                            {"(-1.5)", List({"-1.5"})},
                            {"(YES)", List({"YES"})},
                        });
}

TEST(TextPropertyList, AcceptsData) {
  ExpectAccepted(Parse, {
                            {"<>", Bytes("")},
                            {"<66 6f6F>", Bytes("foo")},
                            {"( <66>, < > )", List({Bytes("f"), Bytes("")})},
                        });
}

TEST(TextPropertyList, AcceptsArrays) {
  ExpectAccepted(Parse, {
                            {"()", Array()},
                            {"( )", Array()},
                            {"(a,b)", List({"a", "b"})},
                            {"( a , \"b\" , )", List({"a", "b"})},
                            {"((),(a),{})", List({Array(), List({"a"}), Dictionary()})},
                            {"(/* a */b /**/,//c\nd)//e", List({"b", "d"})},
                        });
}

TEST(TextPropertyList, AcceptsDictionaries) {
  ExpectAccepted(Parse, {
                            {"{}", Dictionary()},
                            {"{ /* nothing */ }", Dictionary()},
                            {"{a=b;}", Dict({{"a", "b"}})},
                            {"{a=b}", Dict({{"a", "b"}})},
                            {"{ a = b ; c = d }", Dict({{"a", "b"}, {"c", "d"}})},
                            {"{\"a b\"='c';}", Dict({{"a b", "c"}})},
                            {"{b=();a={c=<00>;};}",
                             Dict({{"b", Array()}, {"a", Dict({{"c", Bytes({"\0", 1})}})}})},
                            {"{a=b;c=d;a=e;}", Dict({{"a", "e"}, {"c", "d"}})},
                            {"{a//=b/c;}", Dict({{"a//", "b/c"}})},
                            {"{a // b\n=/* c */d;//\n}", Dict({{"a", "d"}})},
                            {"{\"\"=\"\";}", Dict({{"", ""}})},
                        });
}

TEST(TextPropertyList, AcceptsBarePairsAtTheTopLevel) {
  ExpectAccepted(Parse, {
                            {"a=b;", Dict({{"a", "b"}})},
                            {"a=b", Dict({{"a", "b"}})},
                            {" \"a\" = b;\n'c' = (d);\n", Dict({{"a", "b"}, {"c", List({"d"})}})},
                            {"// a\nb = c; // d\n/* e */", Dict({{"b", "c"}})},
                            {"a=b;a=c;", Dict({{"a", "c"}})},
                        });
}

TEST(TextPropertyList, RejectsTextWithoutAValue) {
  ExpectRejected(Parse,
                 {
                     {"", "line 1, column 1: nothing but white space and comments"},
                     {" \n\t", "line 2, column 2: nothing but white space and comments"},
                     {"// a\n/* b */", "line 2, column 8: nothing but white space and comments"},
                     {"\xEF\xBB\xBF", "line 1, column 1: nothing but white space and comments"},
                     {"\xFE\xFF", "line 1, column 1: nothing but white space and comments"},
                     {"/* a", "line 1, column 1: a comment does not end"},
                 });
}

TEST(TextPropertyList, RejectsOneBareString) {
  const std::string error = "line 1, column 1: one unquoted string is not a property list";
  ExpectRejected(Parse,
                 {
                     {"a", error},
                     {"bplist", error},
                     {"a // b", error},
                     {"a b", "line 1, column 3: \"=\" was expected"},
                     {"a;", "line 1, column 2: \"=\" was expected"},
                     {"a, b", "line 1, column 2: \"=\" was expected"},
                     {" \n a", "line 2, column 2: one unquoted string is not a property list"},
                 });
}

TEST(TextPropertyList, RejectsWhatFollowsTheValue) {
  ExpectRejected(Parse, {
                            {"\"a\" b", "line 1, column 5: something follows the value"},
                            {"\"a\";", "line 1, column 4: something follows the value"},
                            {"()()", "line 1, column 3: something follows the value"},
                            {"{};", "line 1, column 3: something follows the value"},
                            {"<>\n,", "line 2, column 1: something follows the value"},
                            {"(a)=b;", "line 1, column 4: something follows the value"},
                            {"a=b;}", "line 1, column 5: something follows the value"},
                            {"a=b}", "line 1, column 4: something follows the value"},
                            {"() /* a", "line 1, column 4: a comment does not end"},
                            {"a=b; /* a", "line 1, column 6: a comment does not end"},
                        });
}

TEST(TextPropertyList, RejectsWhatBeginsNoValue) {
  ExpectRejected(Parse, {
                            {"=", "line 1, column 1: a value was expected"},
                            {")", "line 1, column 1: a value was expected"},
                            {"}", "line 1, column 1: a value was expected"},
                            {"@\"a\"", "line 1, column 1: a value was expected"},
                            {"\xC3\xA4", "line 1, column 1: a value was expected"},
                            {"*/", "line 1, column 1: a value was expected"},
                            {{"\0", 1}, "line 1, column 1: a value was expected"},
                        });
}

TEST(TextPropertyList, RejectsACommentThatDoesNotEndWhereverItIs) {
  const auto endless = [](const std::string& before) {
    return RejectedRow{before + "/* ", "line 1, column " + std::to_string(before.size() + 1) +
                                           ": a comment does not end"};
  };
  ExpectRejected(Parse, {
                            endless(""),
                            endless("a "),
                            endless("\"a\""),
                            endless("("),
                            endless("(<00>"),
                            endless("(a,"),
                            endless("{"),
                            endless("{\"a\""),
                            endless("{a="),
                            endless("{a=\"b\""),
                            endless("{a=b;"),
                            endless("{a=b; \"c\""),
                        });
}

TEST(TextPropertyList, RejectsMalformedArrays) {
  const std::string separator = "\",\" or \")\" was expected";
  ExpectRejected(Parse, {
                            {"(", "line 1, column 1: an array does not end"},
                            {"\n (a", "line 2, column 2: an array does not end"},
                            {"(a,", "line 1, column 1: an array does not end"},
                            {"((a)", "line 1, column 1: an array does not end"},
                            {"(a b)", "line 1, column 4: " + separator},
                            {"(a;b)", "line 1, column 3: " + separator},
                            {"(a}", "line 1, column 3: " + separator},
                            {"(\"a\"\"b\")", "line 1, column 5: " + separator},
                            {"(a/*b*/)", "line 1, column 4: " + separator},
                            {"(,)", "line 1, column 2: a value was expected"},
                            {"(a,,b)", "line 1, column 4: a value was expected"},
                            {"(a=b)", "line 1, column 3: " + separator},
                            {"(\xC3\xA4, a)", "line 1, column 2: a value was expected"},
                        });
}

TEST(TextPropertyList, RejectsMalformedDictionaries) {
  ExpectRejected(Parse, {
                            {"{", "line 1, column 1: a dictionary does not end"},
                            {"{a=b", "line 1, column 1: a dictionary does not end"},
                            {"{a=b;", "line 1, column 1: a dictionary does not end"},
                            {"{a={b=c;}", "line 1, column 1: a dictionary does not end"},
                            {"{a}", "line 1, column 3: \"=\" was expected"},
                            {"{a;}", "line 1, column 3: \"=\" was expected"},
                            {"{a:b;}", "line 1, column 5: \"=\" was expected"},
                            {"{a b=c;}", "line 1, column 4: \"=\" was expected"},
                            {"{a// b\n=c;}", "line 1, column 6: \"=\" was expected"},
                            {"{a", "line 1, column 3: \"=\" was expected"},
                            {"{a=}", "line 1, column 4: a value was expected"},
                            {"{a=;}", "line 1, column 4: a value was expected"},
                            {"{a=", "line 1, column 4: a value was expected"},
                            {"{a=b c=d;}", "line 1, column 6: \";\" was expected"},
                            {"{a=b,c=d;}", "line 1, column 5: \";\" was expected"},
                            {"{a=b)", "line 1, column 5: \";\" was expected"},
                            {"{;}", "line 1, column 2: a key was expected"},
                            {"{a=b;;}", "line 1, column 6: a key was expected"},
                            {"{=b;}", "line 1, column 2: a key was expected"},
                            {"{()=b;}", "line 1, column 2: a key was expected"},
                            {"{<00>=b;}", "line 1, column 2: a key was expected"},
                        });
}

TEST(TextPropertyList, RejectsMalformedBarePairs) {
  ExpectRejected(Parse, {
                            {"a=", "line 1, column 3: a value was expected"},
                            {"a=;", "line 1, column 3: a value was expected"},
                            {"a=b c=d", "line 1, column 5: \";\" was expected"},
                            {"a=b;c", "line 1, column 6: \"=\" was expected"},
                            {"a=b;;", "line 1, column 5: a key was expected"},
                            {"a=b;(c)", "line 1, column 5: a key was expected"},
                        });
}

TEST(TextPropertyList, RejectsMalformedStringsAndData) {
  ExpectRejected(
      Parse,
      {
          {"\"a", "line 1, column 1: a quoted string does not end"},
          {"(\"\\400\")", "line 1, column 3: an octal escape is greater than \\377"},
          {"(\"\\Ud83d\")", "line 1, column 3: a \\U escape is half of a surrogate pair"},
          {"(\n \"\\0\")", "line 2, column 2: a string contains a character that XML cannot carry"},
          {"{\"\x01\"=a;}",
           "line 1, column 2: a string contains a character that XML cannot carry"},
          {"<0>", "line 1, column 1: data has an odd number of digits"},
          {"<0g>", "line 1, column 3: data contains something other than hexadecimal digits"},
          {"<00", "line 1, column 1: data does not end"},
          {"(<*I5>)", "line 1, column 3: data contains something other than hexadecimal digits"},
          {"<*BY>", "line 1, column 2: data contains something other than hexadecimal digits"},
      });
}

TEST(TextPropertyList, ReadsUtf16WithAMark) {
  ExpectAccepted(Parse, {
                            {{"\xFE\xFF\0(\0\"\x20\xAC\0\"\0)", 12}, List({"\xE2\x82\xAC"})},
                            {{"\xFF\xFE(\0a\0)\0", 8}, List({"a"})},
                            {"\xEF\xBB\xBF(a)", List({"a"})},
                        });
}

TEST(TextPropertyList, RejectsOtherEncodings) {
  ExpectRejected(Parse,
                 {
                     {"(\"\xE4\")", "line 1, column 3: the text is not UTF-8"},
                     {"(a)\n// \xFF", "line 2, column 4: the text is not UTF-8"},
                     {{"\xFE\xFF\0(\0)\0", 7}, "line 1, column 3: the text is not UTF-16"},
                     {{"\xFE\xFF\0(\0\n\xDC\0\0)", 10}, "line 2, column 1: the text is not UTF-16"},
                 });
}

TEST(TextPropertyList, AcceptsNestingUpTo512) {
  ExpectAccepted(Parse, {{Repeated("(", 512) + "a" + Repeated(")", 512), NestedArrays(512, "a")}});
  EXPECT_EQ(ErrorOf(Parse(Repeated("{a=", 511) + "()" + Repeated("}", 511))), "");
  EXPECT_EQ(ErrorOf(Parse("a=" + Repeated("(", 511) + Repeated(")", 511))), "");
}

TEST(TextPropertyList, NestingCountsWhatIsOpenNotWhatWas) {
  EXPECT_EQ(ErrorOf(Parse("(" + Repeated("(),{},", 1000) + ")")), "");
}

TEST(TextPropertyList, RejectsDeeperNesting) {
  const std::string error = "more than 512 arrays and dictionaries are nested in each other";
  ExpectRejected(Parse, {
                            {Repeated("(", 513), "line 1, column 513: " + error},
                            {Repeated("{a=", 513), "line 1, column 1537: " + error},
                            {"a=" + Repeated("(", 512), "line 1, column 514: " + error},
                            {Repeated("(", 1000000), "line 1, column 513: " + error},
                        });
}

TEST(TextPropertyList, TruncationAtAnyLengthIsRefused) {
  const std::string text =
      "{ // a\n \"b c\" = ( 'd\\U00e4', <0f 0e>, /* e */ f ); g = { h = i; }; }";
  ASSERT_EQ(ErrorOf(Parse(text)), "");
  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_NE(ErrorOf(Parse(Truncated(text, size))), "") << size;
  }
}

TEST(TextPropertyList, StringThatNeedsNoDecodingViewsTheSource) {
  const std::string_view text = "(\"quoted\", bare)";
  Arena arena;
  const auto value = ParseTextPropertyList({.text = text}, arena);
  ASSERT_EQ(ErrorOf(value), "");
  const Array array = *value->AsArray();
  EXPECT_EQ(array[0].AsString()->data(), text.data() + 2);
  EXPECT_EQ(array[1].AsString()->data(), text.data() + 11);
}

TEST(TextPropertyList, StringThatNeedsDecodingIsKeptInTheArena) {
  Arena arena;
  const auto value =
      ParseTextPropertyList({.text = "{'a\\tb' = 'c\\td'; 'e\\tf' = 'g\\th';}"}, arena);
  ASSERT_EQ(ErrorOf(value), "");
  EXPECT_EQ(*value, PropertyValue(Dict({{"a\tb", "c\td"}, {"e\tf", "g\th"}})));
}

}  // namespace
}  // namespace fernwick
