#include "testing/programs/golden_case.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/temporary_directory.h"

namespace fernwick::testing {
namespace {

using Words = std::vector<std::string>;

// A directory with one case, "one".
class GoldenCaseFile : public ::testing::Test {
 protected:
  GoldenCase Read(const std::string& text) const {
    directory_.Write("one.txt", text);
    return ReadGoldenCase(directory_.Path() + "/one.txt");
  }

  Words ArgumentsOf(const std::string& commandLine) const {
    return Read("$ fernwick-lab" + commandLine + "\n").commands.at(0).arguments;
  }

  void ExpectRefused(const std::string& text, const std::string& message) const {
    ::testing::TestPartResultArray failures;
    {
      ::testing::ScopedFakeTestPartResultReporter reporter(
          ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
      Read(text);
    }
    ASSERT_GT(failures.size(), 0) << text;
    EXPECT_NE(std::string(failures.GetTestPartResult(0).message()).find(message), std::string::npos)
        << failures.GetTestPartResult(0).message();
  }

  const TemporaryDirectory directory_;
};

TEST_F(GoldenCaseFile, SeparatesArgumentsAtBlanksThatAreNotQuoted) {
  EXPECT_EQ(ArgumentsOf(""), Words());
  EXPECT_EQ(ArgumentsOf("  a   b "), (Words{"a", "b"}));
  EXPECT_EQ(ArgumentsOf(" 'a  b' c'd e'f"), (Words{"a  b", "cd ef"}));
  EXPECT_EQ(ArgumentsOf(" '' \"a\\"), (Words{"", "\"a\\"}));
}

TEST_F(GoldenCaseFile, HasAHeadForEachCommand) {
  const std::string first = "# About it.\n\n$ fernwick-lab show a\n";
  const std::string second = "\n# More.\n$ fernwick-lab show b\n";
  const auto sections = FormatSections({"0", "$ x\n# y\n--- status 7\n", "\\z"});
  for (const auto& each : {sections, FormatSections({"SIGABRT", "", ""}), std::string()}) {
    const auto described = Read(first + each + second + each);
    EXPECT_EQ(described.name, "one");
    ASSERT_EQ(described.commands.size(), 2U);
    EXPECT_EQ(described.commands[0].head, first);
    EXPECT_EQ(described.commands[1].head, second);
    EXPECT_EQ(described.commands[0].arguments, (Words{"show", "a"}));
    EXPECT_EQ(described.commands[1].arguments, (Words{"show", "b"}));
  }
}

TEST_F(GoldenCaseFile, OfAnotherFormFails) {
  ExpectRefused("", "no command");
  ExpectRefused("# a\n", "no command follows");
  ExpectRefused("a\n$ fernwick-lab\n", "what is this line? a");
  ExpectRefused("$ fernwick-lab\na\n", "what is this line? a");
  ExpectRefused("$ fernwick-lab 'a\n", "closing quote");
  ExpectRefused("$ fernwick\n", "not a command of fernwick-lab: fernwick");
  ExpectRefused("$ \n", "not a command");
  ExpectRefused("$ fernwick-lab\n--- stdout\na\n", "end with a status");
  ExpectRefused("$ fernwick-lab\n--- status 0\n# b\n", "no command follows");
}

TEST_F(GoldenCaseFile, IsReadForItsReplays) {
  Read("$ fernwick-lab show a\n$ fernwick-lab replay b -p 'c d'\n$ fernwick-lab replay e\n");
  directory_.Write("another.json", "{}");
  const auto replays = ReadGoldenReplays(directory_.Path());
  ASSERT_EQ(replays.size(), 2U);
  EXPECT_EQ(replays[0].name, "one");
  EXPECT_EQ(replays[0].recording, "b");
  EXPECT_EQ(replays[0].toolArguments, (Words{"-p", "c d"}));
  EXPECT_EQ(replays[1].recording, "e");
  EXPECT_EQ(replays[1].toolArguments, Words());
}

TEST(GoldenSections, AreWrittenForEachStreamThatIsNotEmpty) {
  EXPECT_EQ(FormatSections({"0", "", ""}), "--- status 0\n");
  EXPECT_EQ(FormatSections({"13", "a\n\nb\n", ""}), "--- stdout\na\n\nb\n--- status 13\n");
  EXPECT_EQ(FormatSections({"SIGABRT", "\n", "c\n"}),
            "--- stdout\n\n--- stderr\nc\n--- status SIGABRT\n");
}

TEST(GoldenSections, SayHowAnOutputEnds) {
  EXPECT_EQ(FormatSections({"0", "a", "\nb"}),
            "--- stdout\na\n\\ No newline at end\n"
            "--- stderr\n\nb\n\\ No newline at end\n--- status 0\n");
}

TEST(GoldenSections, EscapeLinesThatLookLikePartsOfTheForm) {
  EXPECT_EQ(FormatSections({"0", "--- stderr\n\\ No newline at end\n\\---", "a ---\n--\n"}),
            "--- stdout\n\\--- stderr\n\\\\ No newline at end\n\\\\---\n\\ No newline at end\n"
            "--- stderr\na ---\n--\n--- status 0\n");
}

}  // namespace
}  // namespace fernwick::testing
