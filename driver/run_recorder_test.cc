#include "driver/run_recorder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "driver/run.h"
#include "testing/capture.h"
#include "testing/command_line.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/observed_run.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using testing::CommandLine;
using testing::Computer;
using testing::ObservedRun;

ObservedRun RunOver(const Computer& computer, const CommandLine& line, RunRecorder* recorder) {
  return testing::Observe(computer, [&](Registry& registry, std::FILE* stream) {
    return Run(line.Count(), line.Vector(), registry, stream, recorder);
  });
}

// What a recorder learns. With it the run prints, ends and asks as it does without.
RunRecorder Learned(const Computer& computer, const CommandLine& line) {
  RunRecorder recorder;
  EXPECT_EQ(RunOver(computer, line, &recorder), RunOver(computer, line, nullptr));
  return recorder;
}

// A board with two ports that run version 171.
Computer TwoPorts() {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm0", {{"Version", 0x171}, {"Address", 0}});
  computer.AddPort("hpm1", {{"Version", 0x171}, {"Address", 1}});
  return computer;
}

// A payload whose one personality fits both ports.
class Payload {
 public:
  explicit Payload(std::string_view firmware) {
    directory_.Write("Fernwick/Zed-42/Config.plist",
                     "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>180</integer>" +
                         std::string(firmware) + "</dict></dict>");
  }
  const std::string& Path() const { return directory_.Path(); }

 private:
  testing::TemporaryDirectory directory_;
};

constexpr char Firmware[] = "<key>Firmware</key><string>port.bin</string>";

TEST(RunRecorder, LearnsWhoTheComputerIs) {
  const auto learned = Learned(TwoPorts(), {"-v"});
  ASSERT_TRUE(learned.identity.has_value());
  EXPECT_EQ(learned.identity->boardIdString, "Zed-42");
  EXPECT_EQ(learned.identity->boardId, 0x42u);
  EXPECT_EQ(learned.identity->boardRevision, 3);
}

TEST(RunRecorder, LearnsTheOptions) {
  const auto learned = Learned(TwoPorts(), {"--bypassVersion", "-p", "/nowhere"});
  ASSERT_TRUE(learned.options.has_value());
  EXPECT_TRUE(learned.options->bypassVersionCheck);
  EXPECT_EQ(learned.options->personalitiesDirectory, "/nowhere/Fernwick/");
  EXPECT_TRUE(learned.bypassesVersionCheck);
  EXPECT_FALSE(learned.switchBypassesVersion);
  EXPECT_FALSE(learned.bypassesUpdates);
}

TEST(RunRecorder, LearnsOfTheSwitchOfTheVersionCheck) {
  auto computer = TwoPorts();
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", "1");
  const auto learned = Learned(computer, {});
  EXPECT_TRUE(learned.bypassesVersionCheck);
  EXPECT_TRUE(learned.switchBypassesVersion);
  EXPECT_FALSE(learned.options->bypassVersionCheck);
}

TEST(RunRecorder, LearnsNothingMoreOfABypassedRun) {
  auto computer = TwoPorts();
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=1");
  const auto learned = Learned(computer, {"-v"});
  EXPECT_TRUE(learned.bypassesUpdates);
  EXPECT_FALSE(learned.options.has_value());
  EXPECT_FALSE(learned.identity.has_value());
}

TEST(RunRecorder, LearnsNoIdentityBehindARejectedCommandLine) {
  const auto learned = Learned(TwoPorts(), {"-p"});
  EXPECT_FALSE(learned.options->accepted);
  EXPECT_FALSE(learned.identity.has_value());
}

TEST(RunRecorder, LearnsTheMatchesThatArePlanned) {
  const Payload payload(Firmware);
  const auto learned = Learned(TwoPorts(), {"-p", payload.Path()});
  const MatchRecord match = {
      {"Version", 180}, {"Firmware", "port.bin"}, {"Personality Type", "LegacyUSBC"}};
  EXPECT_EQ(learned.matches, (std::vector<MatchRecord>{match, match}));
  EXPECT_EQ(learned.plannedMatches, 2u);
  EXPECT_EQ(learned.matching.keys.size(), 1u);
}

TEST(RunRecorder, LearnsWhichMatchEndsTheRun) {
  const Payload payload("");
  const auto learned = Learned(TwoPorts(), {"-v", "-p", payload.Path()});
  EXPECT_EQ(learned.matches.size(), 2u);
  EXPECT_EQ(learned.plannedMatches, 0u);
}

TEST(RunRecorder, LearnsOfNoMatch) {
  const auto learned = Learned(TwoPorts(), {"-p", "/nowhere"});
  EXPECT_EQ(learned.matches, std::vector<MatchRecord>{});
  EXPECT_FALSE(learned.matching.configuration.has_value());
}

}  // namespace
}  // namespace fernwick
