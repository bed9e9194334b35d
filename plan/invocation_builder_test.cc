#include "plan/invocation_builder.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "plan/match_report.h"
#include "testing/call_lists.h"
#include "testing/property_values.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;

using Words = std::vector<std::string>;

// The result of adding the matches, in verbose mode.
struct Built {
  Words arguments;
  PlanValues plan;
  std::string verboseText;
  std::string standardError;
  bool accepted = true;  // whether every match was
};

Built Build(std::initializer_list<MatchRecord> matches,
            const std::string& directory = "/P/Fernwick/",
            const std::optional<std::string>& boardId = "Zed-42") {
  Built built;
  testing::TestConsole console;
  InvocationBuilder builder(directory, boardId);
  for (const auto& match : matches) {
    built.accepted = built.accepted && builder.AddMatch(match, built.plan, true, console);
  }
  builder.FinishInvocation();
  console.Flush();
  built.arguments = builder.Arguments();
  built.verboseText = console.Output();
  built.standardError = console.Error();
  return built;
}

MatchRecord Thunderbolt(int rid, int mode, const char* image) {
  return {{"Personality Type", "Thunderbolt"},
          {"RID", rid},
          {"Firmware Mode", mode},
          {"Firmware", image}};
}

MatchRecord Usbc(const char* image) {
  return {{"Personality Type", "USBC"}, {"Firmware", image}};
}

MatchRecord Unknown() {
  return {{"Personality Type", "Serial"}};
}

Words Head(const char* utility) {
  return {"/usr/sbin/hallow", "-verbose", "-mount", "/", "-firmware", utility};
}

const Words Trailer = {"-folder", "TBTH", "-options"};

TEST(InvocationBuilder, TwoThunderboltMatchesOfOneGroup) {
  EXPECT_EQ(Build({Thunderbolt(1, 0, "fw1.bin"), Thunderbolt(2, 1, "fw2.bin")}).arguments,
            (Words{"/usr/sbin/hallow", "-verbose", "-mount", "/", "-firmware",
                   "/P/Fernwick/RidgeFlash.efi", "-payload", "/P/Fernwick/Zed-42/fw1.bin",
                   "-payload", "/P/Fernwick/Zed-42/fw2.bin", "-folder", "TBTH", "-options",
                   "-g -o -sr 1 0 -ee efi-quince-payload0-data "
                   "-g -o -sr 2 0 -fs efi-quince-payload1-data -noreset"}));
}

