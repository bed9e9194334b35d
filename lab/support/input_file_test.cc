#include "lab/support/input_file.h"

#include <gtest/gtest.h>

#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

TEST(Input, IsStandardInputForAHyphen) {
  testing::StandardInputPipe input;
  input.Write("one ");
  input.Write("two");
  input.End();
  EXPECT_EQ(*ReadInput("-"), "one two");
  EXPECT_EQ(InputName("-"), "standard input");
}

TEST(Input, IsAFileOtherwise) {
  const testing::TemporaryDirectory directory;
  const auto path = directory.Write("file", "bytes");
  EXPECT_EQ(*ReadInput(path), "bytes");
  EXPECT_EQ(InputName(path), path);
}

TEST(Input, ThatCannotBeReadIsAnError) {
  const auto input = ReadInput("/nowhere/file");
  ASSERT_FALSE(input);
  EXPECT_EQ(input.Error().status, LabStatus::UnreadableInput);
  EXPECT_EQ(input.Error().error.message, "No such file or directory");
}

}  // namespace
}  // namespace fernwick::lab
