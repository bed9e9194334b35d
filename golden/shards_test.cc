// Shards of a survey, a coverage and a settling, and the verb `merge`, as processes.

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "testing/archives.h"
#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using Words = std::vector<std::string>;

// Some sixty computers: in directories, in an archive, one of a name that is not UTF-8, and some
// that are refused, one of them named on the command line.
class Shards : public ::testing::Test {
 protected:
  Shards() {
    testing::WriteManyComputers(directory_, 50, 7);
    const auto one =
        testing::ReadFile(FERNWICK_SOURCE_DIRECTORY "/examples/thunderbolt-only.registry.plist");
    directory_.Write("computers/\xFF-odd.registry.plist", one);
    directory_.Write("computers/refused.registry.plist", "{");
    directory_.Write("more.tar", testing::ArchiveOf({{"a.registry.plist", one},
                                                     {"b.registry.plist", "<plist"},
                                                     {"c/d.registry.plist", one}}));
  }

  ChildOutcome Lab(const Words& words) const {
    Words command = {FERNWICK_LAB_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    return testing::RunChild(command, directory_.Path());
  }

  // The verb over all computers, with further options.
  ChildOutcome Run(const std::string& verb, const Words& options) const {
    Words words = {verb, "-p", "payload", "computers", "none.registry.plist", "more.tar"};
    words.insert(words.end(), options.begin(), options.end());
    return Lab(words);
  }

  // Writes the results of all shards. Returns their names.
  Words WriteShards(const std::string& verb, std::size_t count, const Words& options = {}) const {
    Words results;
    for (std::size_t i = count; i >= 1; --i) {
      const auto shard = std::to_string(i) + "/" + std::to_string(count);
      Words words = {"--shard", shard};
      words.insert(words.end(), options.begin(), options.end());
      results.push_back(verb + std::to_string(i) + "of" + std::to_string(count) + ".ndjson");
      directory_.Write(results.back(), Run(verb, words).standardOutput);
    }
    return results;
  }

  ChildOutcome Merge(const Words& results, const Words& options = {}) const {
    Words words = {"merge"};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), results.begin(), results.end());
    return Lab(words);
  }

  void ExpectRefusal(const Words& results, const std::string& message,
                     const Words& options = {}) const {
    testing::ExpectOutcome(Merge(results, options), {"65", "", "fernwick-lab: " + message + "\n"});
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(Shards, OfASurveyMergeToThatOfAllInEveryFormat) {
  const std::vector<Words> ends = {{},
                                   {"--wide"},
                                   {"--format", "ndjson"},
                                   {"--format", "csv", "--fail-on", "planned"},
                                   {"--format", "junit"}};
  std::vector<ChildOutcome> whole;
  for (const auto& end : ends) whole.push_back(Run("survey", end));
  EXPECT_EQ(whole.front().status, "66");
  for (std::size_t count = 1; count <= 7; ++count) {
    const auto results = WriteShards("survey", count, {"--format", "ndjson", "-j2"});
    for (std::size_t i = 0; i < ends.size(); ++i) {
      SCOPED_TRACE(std::to_string(count) + " shards, options " + std::to_string(i));
      testing::ExpectOutcome(Merge(results, ends[i]), whole[i]);
    }
  }
}

TEST_F(Shards, MayBeEmpty) {
  const auto results = WriteShards("survey", 300, {"--format", "ndjson", "-j1"});
  testing::ExpectOutcome(Merge(results), Run("survey", {}));
}

TEST_F(Shards, OfASurveyAreComparedWithWhatIsExpected) {
  directory_.Write("saved.ndjson", Run("survey", {"--format", "ndjson"}).standardOutput);
  directory_.Write("payload/Fernwick/Zed-0/Config.plist", "{}");
  const Words expect = {"--expect", "saved.ndjson"};
  const auto whole = Run("survey", expect);
  EXPECT_EQ(whole.status, "1");
  const auto results = WriteShards("survey", 3, {"--format", "ndjson"});
  testing::ExpectOutcome(Merge(results, expect), whole);
  Merge(results, {"--expect", "merged.ndjson", "--update"});
  Run("survey", {"--expect", "whole.ndjson", "--update"});
  EXPECT_EQ(testing::ReadFile(directory_.Path() + "/merged.ndjson"),
            testing::ReadFile(directory_.Path() + "/whole.ndjson"));
}

TEST_F(Shards, OfASettlingMergeToThatOfAll) {
  for (const std::size_t count : {1u, 2u, 5u}) {
    const auto results = WriteShards("settle", count, {"--format", "ndjson", "--each"});
    for (const Words& end : {Words{}, {"--format", "ndjson"}, {"--fail-on", "no-plan"}}) {
      Words options = {"--each"};
      options.insert(options.end(), end.begin(), end.end());
      testing::ExpectOutcome(Merge(results, end), Run("settle", options));
    }
  }
}

TEST_F(Shards, OfACoverageMergeToThatOfAll) {
  for (const std::size_t count : {1u, 2u, 5u}) {
    const auto results = WriteShards("coverage", count);
    for (const Words& end : {Words{}, {"--format", "json"}, {"--threshold", "99.5"}}) {
      Words options = {"-p", "payload"};
      options.insert(options.end(), end.begin(), end.end());
      testing::ExpectOutcome(Merge(results, options), Run("coverage", end));
    }
  }
}

TEST_F(Shards, ThatAreMissingOrDoubledAreAnError) {
  const auto results = WriteShards("survey", 4, {"--format", "ndjson"});
  const auto& [four, three, two, one] = std::tie(results[0], results[1], results[2], results[3]);
  ExpectRefusal({one, three, four}, "shard 2 of 4 is missing");
  ExpectRefusal({three}, "shard 1 of 4 is missing, and 2 more");
  ExpectRefusal({one, two, three, four, two}, two + ": it is shard 2 of 4, as is " + two);
}

TEST_F(Shards, OfOtherRunsAreAnError) {
  const auto results = WriteShards("survey", 2, {"--format", "ndjson"});
  const auto differs = [&](const std::string& path, const std::string& what) {
    ExpectRefusal({results[0], path}, path + ": its " + what + " is not that of " + results[0]);
  };
  differs(WriteShards("survey", 3, {"--format", "ndjson"})[2], "number of shards");
  differs(WriteShards("coverage", 2)[1], "verb");
  const auto write = [&](const Words& options) {
    return directory_.Write("other", Lab(options).standardOutput);
  };
  const Words words = {"survey", "-p", "payload", "--format", "ndjson", "--shard", "1/2"};
  const auto with = [&](const Words& more) {
    auto all = words;
    all.insert(all.end(), more.begin(), more.end());
    return write(all);
  };
  differs(with({"--bypassVersion", "computers"}), "bypassVersion");
  differs(with({"--max-size", "1", "computers"}), "maxSize");
  directory_.Write("payload/Fernwick/Zed-1/Config.plist", "{}");
  differs(with({"computers"}), "payload");
}

TEST_F(Shards, OfOtherSelectionsAreAnError) {
  const auto before = WriteShards("survey", 2, {"--format", "ndjson"})[0];
  const auto first = testing::ReadFile(directory_.Path() + "/" + before);
  directory_.Write("computers/zz.registry.plist", "");
  const auto later = WriteShards("survey", 2, {"--format", "ndjson"});
  directory_.Write("before", first);
  EXPECT_EQ(Merge({"before", later[1]}, {"--format", "ndjson"}).status, "65");
}

TEST_F(Shards, ThatAreNotWholeAreAnError) {
  const auto results = WriteShards("survey", 2, {"--format", "ndjson"});
  const auto whole = testing::ReadFile(directory_.Path() + "/" + results[0]);
  const auto first = whole.find('\n') + 1;
  const auto second = whole.find('\n', first) + 1;
  const auto last = whole.rfind('\n', whole.size() - 2) + 1;
  const auto refuse = [&](const std::string& text) {
    directory_.Write("cut", text);
    const auto outcome = Merge({"cut", results[1]}, {"--format", "ndjson"});
    EXPECT_EQ(outcome.status, "65");
    return outcome.standardError;
  };
  EXPECT_EQ(refuse(""), "fernwick-lab: cut:0: this is not the result of a shard\n");
  EXPECT_EQ(refuse("{}\n"), "fernwick-lab: cut:1: this is not the result of a shard\n");
  EXPECT_NE(refuse(whole.substr(0, last)).find("the result lacks its end"), std::string::npos);
  EXPECT_NE(refuse(whole.substr(0, last - 5)).find("this is not a line of a shard"),
            std::string::npos);
  EXPECT_NE(refuse(whole.substr(0, first) + whole.substr(second)).find("the computer of index"),
            std::string::npos);
  EXPECT_NE(refuse(whole + "{}\n").find("there is more after the end"), std::string::npos);
  EXPECT_NE(refuse(whole.substr(0, first) + "{}\n" + whole.substr(first)).find("not a row"),
            std::string::npos);
}

TEST_F(Shards, NeedSuitableOptions) {
  const auto refused = [&](const ChildOutcome& outcome) {
    EXPECT_EQ(outcome.status, "64");
    return outcome.standardError;
  };
  for (const auto* shard : {"0/2", "3/2", "1", "a/b", "1/2x", "1/1000000"}) {
    EXPECT_EQ(refused(Run("survey", {"--format", "ndjson", "--shard", shard})),
              "fernwick-lab: --shard: \"" + std::string(shard) +
                  "\" is not K/N, 1 <= K <= N; see fernwick-lab survey --help\n");
  }
  refused(Run("survey", {"--shard", "1/2"}));
  refused(Run("survey", {"--shard", "1/2", "--format", "ndjson", "--expect", "x"}));
  refused(Run("settle", {"--shard", "1/2"}));
  refused(Run("coverage", {"--shard", "1/2", "--threshold", "0"}));
  refused(Run("coverage", {"--shard", "0/2"}));
  const auto survey = WriteShards("survey", 1, {"--format", "ndjson"});
  const auto settle = WriteShards("settle", 1, {"--json"});
  const auto coverage = WriteShards("coverage", 1);
  for (const Words& options : {Words{"--format", "text"},
                               {"--threshold", "0"},
                               {"-p", "payload"},
                               {"--fail-on", "x"},
                               {"--update"}}) {
    refused(Merge(survey, options));
  }
  for (const Words& options : {Words{"--format", "csv"},
                               {"--wide"},
                               {"--expect", "x"},
                               {"--update"},
                               {"--fail-on", "planned"}}) {
    refused(Merge(settle, options));
  }
  refused(Merge(coverage));
  refused(Merge(coverage, {"-p", "payload", "--fail-on", "refused"}));
  EXPECT_EQ(Merge(coverage, {"-p", "none"}).status, "66");
  EXPECT_EQ(Merge({"none"}).status, "66");
  directory_.Write("other/Fernwick/Zed-0/Config.plist", "{}");
  ExpectRefusal(coverage, "other: this is not the payload of the results", {"-p", "other"});
}

}  // namespace
}  // namespace fernwick
