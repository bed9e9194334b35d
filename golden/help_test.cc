// Each verb's --help describes the verb and contains examples, and these work.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

namespace fs = std::filesystem;

using testing::RunChild;

const fs::path Examples = FERNWICK_SOURCE_DIRECTORY "/examples";

std::string HelpOf(const std::vector<std::string>& verb) {
  std::vector<std::string> command = {FERNWICK_LAB_PROGRAM};
  command.insert(command.end(), verb.begin(), verb.end());
  command.emplace_back("--help");
  const auto outcome = RunChild(command, ".");
  EXPECT_EQ(outcome.status, "0");
  EXPECT_EQ(outcome.standardError, "");
  return outcome.standardOutput;
}

// The indented lines after a heading: the first words, or all of each line.
std::vector<std::string> IndentedAfter(const std::string& heading, const std::string& help) {
  std::vector<std::string> found;
  bool isAfter = false;
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) {
    if (line == heading) {
      isAfter = true;
    } else if (!line.starts_with("  ")) {
      isAfter = false;
    } else if (isAfter) {
      found.push_back(line.substr(2));
    }
  }
  return found;
}

std::vector<std::string> Verbs() {
  std::vector<std::string> verbs;
  for (const auto& line : IndentedAfter("verbs:", HelpOf({}))) {
    verbs.push_back(line.substr(0, line.find(' ')));
  }
  return verbs;
}

// The files of the examples: two computers, by themselves and in a directory, payloads for them, a
// dump of a registry, the results of two shards, and a directory to write to.
class Bench {
 public:
  Bench() {
    fs::create_directories(directory_.Path() + "/computers");
    fs::create_directory(directory_.Path() + "/shared");
    for (const auto& [name, example] :
         {std::pair("desk", "ports-only"), std::pair("lap", "thunderbolt-only")}) {
      const auto recording = Examples / (std::string(example) + ".registry.plist");
      for (const char* directory : {"/", "/computers/"}) {
        fs::copy(recording, directory_.Path() + directory + name + ".registry.plist");
      }
    }
    directory_.Write("services.plist", "{ children = ( { name = ridge0; class = Gen3; } ); }");
    for (const char* payload : {"/payload", "/payload-1", "/payload-2"}) {
      fs::copy(Examples / "payload", directory_.Path() + payload, fs::copy_options::recursive);
      const auto boards = directory_.Path() + payload + "/Fernwick/";
      fs::create_directory_symlink("Zed-1A07", boards + "Zed-42");
    }
    for (const char* shard : {"1", "2"}) {
      Run(std::string("fernwick-lab survey -p payload --format ndjson --shard ") + shard +
          "/2 computers > " + shard + ".ndjson");
    }
  }

  testing::ChildOutcome Run(const std::string& command) const {
    return RunChild({"/bin/sh", "-c", "PATH=\"" FERNWICK_BUILD_DIRECTORY ":$PATH\"; " + command},
                    directory_.Path());
  }

 private:
  testing::TemporaryDirectory directory_;
};

TEST(Help, OfEachVerbBeginsWithWhatItDoes) {
  const auto verbs = Verbs();
  EXPECT_GE(verbs.size(), 8u);
  for (const auto& verb : verbs) {
    const auto help = HelpOf({verb});
    const auto first = help.substr(0, help.find('\n'));
    EXPECT_TRUE(first.ends_with(".")) << verb << ": " << first;
    EXPECT_NE(help.find("Usage: fernwick-lab " + verb + " "), std::string::npos) << verb;
  }
}

TEST(Help, OfEachVerbHasExamplesThatWork) {
  for (const auto& verb : Verbs()) {
    const Bench bench;
    const auto examples = IndentedAfter("Example:", HelpOf({verb}));
    EXPECT_FALSE(examples.empty()) << verb;
    for (const auto& example : examples) {
      EXPECT_TRUE(example.starts_with("fernwick-lab " + verb + " ")) << example;
      const auto outcome = bench.Run(example);
      EXPECT_EQ(outcome.status, "0") << example << "\n" << outcome.standardError;
    }
  }
}

}  // namespace
}  // namespace fernwick
