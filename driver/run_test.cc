#include "driver/run.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "plan/launcher_plist.h"
#include "testing/call_lists.h"
#include "testing/command_line.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/observed_run.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::CommandLine;
using testing::Computer;
using testing::ObservedRun;

ObservedRun RunOver(const Computer& computer, const CommandLine& line) {
  const auto options = ParseOptions(line.Count(), line.Vector());
  return testing::Observe(computer, [&](Registry& registry, Console& console) {
    return Run(options, registry, console);
  });
}

std::string Joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const auto& piece : pieces) text += piece;
  return text;
}

// A board with one port that runs version 171.
Computer OnePort() {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddPort("hpm0", {{"Version", 0x171}});
  return computer;
}

constexpr char OnePersonality[] =
    "<dict><key>LegacyUSBC</key><dict>"
    "<key>Version</key><integer>180</integer>"
    "<key>Firmware</key><string>port.bin</string>"
    "<key>Priority</key><integer>5</integer>"
    "</dict></dict>";

constexpr char OlderPersonality[] =
    "<dict><key>LegacyUSBC</key><dict>"
    "<key>Version</key><integer>170</integer>"
    "<key>Firmware</key><string>port.bin</string>"
    "<key>Priority</key><integer>5</integer>"
    "</dict></dict>";

// A payload directory with a configuration for that board.
class Payload {
 public:
  explicit Payload(std::string_view configuration) {
    directory_.Write("Fernwick/Zed-42/Config.plist", configuration);
  }
  const std::string& Path() const { return directory_.Path(); }

 private:
  testing::TemporaryDirectory directory_;
};

constexpr char NoBoardFiles[] =
    "fernwick: Error reading plist: No files to support boardID: Zed-42\n"
    "fernwick: Unexpected format for config plist file.  Aborting\n";

constexpr char BypassLine[] =
    "USB-C Updates bypassed because fernwick_bypass_usbc_updates boot arg was set\n";

TEST(Run, WithoutArgumentsEndsWith13AndPrintsNothing) {
  const auto outcome = RunOver(OnePort(), {});
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(Joined(outcome.flushes), "");
  EXPECT_EQ(outcome.standardError, NoBoardFiles);
}

TEST(Run, OnlyVerboseShowsHeaderHardwareAndStatus) {
  const auto outcome = RunOver(OnePort(), {"-v"});
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(outcome.flushes, (std::vector<std::string>{"\n"
                                                       "Board ID:                42\n"
                                                       "Board ID String:         Zed-42\n"
                                                       "Board Revision:          3\n"
                                                       "\n"
                                                       "Personalities Directory: (null)\n"
                                                       "\n\n",
                                                       "Current hardware:\n\n"
                                                       "(\n"
                                                       "    {\n"
                                                       "        \"Version\" = 171;\n"
                                                       "    }\n"
                                                       ")",
                                                       "\n\n", "\n\nExit status: 13\n"}));
  EXPECT_EQ(outcome.standardError, NoBoardFiles);
}