TEST(InvocationBuilder, OneUsbcMatchHasTwelveArguments) {
  const auto built = Build({Usbc("port.bin")});
  EXPECT_EQ(built.arguments.size(), 12u);
  EXPECT_EQ(built.arguments,
            testing::Joined({Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/port.bin"},
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, OneThunderboltMatchOfEitherTypeHasTwelveArguments) {
  for (const char* type : {"Thunderbolt", "LegacyThunderbolt"}) {
    EXPECT_EQ(Build({{{"Personality Type", type}, {"RID", 4}, {"Firmware", "r"}}}).arguments,
              testing::Joined({Head("/P/Fernwick/RidgeFlash.efi"),
                               {"-payload", "/P/Fernwick/Zed-42/r"},
                               Trailer,
                               {"-g -o -sr 4 0 -ee efi-quince-payload0-data -noreset"}}))
        << type;
  }
}

TEST(InvocationBuilder, OneLegacyUsbcMatchHasTwelveArguments) {
  EXPECT_EQ(Build({{{"Personality Type", "LegacyUSBC"}, {"Firmware", "p"}}}).arguments,
            testing::Joined({Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/p"},
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, MatchesOfAnUnknownTypeOnlyNameTheBareDirectory) {
  const auto built = Build({Unknown()});
  EXPECT_EQ(built.arguments, testing::Joined({Head("/P/Fernwick/"), Trailer, {"-noreset"}}));
  EXPECT_EQ(built.verboseText, "\t*** No supported platform type? (was using Serial)***\n");
}

TEST(InvocationBuilder, UnknownTypeIsSilentWithoutVerboseMode) {
  testing::TestConsole console;
  PlanValues plan;
  InvocationBuilder builder("/P/Fernwick/", "Zed-42");
  EXPECT_TRUE(builder.AddMatch(Unknown(), plan, false, console));
  console.Flush();
  EXPECT_EQ(console.Output(), "");
}

TEST(InvocationBuilder, UnknownTypeIsLoggedAfterItsReportAndFlushed) {
  testing::TestConsole console;
  PlanValues plan;
  InvocationBuilder builder("/P/Fernwick/", "Zed-42");
  PrintMatchReport(console, Unknown());
  builder.AddMatch(Unknown(), plan, true, console);
  ASSERT_EQ(console.Flushes().size(), 23u);
  EXPECT_EQ(console.Flushes()[21], "\n\n");
  EXPECT_EQ(console.Flushes()[22], "\t*** No supported platform type? (was using Serial)***\n");
}

TEST(InvocationBuilder, AbsentFirmwareModeCountsAsZero) {
  EXPECT_EQ(Build({{{"Personality Type", "Thunderbolt"}, {"RID", 1}, {"Firmware", "a"}}})
                .arguments.back(),
            "-g -o -sr 1 0 -ee efi-quince-payload0-data -noreset");
}

TEST(InvocationBuilder, FirmwareModeIsReadAsUnsigned32) {
  const auto optionsOf = [](const PropertyValue& mode) {
    return Build(
               {{{"Personality Type", "Thunderbolt"}, {"Firmware Mode", mode}, {"Firmware", "a"}}})
        .arguments.back();
  };
  const std::string engaged = "-g -o -sr 0 0 -fs efi-quince-payload0-data -noreset";
  const std::string idle = "-g -o -sr 0 0 -ee efi-quince-payload0-data -noreset";
  EXPECT_EQ(optionsOf(true), engaged);
  EXPECT_EQ(optionsOf(-1), engaged);
  EXPECT_EQ(optionsOf("2"), engaged);
  EXPECT_EQ(optionsOf(0x100000000), idle);
  EXPECT_EQ(optionsOf(0.9), idle);
  EXPECT_EQ(optionsOf(List({1})), idle);
}

TEST(InvocationBuilder, AbsentRidIsZero) {
  EXPECT_EQ(Build({{{"Personality Type", "Thunderbolt"}, {"Firmware Mode", 1}, {"Firmware", "a"}}})
                .arguments.back(),
            "-g -o -sr 0 0 -fs efi-quince-payload0-data -noreset");
}

TEST(InvocationBuilder, NegativeRidPrintsUnsigned) {
  EXPECT_EQ(Build({Thunderbolt(-1, 0, "a")}).arguments.back(),
            "-g -o -sr 4294967295 0 -ee efi-quince-payload0-data -noreset");
}

TEST(InvocationBuilder, TwoGroupsHaveTwoHeadsAndOneOptionsArgument) {
  EXPECT_EQ(Build({Thunderbolt(1, 0, "r.bin"), Usbc("p.bin")}).arguments,
            testing::Joined({Head("/P/Fernwick/RidgeFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/r.bin"},
                             Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/p.bin"},
                             Trailer,
                             Trailer,
                             {"-g -o -sr 1 0 -ee efi-quince-payload0-data "
                              "-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

// Types decide about groups, not utilities.
TEST(InvocationBuilder, TypesOfOneUtilityAreGroupsOfTheirOwn) {
  const MatchRecord legacy{{"Personality Type", "LegacyUSBC"}, {"Firmware", "l.bin"}};
  EXPECT_EQ(Build({legacy, Usbc("p.bin")}).arguments,
            testing::Joined({Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/l.bin"},
                             Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/p.bin"},
                             Trailer,
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data "
                              "-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, UnknownTypeBetweenTwoKnownMatchesSplitsTheirGroup) {
  EXPECT_EQ(Build({Usbc("a"), Unknown(), Usbc("b")}).arguments,
            testing::Joined({Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/a"},
                             Head("/P/Fernwick/"),
                             Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/Zed-42/b"},
                             Trailer,
                             Trailer,
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data "
                              "-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, TypesAreCaseSensitive) {
  const auto built = Build({{{"Personality Type", "usbc"}, {"Firmware", "a"}}});
  EXPECT_EQ(built.verboseText, "\t*** No supported platform type? (was using usbc)***\n");
}

TEST(InvocationBuilder, MergesNvramAlsoForAnUnknownType) {
  const auto built = Build({{{"Personality Type", "Serial"},
                             {"SetNVRAM", Dict({{"a", 1}})},
                             {"ClearNVRAM", List({"b"})}}});
  EXPECT_EQ(NvramToSet(built.plan), (Record{{"a", 1}}));
  EXPECT_EQ(NvramToClear(built.plan), (std::vector<PropertyValue>{"b"}));
}

TEST(InvocationBuilder, DoubledSlashStaysInBothPaths) {
  EXPECT_EQ(Build({Usbc("/a.bin")}, "/P//Fernwick/").arguments,
            testing::Joined({Head("/P//Fernwick/PortFlash.efi"),
                             {"-payload", "/P//Fernwick/Zed-42/a.bin"},
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, EmptyBoardIdentifierIsUsedAsItIs) {
  EXPECT_EQ(Build({Usbc("a.bin")}, "/P/Fernwick/", "").arguments,
            testing::Joined({Head("/P/Fernwick/PortFlash.efi"),
                             {"-payload", "/P/Fernwick/a.bin"},
                             Trailer,
                             {"-g -os -o u -f efi-quince-payload0-data -noreset"}}));
}

TEST(InvocationBuilder, RefusesAMatchWithoutAnImage) {
  for (const MatchRecord& match : {MatchRecord{{"Personality Type", "USBC"}},
                                   MatchRecord{{"Personality Type", "USBC"}, {"Firmware", ""}},
                                   MatchRecord{{"Personality Type", "USBC"}, {"Firmware", 7}}}) {
    const auto built = Build({match});
    EXPECT_FALSE(built.accepted);
    EXPECT_EQ(built.standardError,
              "fernwick: Error in personality: no firmware image to flash for type USBC\n");
  }
}

TEST(InvocationBuilder, RefusesAnImageWithoutABoardToLookItUpFor) {
  const auto built = Build({Usbc("a.bin")}, "/P/Fernwick/", std::nullopt);
  EXPECT_FALSE(built.accepted);
  EXPECT_EQ(built.standardError,
            "fernwick: Error in personality: no firmware image to flash for type USBC\n");
}

TEST(InvocationBuilder, WithoutMatchesOnlyContainsTheOptionsArgument) {
  EXPECT_EQ(Build({}).arguments, (Words{"-noreset"}));
}

std::vector<std::string> PrintedFlushes(std::initializer_list<MatchRecord> matches,
                                        const std::string& directory) {
  PlanValues plan;
  InvocationBuilder builder(directory, "Zed-42");
  testing::TestConsole console;
  for (const auto& match : matches) builder.AddMatch(match, plan, false, console);
  builder.FinishInvocation();
  builder.PrintInvocation(console);
  return console.Flushes();
}

TEST(FlashingUtility, IsOneOfTwoByTheExactType) {
  EXPECT_EQ(FlashingUtility("LegacyThunderbolt"), "RidgeFlash.efi");
  EXPECT_EQ(FlashingUtility("Thunderbolt"), "RidgeFlash.efi");
  EXPECT_EQ(FlashingUtility("LegacyUSBC"), "PortFlash.efi");
  EXPECT_EQ(FlashingUtility("USBC"), "PortFlash.efi");
  EXPECT_EQ(FlashingUtility("usbc"), "");
}

TEST(PrintInvocation, QuotesTheOptionsAndEndsAtTheirQuote) {
  EXPECT_EQ(PrintedFlushes({Usbc("a.bin")}, "/P/Fernwick/"),
            (Words{"Hallow Invocation:\n",
                   "\t/usr/sbin/hallow -verbose -mount / -firmware /P/Fernwick/PortFlash.efi "
                   "-payload /P/Fernwick/Zed-42/a.bin -folder TBTH -options "
                   "\"-g -os -o u -f efi-quince-payload0-data -noreset\"\n"}));
}

TEST(PrintInvocation, LeavesNoBlankAfterAQuotedArgument) {
  EXPECT_EQ(PrintedFlushes({Usbc("a.bin")}, "/my P/Fernwick/"),
            (Words{"Hallow Invocation:\n",
                   "\t/usr/sbin/hallow -verbose -mount / -firmware "
                   "\"/my P/Fernwick/PortFlash.efi\"-payload "
                   "\"/my P/Fernwick/Zed-42/a.bin\"-folder TBTH -options "
                   "\"-g -os -o u -f efi-quince-payload0-data -noreset\"\n"}));
}

TEST(PrintInvocation, OptionsWithoutABlankAreNotQuoted) {
  EXPECT_EQ(PrintedFlushes({Unknown()}, "/P/Fernwick/"),
            (Words{"Hallow Invocation:\n",
                   "\t/usr/sbin/hallow -verbose -mount / -firmware /P/Fernwick/ "
                   "-folder TBTH -options -noreset \n"}));
}

}  // namespace
}  // namespace fernwick
