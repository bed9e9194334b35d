// The shells complete what the lab accepts: what each offers is compared with the help of the lab.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "testing/named_rows.h"
#include "testing/programs/child_process.h"
#include "testing/programs/program_help.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using Words = std::set<std::string>;

const std::string Completions = std::string(FERNWICK_SOURCE_DIRECTORY) + "/completion";

Words LinesOf(const std::string& text) {
  Words lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty()) lines.insert(line);
  }
  return lines;
}

// Calls what bash would call, with the words of the command line; the last is completed.
Words OfferedByBash(const std::vector<std::string>& line, const std::string& directory) {
  static const std::string script =
      "PATH=" FERNWICK_BUILD_DIRECTORY ":$PATH; source " + Completions +
      "/fernwick-lab.bash; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1));"
      "[[ $(complete -p fernwick-lab) =~ -F\\ ([^ ]+) ]] && ${BASH_REMATCH[1]};"
      "printf '%s\\n' \"${COMPREPLY[@]}\"";
  std::vector<std::string> command = {"bash", "-c", script, "bash"};
  command.insert(command.end(), line.begin(), line.end());
  const auto outcome = testing::RunChild(command, directory);
  EXPECT_EQ(outcome.standardError, "");
  return LinesOf(outcome.standardOutput);
}

Words OfferedByZsh(const std::vector<std::string>& line, const std::string& directory) {
  std::string typed;
  for (const auto& word : line) typed.append(typed.empty() ? "" : " ").append(word);
  const auto outcome = testing::RunChild(
      {"env", "PATH=" FERNWICK_BUILD_DIRECTORY ":/usr/bin:/bin", "zsh", "-f",
       FERNWICK_SOURCE_DIRECTORY "/testing/programs/offered_by_zsh.zsh", Completions, typed},
      directory);
  EXPECT_EQ(outcome.standardError, "");
  return LinesOf(outcome.standardOutput);
}

using OfferedBy = Words (*)(const std::vector<std::string>& line, const std::string& directory);
using Shell = testing::Named<OfferedBy>;

class Completion : public ::testing::TestWithParam<Shell> {
 protected:
  // Without the option that asks for help.
  Words Offered(std::vector<std::string> line) const {
    line.insert(line.begin(), "fernwick-lab");
    auto words = GetParam().row(line, directory_.Path());
    words.erase("--help");
    return words;
  }

  testing::TemporaryDirectory directory_;
};

TEST_P(Completion, OffersEveryVerbOfTheHelp) {
  Words verbs;
  for (const auto& [verb, options] : testing::VerbsAndOptions(FERNWICK_LAB_PROGRAM)) {
    verbs.insert(verb);
  }
  EXPECT_FALSE(verbs.empty());
  EXPECT_EQ(Offered({"help", ""}), verbs);
  verbs.insert("help");
  EXPECT_EQ(Offered({""}), verbs);
  EXPECT_EQ(Offered({"--"}), Words{"--version"});
}

TEST_P(Completion, OffersTheOptionsOfEachVerbAndNoOther) {
  for (const auto& [verb, options] : testing::VerbsAndOptions(FERNWICK_LAB_PROGRAM)) {
    EXPECT_EQ(Offered({verb, "-"}), options) << verb;
  }
}

TEST_P(Completion, OffersTheToolsOptionsAfterTheRecordingOfReplay) {
  EXPECT_EQ(Offered({"replay", "desk.registry.plist", "-"}),
            testing::OptionsOfTool(FERNWICK_PROGRAM));
}

TEST_P(Completion, OffersTheWordsThatAnOptionAccepts) {
  int count = 0;
  for (const auto& [verb, options] : testing::VerbsAndOptions(FERNWICK_LAB_PROGRAM)) {
    for (const auto& [option, words] : testing::ChoicesOf(FERNWICK_LAB_PROGRAM, verb)) {
      EXPECT_EQ(Offered({verb, option, ""}), words) << verb << option;
      ++count;
    }
  }
  EXPECT_EQ(count, 13);
}

TEST_P(Completion, OffersTheIdsOfLint) {
  Words ids;
  const auto list = testing::RunChild({FERNWICK_LAB_PROGRAM, "lint", "--list"}, "/");
  for (const auto& line : LinesOf(list.standardOutput)) ids.insert(line.substr(0, line.find(' ')));
  EXPECT_GT(ids.size(), 30U);
  EXPECT_EQ(Offered({"lint", "--explain", ""}), ids);
}

TEST_P(Completion, OffersRecordings) {
  directory_.Write("desk of mine.registry.plist", "");
  directory_.Write("desk.txt", "");
  EXPECT_EQ(Offered({"show", "de"}), Words{"desk of mine.registry.plist"});
  EXPECT_EQ(Offered({"survey", "-p", "payload", "de"}), Words{"desk of mine.registry.plist"});
}

TEST_P(Completion, OffersArchivesWhereManyRecordingsAreAccepted) {
  Words archives;
  for (const char* suffix : {"tar", "tar.gz", "tgz", "tar.xz", "txz", "tar.zst", "tzst", "zip"}) {
    archives.insert("desk." + std::string(suffix));
  }
  for (const auto& name : archives) directory_.Write(name, "");
  directory_.Write("desk.gz", "");
  directory_.Write("desk.plist", "");
  directory_.Write("desk.registry.plist", "");
  directory_.Write("desks/a.registry.plist", "");
  EXPECT_EQ(Offered({"show", "desk"}), (Words{"desk.plist", "desk.registry.plist", "desks"}));
  archives.merge(Words{"desk.registry.plist", "desks"});
  for (const char* verb : {"survey", "coverage", "settle", "diff", "draft", "report"}) {
    EXPECT_EQ(Offered({verb, "desk"}), archives) << verb;
  }
  EXPECT_EQ(Offered({"draft", "--except", "desk"}), archives);
}

TEST_P(Completion, OffersDirectoriesForPayloadsAndTheirBoards) {
  directory_.Write("payload/Fernwick/Zed-42/Config.plist", "");
  directory_.Write("payload/Fernwick/RidgeFlash.efi", "");
  directory_.Write("pay.registry.plist", "");
  EXPECT_EQ(Offered({"lint", "pay"}), Words{"payload"});
  EXPECT_EQ(Offered({"explain", "--payload", "pay"}), Words{"payload"});
  EXPECT_EQ(Offered({"lint", "payload", "Z"}), Words{"Zed-42"});
  EXPECT_EQ(Offered({"sample", "-p", "payload", "Z"}), Words{"Zed-42"});
}

INSTANTIATE_TEST_SUITE_P(Shells, Completion,
                         ::testing::Values(Shell{"Bash", OfferedByBash},
                                           Shell{"Zsh", OfferedByZsh}),
                         testing::RowName);

}  // namespace
}  // namespace fernwick
