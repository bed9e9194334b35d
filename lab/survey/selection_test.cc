#include "lab/survey/selection.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
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
  EXPECT_EQ(LinesOf("/a\n\n/b b\r\n\n /c"), (Paths{"/a", "/b b", " /c"}));
  EXPECT_EQ(LinesOf("/a\n"), Paths{"/a"});
  EXPECT_EQ(LinesOf("\n\n"), Paths{});
  EXPECT_EQ(LinesOf(""), Paths{});
}

TEST(Selection, ReadsLinesInAnyNumber) {
  EXPECT_EQ(LinesOf(testing::Repeated("/line\n", 50'000)).size(), 50'000u);
}

TEST(Selection, ReadsCrlfLineEnds) {
  EXPECT_EQ(LinesOf("/a\r\n\r\n/b\r\r\n/c\rd\n/e\r"), (Paths{"/a", "/b\r", "/c\rd", "/e\r"}));
}

std::string Separated(const Paths& paths) {
  std::string text;
  for (const auto& path : paths) text += path + '\0';
  return text;
}

TEST(Selection, ReadsPathsThatNulCharactersSeparate) {
  EXPECT_EQ(LinesOf(Separated({"/a b", "/c\nd", "/e\r"}) + "/f\n"),
            (Paths{"/a b", "/c\nd", "/e\r", "/f\n"}));
  const std::string longest(PATH_MAX, 'x');
  EXPECT_EQ(LinesOf(testing::Repeated(Separated({longest}), 100)).size(), 100u);
}

TEST(Selection, RefusesAnEmptyPathBetweenNulCharacters) {
  testing::StandardInputPipe input;
  input.Write(Separated({"/a", "", "/b"}));
  Selection selection({"-", "/end"});
  EXPECT_EQ(selection.Next(), Selected{"/a"});
  EXPECT_EQ(selection.Next(),
            (Selected{"-", "an empty path in a list that NUL characters separate", true}));
  EXPECT_EQ(Rest(selection), Paths{"/end"});
}

TEST(Selection, RefusesAPathThatIsTooLong) {
  const std::string longest(PATH_MAX, 'x');
  EXPECT_EQ(LinesOf(longest + "\r\n" + longest + "\n" + longest),
            (Paths{longest, longest, longest}));
  const auto error = "a path of more than " + std::to_string(PATH_MAX) + " bytes";
  for (const std::string end : {"", "\n", "\r\n", "xx", "\n/more"}) {
    testing::StandardInputPipe input;
    input.Write("/a\n" + longest + "x" + end);
    if (end != "xx") input.End();
    Selection selection({"-", "/end"});
    EXPECT_EQ(selection.Next(), Selected{"/a"});
    EXPECT_EQ(selection.Next(), (Selected{"-", error, true}));
    EXPECT_EQ(Rest(selection), Paths{"/end"});
  }
}

TEST(Selection, MarksWhatTheCommandLineNames) {
  const testing::TemporaryDirectory directory;
  const auto a = directory.Write("a.registry.plist", "");
  testing::StandardInputPipe input;
  input.Write("/listed\n");
  input.End();
  Selection selection({"/named", directory.Path(), "-", a});
  EXPECT_EQ(selection.Next(), (Selected{"/named", "", true}));
  EXPECT_EQ(selection.Next(), Selected{a});
  EXPECT_EQ(selection.Next(), Selected{"/listed"});
  EXPECT_EQ(selection.Next(), (Selected{a, "", true}));
}

TEST(Selection, OfAnInputThatCannotBeReadSaysWhy) {
  testing::StandardInputPipe input;  // which is then replaced
  const int unreadable = open("/dev/null", O_WRONLY);
  dup2(unreadable, STDIN_FILENO);
  close(unreadable);
  Selection selection({"-", "/end"});
  EXPECT_EQ(selection.Next(), (Selected{"-", "Bad file descriptor", true}));
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
