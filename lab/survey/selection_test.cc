#include "lab/survey/selection.h"

#include <gtest/gtest.h>

#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using Paths = std::vector<std::string>;

// Everything up to the end or until nothing is there yet.
Paths Rest(Selection& selection) {
  Paths paths;
  while (auto selected = selection.Next()) paths.push_back(std::move(selected->path));
  return paths;
}

Paths PathsOf(const Paths& arguments) {
  Selection selection(arguments);
  return Rest(selection);
}

TEST(Selection, KeepsTheOrderOfTheArguments) {
  const testing::TemporaryDirectory directory;
  const auto b = directory.Write("b.registry.plist", "");
  const auto a = directory.Write("a.registry.plist", "");
  EXPECT_EQ(PathsOf({"/none", directory.Path(), b, "other.plist"}),
            (Paths{"/none", a, b, b, "other.plist"}));
}

TEST(Selection, OfNothingIsEmpty) {
  const testing::TemporaryDirectory directory;
  EXPECT_EQ(PathsOf({directory.Path()}), Paths{});
}

TEST(Selection, TakesTheLinesOfStandardInput) {
  const testing::TemporaryDirectory directory;
  const auto a = directory.Write("a.registry.plist", "");
  testing::StandardInputPipe input;
  input.Write("/one\n\n" + directory.Path() + "\n-\n/with blank \n/last");
  input.End();
  EXPECT_EQ(PathsOf({"/zero", "-", "/end"}),
            (Paths{"/zero", "/one", a, "-", "/with blank ", "/last", "/end"}));
}

TEST(Selection, GivesALineAsSoonAsItIsThere) {
  testing::StandardInputPipe input;
  Selection selection({"-", "/end"});
  EXPECT_EQ(Rest(selection), Paths{});
  EXPECT_TRUE(selection.IsWaiting());
  input.Write("/one\n/tw");
  EXPECT_EQ(Rest(selection), Paths{"/one"});
  EXPECT_TRUE(selection.IsWaiting());
  input.Write("o\n/three");
  EXPECT_EQ(Rest(selection), Paths{"/two"});
  input.End();
  EXPECT_EQ(Rest(selection), (Paths{"/three", "/end"}));
  EXPECT_FALSE(selection.IsWaiting());
}

TEST(Selection, OfStandardInputTwiceTakesItOnce) {
  testing::StandardInputPipe input;
  input.Write("/one\n");
  input.End();
  EXPECT_EQ(PathsOf({"-", "-"}), Paths{"/one"});
}

TEST(CountSelected, CountsWhatIsSelected) {
  const testing::TemporaryDirectory directory;
  directory.Write("a.registry.plist", "");
  directory.Write("b/c.registry.plist", "");
  EXPECT_EQ(CountSelected({directory.Path(), "/none"}), 3u);
}

TEST(CountSelected, LeavesStandardInputAlone) {
  testing::StandardInputPipe input;
  input.Write("/one\n");
  input.End();
  EXPECT_EQ(CountSelected({"/none", "-"}), std::nullopt);
  EXPECT_EQ(PathsOf({"-"}), Paths{"/one"});
}

}  // namespace
}  // namespace fernwick::lab
