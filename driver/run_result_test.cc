#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "driver/options.h"
#include "driver/run.h"
#include "testing/command_line.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/observed_run.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::CommandLine;
using testing::Computer;
using testing::Dict;
using testing::ObservedRun;

// A run, with the registry that its result and its trace view.
class TracedRun {
 public:
  // A trace changes nothing: the run prints, ends and asks as it does without.
  TracedRun(const Computer& computer, const CommandLine& line)
      : options_(ParseOptions(line.Count(), line.Vector())), registry_(computer.Recorded()) {
    result_ = Run(options_, registry_, console_, &trace_);
    const ObservedRun traced = {result_.status, result_.fault, console_.Flushes(), console_.Error(),
                                registry_.Calls()};
    EXPECT_EQ(traced, testing::Observe(computer, [&](Registry& registry, Console& console) {
                return Run(options_, registry, console);
              }));
  }

  const RunResult& Result() const { return result_; }
  const RunTrace& Trace() const { return trace_; }

 private:
  Options options_;
  testing::LoggingRegistry registry_;
  testing::TestConsole console_;
  RunTrace trace_;
  RunResult result_;
};

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

const MatchRecord Match = {
    {"Version", 180}, {"Firmware", "port.bin"}, {"Personality Type", "LegacyUSBC"}};

TEST(RunResult, HasTheIdentityOfTheComputer) {
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-v"});
  const auto& identity = run.Result().identity;
  ASSERT_TRUE(identity.has_value());
  EXPECT_EQ(identity->boardIdString, "Zed-42");
  EXPECT_EQ(identity->boardId, 0x42u);
  EXPECT_EQ(identity->boardRevision, 3);
}

TEST(RunResult, KnowsWhetherTheOptionBypassesTheVersionCheck) {
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"--bypassVersion", "-p", "/nowhere"});
  EXPECT_TRUE(run.Result().bypassesVersionCheck);
  EXPECT_FALSE(run.Result().switchBypassesVersion);
  EXPECT_FALSE(run.Result().bypassesUpdates);
  const TracedRun without(computer, {"-p", "/nowhere"});
  EXPECT_FALSE(without.Result().bypassesVersionCheck);
}

TEST(RunResult, KnowsWhetherTheSwitchBypassesTheVersionCheck) {
  auto computer = TwoPorts();
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", "1");
  const TracedRun run(computer, {});
  EXPECT_TRUE(run.Result().bypassesVersionCheck);
  EXPECT_TRUE(run.Result().switchBypassesVersion);
}

TEST(RunResult, OfABypassedRunHasNothingMore) {
  auto computer = TwoPorts();
  computer.Set(computer.Options(), "boot-args", "fernwick_bypass_usbc_updates=1");
  const TracedRun run(computer, {"-v", "--bypassVersion"});
  EXPECT_TRUE(run.Result().bypassesUpdates);
  EXPECT_FALSE(run.Result().bypassesVersionCheck);
  EXPECT_FALSE(run.Result().identity.has_value());
  EXPECT_TRUE(run.Trace().keys.empty());
}

TEST(RunResult, OfARejectedCommandLineHasNoIdentity) {
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-p"});
  EXPECT_EQ(run.Result().status, ExitStatus::BadCommandLine);
  EXPECT_FALSE(run.Result().identity.has_value());
}

TEST(RunResult, HasTheMatchesThatArePlanned) {
  const Payload payload(Firmware);
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-p", payload.Path()});
  EXPECT_EQ(run.Result().matches, (std::vector<MatchRecord>{Match, Match}));
  EXPECT_EQ(run.Result().plannedMatches, 2u);
  ASSERT_EQ(run.Trace().keys.size(), 1u);
  EXPECT_EQ(run.Trace().keys.front().matched, (std::vector<std::size_t>{0, 0}));
}

TEST(RunResult, HasTheConfiguration) {
  const Payload payload(Firmware);
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-p", payload.Path()});
  ASSERT_TRUE(run.Result().configuration.has_value());
  EXPECT_EQ(run.Result().configuration->value,
            Dict({{"LegacyUSBC", Dict({{"Version", 180}, {"Firmware", "port.bin"}})}}));
}

TEST(RunResult, KnowsWhichMatchEndsTheRun) {
  const Payload payload("");
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-v", "-p", payload.Path()});
  EXPECT_EQ(run.Result().matches.size(), 2u);
  EXPECT_EQ(run.Result().plannedMatches, 0u);
}

TEST(RunResult, OfNoConfigurationHasNoMatches) {
  const auto computer = TwoPorts();
  const TracedRun run(computer, {"-p", "/nowhere"});
  EXPECT_EQ(run.Result().matches, std::vector<MatchRecord>{});
  EXPECT_FALSE(run.Result().configuration.has_value());
  EXPECT_TRUE(run.Trace().keys.empty());
}

TEST(RunResult, OfAFaultHasWhatWasFoundBeforeIt) {
  auto computer = TwoPorts();
  computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  const testing::TemporaryDirectory directory;
  directory.Write("Fernwick/Zed-42/Config.plist",
                  "<dict><key>Note</key><true/><key>LegacyThunderbolt</key><array/></dict>");
  const TracedRun run(computer, {"-p", directory.Path()});
  EXPECT_EQ(run.Result().fault, Fault::MissingUid);
  EXPECT_TRUE(run.Result().identity.has_value());
  EXPECT_EQ(run.Result().matches, std::vector<MatchRecord>{});
  ASSERT_EQ(run.Trace().keys.size(), 1u);
  EXPECT_EQ(run.Trace().keys.front().key, "Note");
}

// The result owns the configuration, which the matches view.
TEST(RunResult, StaysValidWhenItIsMoved) {
  std::vector<RunResult> results;
  const auto computer = TwoPorts();
  testing::LoggingRegistry registry(computer.Recorded());
  {
    const Payload payload(Firmware);
    Options options;
    options.personalitiesDirectory = payload.Path() + "/Fernwick/";
    for (int i = 0; i < 3; ++i) {
      testing::TestConsole console;
      results.push_back(fernwick::Run(options, registry, console));
    }
  }
  for (const auto& result : results) {
    EXPECT_EQ(result.matches, (std::vector<MatchRecord>{Match, Match}));
  }
}

}  // namespace
}  // namespace fernwick
