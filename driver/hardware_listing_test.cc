#include "driver/hardware_listing.h"

#include <gtest/gtest.h>

#include "testing/capture.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"

namespace fernwick {
namespace {

using Flushes = std::vector<std::string>;

Flushes HeaderFlushes(const BoardIdentity& identity, const std::optional<std::string>& directory) {
  testing::StreamCapture capture;
  Output out(capture.Stream());
  PrintHeader(out, identity, directory);
  return capture.Flushes();
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
};

Listing List(const testing::Computer& computer) {
  testing::StreamCapture capture;
  testing::LoggingRegistry registry(computer.Recorded());
  Output out(capture.Stream());
  PrintHardware(out, registry);
  return {capture.Flushes(), registry.CallsOf("MatchServicesByClass")};
}

TEST(PrintHardware, ShowsOnlyThePortsWhereThereAreBothKinds) {
  testing::Computer computer;
  computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  computer.AddPort("hpm0", {{"Address", 56}});
  const auto listing = List(computer);
  EXPECT_EQ(listing.flushes, (Flushes{"Current hardware:\n\n"
                                      "(\n"
                                      "    {\n"
                                      "        \"Port Address\" = 56;\n"
                                      "    }\n"
                                      ")",
                                      "\n\n"}));
  EXPECT_EQ(listing.matchings, std::vector<std::string>{"MatchServicesByClass QuinceHPMDevice"});
}

TEST(PrintHardware, ShowsThunderboltControllersWithoutPorts) {
  testing::Computer computer;
  computer.AddThunderbolt("ridge0", {{"UID", 7}, {"Depth", 0}, {"Route String", 0}});
  const auto listing = List(computer);
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

TEST(PrintHardware, SaysThatThereIsNone) {
  EXPECT_EQ(List(testing::Computer()).flushes,
            (Flushes{"No supported hardware on this platform?\n", "\n\n"}));
}

}  // namespace
}  // namespace fernwick
