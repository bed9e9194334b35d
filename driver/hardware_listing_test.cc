#include "driver/hardware_listing.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "testing/computer.h"
#include "testing/logging_registry.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using Flushes = std::vector<std::string>;

Flushes HeaderFlushes(const BoardIdentity& identity, const std::optional<std::string>& directory) {
  testing::TestConsole console;
  PrintHeader(console, identity, directory);
  return console.Flushes();
}

TEST(PrintHeader, ShowsTheBoardAndTheDirectory) {
  EXPECT_EQ(HeaderFlushes({.boardIdString = "Zed-0123456789ABCDEF",
                           .boardId = 0x0123456789ABCDEF,
                           .boardRevision = 131},
                          "/P/Fernwick/"),
            (Flushes{"\n"
                     "Board ID:                123456789ABCDEF\n"
                     "Board ID String:         Zed-0123456789ABCDEF\n"
                     "Board Revision:          131\n"
                     "\n"
                     "Personalities Directory: /P/Fernwick/\n"
                     "\n\n"}));
}

TEST(PrintHeader, ShowsWhatIsAbsent) {
  EXPECT_EQ(HeaderFlushes({}, std::nullopt), (Flushes{"\n"
                                                      "Board ID:                0\n"
                                                      "Board ID String:         (null)\n"
                                                      "Board Revision:          0\n"
                                                      "\n"
                                                      "Personalities Directory: (null)\n"
                                                      "\n\n"}));
}

struct Listing {
  Flushes flushes;
  std::vector<std::string> matchings;  // which classes were asked for
  std::optional<Fault> fault;
};

Listing ListingOf(const testing::Computer& computer) {
  testing::TestConsole console;
  testing::LoggingRegistry registry(computer.Recorded());
  const auto fault = PrintHardware(console, registry);
  const auto flushes = console.Flushes();
  console.Flush();
  EXPECT_EQ(console.Flushes(), flushes);
  return {flushes, registry.CallsOf("MatchServicesByClass"), fault};
}

TEST(PrintHardware, ShowsOnlyThePortsWhereThereAreBothKinds) {
  testing::Computer computer;
  computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  computer.AddPort("hpm0", {{"Address", 56}});
  const auto listing = ListingOf(computer);
  EXPECT_EQ(listing.flushes, (Flushes{"Current hardware:\n\n"
                                      "(\n"
                                      "    {\n"
                                      "        \"Port Address\" = 56;\n"
                                      "    }\n"
                                      ")",
                                      "\n\n"}));
  EXPECT_EQ(listing.matchings, std::vector<std::string>{"MatchServicesByClass QuinceHPMDevice"});
  EXPECT_EQ(listing.fault, std::nullopt);
}

TEST(PrintHardware, ShowsThunderboltControllersWithoutPorts) {
  testing::Computer computer;
  computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  const auto listing = ListingOf(computer);
  EXPECT_EQ(listing.flushes, (Flushes{"Current hardware:\n\n"
                                      "(\n"
                                      "    {\n"
                                      "        \"RID\" = 7;\n"
                                      "        \"Ridge UID\" = 7;\n"
                                      "    }\n"
                                      ")",
                                      "\n\n"}));
  EXPECT_EQ(listing.matchings,
            (std::vector<std::string>{"MatchServicesByClass QuinceHPMDevice",
                                      "MatchServicesByClass IOThunderboltSwitch"}));
}

TEST(PrintHardware, ReportsThatThereIsNone) {
  EXPECT_EQ(ListingOf(testing::Computer()).flushes,
            (Flushes{"No supported hardware on this platform?\n", "\n\n"}));
}

TEST(PrintHardware, OfAFaultPrintsNothing) {
  testing::Computer ridge;
  ridge.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  EXPECT_EQ(ListingOf(ridge).fault, Fault::MissingUid);
  EXPECT_EQ(ListingOf(ridge).flushes, Flushes());
  testing::Computer port;
  const auto above = port.AddThunderbolt("ridge0", {{"Depth", 0}, {"Route String", 0}});
  port.AddService(above, "hpm0", "QuinceHPMDevice", {{"Address", 0}});
  const auto listing = ListingOf(port);
  EXPECT_EQ(listing.fault, Fault::MissingUid);
  EXPECT_EQ(listing.flushes, Flushes());
  EXPECT_EQ(listing.matchings, std::vector<std::string>{"MatchServicesByClass QuinceHPMDevice"});
}

}  // namespace
}  // namespace fernwick
