// A survey of many computers, whose memory must not grow with their number.

#include "testing/programs/many_computers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "testing/programs/child_process.h"
#include "testing/programs/piped_process.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::ChildOutcome;
using testing::ExpectOutcome;

constexpr std::size_t Many = testing::UnderAddressSanitizer ? 300 : 10'000;
constexpr std::size_t Faulty = 37;  // of every hundred

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// A hundred computers in a directory.
class ManyComputers : public ::testing::Test {
 protected:
  ManyComputers() { testing::WriteManyComputers(directory_, 100, Faulty); }

  ChildOutcome Survey(const std::string& selection, const std::string& options) const {
    return testing::RunChild(
        {"/bin/sh", "-c", "\"$0\" survey -p payload " + options + " " + selection,
         FERNWICK_LAB_PROGRAM},
        directory_.Path());
  }

  // Lists the hundred over and over, all or only those whose runs come to their end.
  void WriteList(const std::string& name, bool withFaulty) const {
    std::string list;
    for (std::size_t i = 0; i < Many; ++i) {
      const auto number = i % 100 == Faulty && !withFaulty ? 0 : i % 100;
      list += PathOf(number) + "\n";
    }
    directory_.Write(name, list);
  }

  static std::string PathOf(std::size_t number) {
    return "computers/0/" + std::to_string(number) + ".registry.plist";
  }

  // Surveys so many more that come to their end, and returns the number of bytes of their rows.
  static std::size_t SurveyMore(testing::PipedProcess& survey, std::size_t count) {
    constexpr std::size_t AtOnce = 25;  // both directions fit into a pipe
    static_assert(AtOnce < Faulty);
    std::size_t bytes = 0;
    for (std::size_t done = 0; done < count; done += AtOnce) {
      for (std::size_t i = 0; i < AtOnce; ++i) survey.Write(PathOf(i) + "\n");
      for (std::size_t i = 0; i < AtOnce; ++i) bytes += survey.ReadLine().size();
    }
    return bytes;
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(ManyComputers, AreNotTouchedByThoseThatEndAbnormallyNorByTheNumberOfJobs) {
  WriteList("sound", false);
  WriteList("faulty", true);
  const auto expected = LinesOf(Survey("- < sound", "--format ndjson -j2").standardOutput);
  const auto outcome = Survey("- < faulty", "--format ndjson -j2");
  ExpectOutcome(Survey("- < faulty", "--format ndjson -j1"), outcome);
  EXPECT_EQ(outcome.status, "0");
  const auto found = LinesOf(outcome.standardOutput);
  ASSERT_EQ(expected.size(), Many);
  ASSERT_EQ(found.size(), Many);
  for (std::size_t i = 0; i < Many; ++i) {
    EXPECT_EQ(found[i],
              i % 100 == Faulty
                  ? "{\"file\":\"" + PathOf(Faulty) +
                        "\",\"outcome\":\"abnormal end\",\"class\":\"fault\",\"status\":null,"
                        "\"reason\":\"SIGABRT\",\"board\":null,\"revision\":0,"
                        "\"matches\":[],\"nearestMiss\":null,\"diagnostics\":[],"
                        "\"plan\":null}"
                  : expected[i]);
  }
}

TEST_F(ManyComputers, AreInTheSameTableWhateverTheNumberOfJobs) {
  const auto one = Survey("computers computers computers", "-j1");
  EXPECT_EQ(one.status, "0");
  for (const char* jobs : {"-j2", "-j9"}) {
    ExpectOutcome(Survey("computers computers computers", jobs), one);
  }
}

TEST_F(ManyComputers, ComeFromStandardInputTheSame) {
  const auto piped = testing::RunChild(
      {"/bin/sh", "-c",
       "find computers -name '*.registry.plist' | LC_ALL=C sort | \"$0\" survey -p payload "
       "--format ndjson -",
       FERNWICK_LAB_PROGRAM},
      directory_.Path());
  ExpectOutcome(piped, Survey("computers", "--format ndjson"));
}

// What the kernel counts is exact but for a few pages a processor; the rows alone are far more.
TEST_F(ManyComputers, UseNoMoreMemoryThanFewDo) {
  if (testing::UnderAddressSanitizer) GTEST_SKIP() << "keeps what is freed";
  constexpr std::size_t Bound = 1024;  // KiB
  testing::PipedProcess survey(
      {FERNWICK_LAB_PROGRAM, "survey", "-p", "payload", "--format", "ndjson", "-j2", "-"},
      directory_.Path());
  SurveyMore(survey, 1000);
  const auto before = testing::PeakMemory(survey.Process());
  const auto bytes = SurveyMore(survey, 9000);
  EXPECT_LT(testing::PeakMemory(survey.Process()), before + Bound);
  EXPECT_GT(bytes / 1024, 2 * Bound);
  survey.EndInput();
  EXPECT_EQ(survey.Wait(), "0");
}

}  // namespace
}  // namespace fernwick
