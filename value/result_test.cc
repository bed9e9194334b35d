#include "value/result.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace fernwick {
namespace {

TEST(Error, IsDescribedWithItsLocation) {
  EXPECT_EQ(Describe({"what is wrong"}), "what is wrong");
  EXPECT_EQ(Describe({"what is wrong", FileLocation{.line = 3, .column = 7}}),
            "line 3, column 7: what is wrong");
  EXPECT_EQ(Describe({"what is wrong", FileLocation{.byte = 12}}), "byte 12: what is wrong");
  EXPECT_EQ(Describe({"what is wrong", FileLocation{}}), "byte 0: what is wrong");
}

TEST(Error, EqualityIsThatOfEveryMember) {
  const Error error{"a", FileLocation{.line = 1, .column = 2}};
  EXPECT_EQ(error, (Error{"a", FileLocation{.line = 1, .column = 2}}));
  EXPECT_NE(error, (Error{"b", FileLocation{.line = 1, .column = 2}}));
  EXPECT_NE(error, (Error{"a", FileLocation{.line = 2, .column = 2}}));
  EXPECT_NE(error, (Error{"a", FileLocation{.line = 1, .column = 3}}));
  EXPECT_NE(error, (Error{"a", FileLocation{.line = 1, .column = 2, .byte = 1}}));
  EXPECT_NE(error, (Error{"a"}));
  EXPECT_NE((Error{"a", {}, 2}), (Error{"a", {}, 3}));
}

TEST(Result, OfAValueIsTrueAndTheValue) {
  Result<std::string> result = std::string("a value");
  ASSERT_TRUE(result);
  EXPECT_EQ(*result, "a value");
  EXPECT_EQ(result->size(), 7u);
  *result += '!';
  EXPECT_EQ(*std::as_const(result), "a value!");
  EXPECT_EQ(std::as_const(result)->size(), 8u);
}

TEST(Result, OfAnErrorIsFalseAndTheError) {
  const Result<std::string> result = Error{"no value"};
  ASSERT_FALSE(result);
  EXPECT_EQ(result.Error().message, "no value");
}

TEST(Result, MayHaveAnotherTypeOfError) {
  const Result<std::string, int> error = 5;
  ASSERT_FALSE(error);
  EXPECT_EQ(error.Error(), 5);
  const Result<std::string, int> value = std::string("a value");
  ASSERT_TRUE(value);
  EXPECT_EQ(*value, "a value");
}

TEST(Result, ValueMovesOutOfIt) {
  Result<std::unique_ptr<int>> result = std::make_unique<int>(7);
  ASSERT_TRUE(result);
  const std::unique_ptr<int> value = *std::move(result);
  EXPECT_EQ(*value, 7);
}

TEST(Result, EqualityIsThatOfValueOrError) {
  const Result<int> one = 1;
  EXPECT_EQ(one, Result<int>(1));
  EXPECT_NE(one, Result<int>(2));
  EXPECT_NE(one, Result<int>(Error{"1"}));
  EXPECT_EQ(Result<int>(Error{"1"}), Result<int>(Error{"1"}));
  EXPECT_NE(Result<int>(Error{"1"}), Result<int>(Error{"2"}));
}

}  // namespace
}  // namespace fernwick