TEST(Run, ShortBIsRejected) {
  const auto outcome = RunOver(OnePort(), {"-b"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(Joined(outcome.flushes), "");
  EXPECT_EQ(outcome.standardError, "fernwick: invalid option -- 'b'\n");
}

TEST(Run, PayloadWithoutItsArgumentIsRejected) {
  const auto outcome = RunOver(OnePort(), {"-p"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(Joined(outcome.flushes), "");
  EXPECT_EQ(outcome.standardError, "fernwick: option requires an argument -- 'p'\n");
}

TEST(Run, VerboseBeforeABadOptionShowsTheStatus) {
  const auto outcome = RunOver(OnePort(), {"-v", "--no"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(Joined(outcome.flushes), "\n\nExit status: 2\n");
  EXPECT_EQ(outcome.standardError, "fernwick: unrecognized option '--no'\n");
}

TEST(Run, VerboseAfterABadOptionShowsNothing) {
  const auto outcome = RunOver(OnePort(), {"--no", "-v"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(Joined(outcome.flushes), "");
  EXPECT_EQ(outcome.standardError, "fernwick: unrecognized option '--no'\n");
}

TEST(Run, RejectedCommandLineReadsOnlyTheSwitches) {
  EXPECT_EQ(RunOver(OnePort(), {"--no"}).calls,
            (std::vector<std::string>{
                "LookupEntryByPath IODeviceTree:/options", "GetProperty options boot-args",
                "GetProperty options fernwick_bypass_usbc_updates", "ReleaseEntry options",
                "LookupEntryByPath IODeviceTree:/options", "GetProperty options boot-args",
                "GetProperty options fernwick_bypassversioncheck", "ReleaseEntry options"}));
}

std::string PlanFor(const std::string& payload) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<plist version=\"1.0\">\n"
         "<dict>\n"
         "\t<key>Version</key>\n"
         "\t<integer>1</integer>\n"
         "\t<key>Priority</key>\n"
         "\t<integer>5</integer>\n"
         "\t<key>HallowArguments</key>\n"
         "\t<array>\n"
         "\t\t<string>/usr/sbin/hallow</string>\n"
         "\t\t<string>-verbose</string>\n"
         "\t\t<string>-mount</string>\n"
         "\t\t<string>/</string>\n"
         "\t\t<string>-firmware</string>\n"
         "\t\t<string>" +
         payload +
         "/Fernwick/PortFlash.efi</string>\n"
         "\t\t<string>-payload</string>\n"
         "\t\t<string>" +
         payload +
         "/Fernwick/Zed-42/port.bin</string>\n"
         "\t\t<string>-folder</string>\n"
         "\t\t<string>TBTH</string>\n"
         "\t\t<string>-options</string>\n"
         "\t\t<string>-g -os -o u -f efi-quince-payload0-data -noreset</string>\n"
         "\t</array>\n"
         "</dict>\n"
         "</plist>\n";
}

TEST(Run, WithoutVerbosePrintsOnlyThePropertyList) {
  const Payload payload(OnePersonality);
  const auto outcome = RunOver(OnePort(), {"-p", payload.Path()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.flushes, std::vector<std::string>{PlanFor(payload.Path())});
  EXPECT_EQ(outcome.standardError, "");
}

TEST(Run, IgnoredOptionsChangeNothing) {
  const Payload payload(OnePersonality);
  const auto& path = payload.Path();
  const auto plain = RunOver(OnePort(), {"-p", path});
  const auto verbose = RunOver(OnePort(), {"-v", "-p", path});
  for (const char* ignored : {"-X", "-s", "-Xs", "--preflight", "--subupdater"}) {
    EXPECT_EQ(RunOver(OnePort(), {ignored, "-p", path}), plain) << ignored;
    EXPECT_EQ(RunOver(OnePort(), {"-v", ignored, "-p", path}), verbose) << ignored;
    EXPECT_EQ(RunOver(OnePort(), {"-v", "-p", path, "-s", ignored}), verbose) << ignored;
  }
}

TEST(Run, LastPayloadWins) {
  const Payload payload(OnePersonality);
  const auto outcome = RunOver(OnePort(), {"-p", "/nowhere", "-p", payload.Path()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Joined(outcome.flushes), PlanFor(payload.Path()));
}

// What a verbose run sends out before its first match.
std::vector<std::string> OpeningFlushes(const std::string& payload) {
  return {
      "\n"
      "Board ID:                42\n"
      "Board ID String:         Zed-42\n"
      "Board Revision:          3\n"
      "\n"
      "Personalities Directory: " +
          payload +
          "/Fernwick/\n"
          "\n\n",
      "Current hardware:\n\n"
      "(\n"
      "    {\n"
      "        \"Version\" = 171;\n"
      "    }\n"
      ")",
      "\n\n", "Identified the following matches:\n"};
}

// The block of the one match, line by line.
std::vector<std::string> ReportFlushes(const char* firmware, const char* version,
                                       const char* priority) {
  return {"\tPERSONALITY_TYPE:               LegacyUSBC\n",
          "\tCONFIG_PORT_ADDRESS:            0\n",
          "\tRID:                            0\n",
          "\tCONFIG_MODEL_NAME:              (null)\n",
          "\tCONFIG_MODEL_ID:                0\n",
          "\tCONFIG_MODEL_REVISION:          0\n",
          "\tCONFIG_PORT_UUID:               (null)\n",
          "\tCONFIG_PORT_SILICON_VENDOR_ID:  0\n",
          "\tCONFIG_PORT_SILICON_DEVICE_ID:  0\n",
          "\tCONFIG_PORT_SILICON_REVISION:   0\n",
          "\tCONFIG_PORT_OTP_REVISION:       0\n",
          "\tCONFIG_RIDGE_UID:               0x0\n",
          "\tCONFIG_RIDGE_SILICON_VENDOR_ID: 0\n",
          "\tCONFIG_RIDGE_SILICON_DEVICE_ID: 0\n",
          "\tCONFIG_RIDGE_SILICON_REVISION:  0\n",
          "\tCONFIG_RIDGE_FIRMWARE_MODE:     0\n",
          std::string("\tCONFIG_FIRMWARE_NAME:           ") + firmware + "\n",
          std::string("\tCONFIG_VERSION:                 ") + version + "\n",
          std::string("\tCONFIG_PRIORITY:                ") + priority + "\n",
          "\tCONFIG_NVRAM_TO_SET:\n(null)\n",
          "\tCONFIG_NVRAM_TO_CLEAR:\n(null)\n",
          "\n\n"};
}

TEST(Run, VerboseFlushesPieceByPiece) {
  const Payload payload(OnePersonality);
  const auto& path = payload.Path();
  const auto outcome = RunOver(OnePort(), {"-v", "-p", path});
  EXPECT_EQ(outcome.flushes,
            testing::Joined(
                {OpeningFlushes(path),
                 ReportFlushes("port.bin", "180.00", "5"),
                 {"Hallow Invocation:\n",
                  "\t/usr/sbin/hallow -verbose -mount / -firmware " + path +
                      "/Fernwick/PortFlash.efi -payload " + path +
                      "/Fernwick/Zed-42/port.bin -folder TBTH -options "
                      "\"-g -os -o u -f efi-quince-payload0-data -noreset\"\n",
                  "\n\nResulting Kestrel Plist:\n\n" + PlanFor(path), "\n\nExit status: 0\n"}}));
}

TEST(Run, BypassSwitchEndsItBeforeTheOptionsAreRead) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "boot-args", "x=1 fernwick_bypass_usbc_updates=1");
  const auto outcome = RunOver(computer, {"-v", "--no"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Joined(outcome.flushes), BypassLine);
  EXPECT_EQ(outcome.standardError, "");
}

TEST(Run, BypassByNvramNamesTheBootArgument) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "fernwick_bypass_usbc_updates", testing::Bytes("1"));
  const auto outcome = RunOver(computer, {});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(Joined(outcome.flushes), BypassLine);
}

TEST(Run, BothSwitchesSetLeaveTheSecondUnread) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "boot-args",
               "fernwick_bypassversioncheck=1 fernwick_bypass_usbc_updates=1");
  const auto outcome = RunOver(computer, {});
  EXPECT_EQ(Joined(outcome.flushes), BypassLine);
  EXPECT_EQ(outcome.calls,
            (std::vector<std::string>{"LookupEntryByPath IODeviceTree:/options",
                                      "GetProperty options boot-args", "ReleaseEntry options"}));
}

void ExpectPlanned(const ObservedRun& outcome, const std::string& plan) {
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.fault, std::nullopt);
  EXPECT_EQ(Joined(outcome.flushes), plan);
  EXPECT_EQ(outcome.standardError, "");
}

void ExpectNothing(const ObservedRun& outcome) {
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(outcome.fault, std::nullopt);
  EXPECT_EQ(Joined(outcome.flushes), "");
  EXPECT_EQ(outcome.standardError, "");
}

TEST(Run, VersionSwitchLiftsTheVersionCheck) {
  const Payload payload(OlderPersonality);
  auto computer = OnePort();
  ExpectNothing(RunOver(computer, {"-p", payload.Path()}));
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", testing::Bytes("1"));
  ExpectPlanned(RunOver(computer, {"-p", payload.Path()}), PlanFor(payload.Path()));
}

TEST(Run, VersionSwitchThatIsANumberOrABooleanLiftsNothing) {
  const Payload payload(OlderPersonality);
  auto computer = OnePort();
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", 1);
  ExpectNothing(RunOver(computer, {"-p", payload.Path()}));
  computer.Set(computer.Options(), "fernwick_bypassversioncheck", true);
  ExpectNothing(RunOver(computer, {"-p", payload.Path()}));
}

TEST(Run, LongBypassOptionDisablesTheVersionCheckOfItsOwnRunOnly) {
  const Payload payload(OlderPersonality);
  ExpectPlanned(RunOver(OnePort(), {"--bypassVersion", "-p", payload.Path()}),
                PlanFor(payload.Path()));
  ExpectNothing(RunOver(OnePort(), {"-p", payload.Path()}));
}

TEST(Run, SecondRunInOneProcessIsLikeTheFirst) {
  const Payload payload(OnePersonality);
  const CommandLine line{"-v", "-p", payload.Path()};
  EXPECT_EQ(RunOver(OnePort(), line), RunOver(OnePort(), line));
}

TEST(Run, AsksTheRegistryInTheOrderOfTheRun) {
  const Payload payload(OnePersonality);
  const auto calls = RunOver(OnePort(), {"-v", "-p", payload.Path()}).calls;
  std::vector<std::string> beginnings;
  for (const auto& call : calls) {
    if (call.starts_with("Lookup") || call.starts_with("Match")) beginnings.push_back(call);
  }
  EXPECT_EQ(beginnings, (std::vector<std::string>{
                            "LookupEntryByPath IODeviceTree:/options",
                            "LookupEntryByPath IODeviceTree:/options",
                            "LookupEntryByPath IODeviceTree:/", "LookupEntryByPath IODeviceTree:/",
                            "MatchServicesByClass QuinceHPMDevice",  // the listing's own inventory
                            "MatchServicesByClass QuinceHPMDevice"}));  // and the matcher's
}

TEST(Run, MatchWithoutAnImageIsReportedAndEndsIt) {
  const Payload payload(
      "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>180</integer></dict></dict>");
  const auto outcome = RunOver(OnePort(), {"-v", "-p", payload.Path()});
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(outcome.flushes, testing::Joined({OpeningFlushes(payload.Path()),
                                              ReportFlushes("(null)", "180.00", "0"),
                                              {"\n\nExit status: 13\n"}}));
  EXPECT_EQ(outcome.standardError,
            "fernwick: Error in personality: no firmware image to flash for type LegacyUSBC\n");
}

// A console on which one of the flushes fails, as on a full disk, and those after it would not.
class ConsoleWithOneFailure : public Console {
 public:
  explicit ConsoleWithOneFailure(std::size_t failing) : failing_(failing) {}

  void WriteError(std::string_view text) override { error_ += text; }
  void Log(const std::string& message) override { error_ += LogLine(message); }

  const std::string& Output() const { return output_; }
  const std::string& Error() const { return error_; }

 private:
  int Send(std::string_view text) override {
    if (sent_++ == failing_) return ENOSPC;
    output_ += text;
    return 0;
  }

  std::size_t failing_;
  std::size_t sent_ = 0;
  std::string output_;
  std::string error_;
};

constexpr char OutputLost[] =
    "fernwick: standard output could not be written: No space left on device\n";

// The status of the run when its standard output fails at any of its flushes. What arrived is what
// was flushed before that, and standard error has one more line.
void ExpectStatusOfLostOutput(const std::vector<std::string>& arguments, int status) {
  const CommandLine line(arguments);
  const auto options = ParseOptions(line.Count(), line.Vector());
  const auto computer = OnePort();
  const auto whole = RunOver(computer, line);
  EXPECT_FALSE(whole.flushes.empty());
  std::string arrived;
  for (std::size_t i = 0; i < whole.flushes.size(); ++i) {
    testing::LoggingRegistry registry(computer.Recorded());
    ConsoleWithOneFailure console(i);
    const auto result = Run(options, registry, console);
    EXPECT_EQ(result.status, status) << "flush " << i;
    EXPECT_EQ(result.fault, std::nullopt) << "flush " << i;
    EXPECT_EQ(console.Output(), arrived) << "flush " << i;
    EXPECT_EQ(console.Error(), whole.standardError + OutputLost) << "flush " << i;
    EXPECT_EQ(registry.Calls(), whole.calls) << "flush " << i;
    arrived += whole.flushes[i];
  }
}

TEST(Run, LostPlanIsAFailure) {
  const Payload payload(OnePersonality);
  ExpectStatusOfLostOutput({"-p", payload.Path()}, 74);
  ExpectStatusOfLostOutput({"-v", "-p", payload.Path()}, 74);
}

TEST(Run, LostOutputKeepsAnotherStatus) {
  ExpectStatusOfLostOutput({"-v"}, 13);
  ExpectStatusOfLostOutput({"-v", "--no"}, 2);
  const Payload payload(
      "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>180</integer></dict></dict>");
  ExpectStatusOfLostOutput({"-v", "-p", payload.Path()}, 13);
}

TEST(Run, LostBypassLineIsAFailure) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "fernwick_bypass_usbc_updates", "1");
  testing::LoggingRegistry registry(computer.Recorded());
  ConsoleWithOneFailure console(0);
  EXPECT_EQ(fernwick::Run({}, registry, console).status, 74);
  EXPECT_EQ(console.Output(), "");
  EXPECT_EQ(console.Error(), OutputLost);
}

TEST(Run, WithoutOutputHasNothingToLose) {
  const auto computer = OnePort();
  testing::LoggingRegistry registry(computer.Recorded());
  ConsoleWithOneFailure console(0);
  EXPECT_EQ(fernwick::Run({}, registry, console).status, 13);
  EXPECT_EQ(console.Error(), NoBoardFiles);
}

TEST(Run, ABareSwitchNameIsAFaultThatPrintsNothing) {
  for (const char* arguments : {"fernwick_bypass_usbc_updates", "fernwick_bypassversioncheck",
                                "fernwick_bypass_usbc_updates=1 fernwick_bypass_usbc_updates"}) {
    auto computer = OnePort();
    computer.Set(computer.Options(), "boot-args", arguments);
    for (const CommandLine& line : {CommandLine({"-v"}), CommandLine({"--no"})}) {
      const auto outcome = RunOver(computer, line);
      EXPECT_EQ(outcome.fault, Fault::BareSwitch) << arguments;
      EXPECT_EQ(outcome.flushes, std::vector<std::string>()) << arguments;
      EXPECT_EQ(outcome.standardError, "") << arguments;
    }
  }
}

// A controller without a unique id beside the port, which a verbose run lists.
Computer WithoutUid() {
  auto computer = OnePort();
  computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  return computer;
}

constexpr char ThunderboltAfterPorts[] =
    "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>180</integer>"
    "<key>Existing Max Version</key><integer>170</integer></dict>"
    "<key>LegacyThunderbolt</key><array/><key>USBC</key><string/></dict>";

TEST(Run, AFaultOfTheMatcherLeavesWhatWasPrinted) {
  const Payload payload(ThunderboltAfterPorts);
  auto opening = OpeningFlushes(payload.Path());
  opening.pop_back();  // there are no matches
  const auto verbose = RunOver(WithoutUid(), {"-v", "-p", payload.Path()});
  EXPECT_EQ(verbose.fault, Fault::MissingUid);
  EXPECT_EQ(verbose.flushes, opening);
  EXPECT_EQ(verbose.standardError, "** Max firmware version not met.  Aborting\n");
  const auto silent = RunOver(WithoutUid(), {"-p", payload.Path()});
  EXPECT_EQ(silent.fault, Fault::MissingUid);
  EXPECT_EQ(silent.flushes, std::vector<std::string>());
}

TEST(Run, AFaultOfTheListingLeavesTheHeader) {
  Computer computer;
  computer.SetBoard("Zed-42", 3);
  computer.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  const Payload payload(OnePersonality);
  const auto outcome = RunOver(computer, {"-v", "-p", payload.Path()});
  EXPECT_EQ(outcome.fault, Fault::MissingUid);
  EXPECT_EQ(outcome.flushes, std::vector<std::string>{OpeningFlushes(payload.Path()).front()});
  EXPECT_EQ(outcome.standardError, "");
}

// After a fault the console's buffer is not flushed.
TEST(Run, AFaultFlushesNothing) {
  auto computer = OnePort();
  computer.Set(computer.Options(), "boot-args", "fernwick_bypassversioncheck");
  testing::LoggingRegistry registry(computer.Recorded());
  testing::TestConsole console;
  console.Write("waiting");
  EXPECT_EQ(fernwick::Run({}, registry, console).fault, Fault::BareSwitch);
  EXPECT_EQ(console.Flushes(), std::vector<std::string>());
}

TEST(ExitStatus, OfAnEmptyPlanIsThatOfNotWritingOne) {
  testing::TestConsole console;
  EXPECT_EQ(WritePlan(console, false, {}, {}), ExitStatus::EmptyPlan);
}

// Runs of different outcomes at once, many times.
TEST(Run, RunsInSeveralThreadsAreEachAsIfAlone) {
  const Payload payload(OlderPersonality);
  const auto computer = OnePort();
  const CommandLine plain = {"-v", "-p", payload.Path()};
  const CommandLine bypassed = {"-v", "--bypassVersion", "-p", payload.Path()};
  const auto expect = [&](const CommandLine& line) {
    const auto options = ParseOptions(line.Count(), line.Vector());
    return [&, options, expected = RunOver(computer, line)] {
      for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(testing::Observe(computer,
                                   [&](Registry& registry, Console& console) {
                                     return fernwick::Run(options, registry, console);
                                   }),
                  expected);
      }
    };
  };
  const auto first = expect(plain);
  const auto second = expect(bypassed);
  std::thread threads[] = {std::thread(first), std::thread(second), std::thread(first),
                           std::thread(second)};
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace fernwick
