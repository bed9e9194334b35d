#include "lab/survey/selection.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "testing/inputs/corruption.h"
#include "testing/standard_input.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using Paths = std::vector<std::string>;

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

TEST(Selection, ReturnsALineAsSoonAsItIsThere) {
  testing::StandardInputPipe input;
  Selection selection({"-", "/end"});
  input.Write("/one\n/tw");
  EXPECT_EQ(selection.Next(), Selected{"/one"});
  input.Write("o\n/three");
  EXPECT_EQ(selection.Next(), Selected{"/two"});
  input.End();
  EXPECT_EQ(Rest(selection), (Paths{"/three", "/end"}));
}

TEST(Selection, WaitsForALineUntilItIsStopped) {
  testing::StandardInputPipe input;
  Selection selection({"-", "/end"});
  input.Write("/one\n/part");
  EXPECT_EQ(selection.Next(), Selected{"/one"});
  std::thread other([&] { selection.Stop(); });
  EXPECT_EQ(Rest(selection), (Paths{"/part", "/end"}));
  other.join();
}

// In their order, with standard input full of `text`.
Paths LinesOf(const std::string& text) {
  testing::StandardInputPipe input;
  std::thread writer([&] {
    for (std::size_t at = 0; at < text.size(); at += 1000) input.Write(text.substr(at, 1000));
    input.End();
  });
  auto lines = PathsOf({"-"});
  writer.join();
  return lines;
}

TEST(Selection, TakesEveryLineThatIsNotEmpty) {
  EXPECT_EQ(LinesOf("/a\n\n/b b\r\n\n /c"), (Paths{"/a", "/b b\r", " /c"}));
  EXPECT_EQ(LinesOf("/a\n"), Paths{"/a"});
  EXPECT_EQ(LinesOf("\n\n"), Paths{});
  EXPECT_EQ(LinesOf(""), Paths{});
}

TEST(Selection, TakesLinesOfAnyLengthInAnyNumber) {
  const std::string large(200'000, 'x');
  EXPECT_EQ(LinesOf(large + "\n/y\n" + large), (Paths{large, "/y", large}));
  EXPECT_EQ(LinesOf(testing::Repeated("/line\n", 50'000)).size(), 50'000u);
}

TEST(Selection, OfAnInputThatCannotBeReadSaysWhy) {
  testing::StandardInputPipe input;  // which is then replaced
  const int unreadable = open("/dev/null", O_WRONLY);
  dup2(unreadable, STDIN_FILENO);
  close(unreadable);
  Selection selection({"-", "/end"});
  EXPECT_EQ(selection.Next(), (Selected{"-", "Bad file descriptor"}));
  EXPECT_EQ(Rest(selection), Paths{"/end"});
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
