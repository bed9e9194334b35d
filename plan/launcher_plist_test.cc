#include "plan/launcher_plist.h"

#include <gtest/gtest.h>

#include "testing/property_values.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::List;

struct Written {
  int status;
  std::vector<std::string> flushes;
};

Written Write(bool verbose, const std::vector<std::string>& arguments, const PlanValues& plan) {
  testing::TestConsole console;
  const int status = WritePlan(console, verbose, arguments, plan);
  const auto flushes = console.Flushes();
  console.Flush();
  EXPECT_EQ(console.Flushes(), flushes);
  return {status, flushes};
}

constexpr char MinimalList[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<plist version=\"1.0\">\n"
    "<dict>\n"
    "\t<key>Version</key>\n"
    "\t<integer>1</integer>\n"
    "\t<key>Priority</key>\n"
    "\t<integer>2147483647</integer>\n"
    "\t<key>HallowArguments</key>\n"
    "\t<array>\n"
    "\t\t<string>-noreset</string>\n"
    "\t</array>\n"
    "</dict>\n"
    "</plist>\n";

TEST(WritePlan, WithoutNvramSettingsContainsThreeEntries) {
  const auto written = Write(false, {"-noreset"}, {});
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.flushes, std::vector<std::string>{MinimalList});
}

TEST(WritePlan, VerboseModeAddsATitle) {
  const auto written = Write(true, {"-noreset"}, {});
  EXPECT_EQ(written.flushes, std::vector<std::string>{
                                 std::string("\n\nResulting Kestrel Plist:\n\n") + MinimalList});
}

TEST(WritePlan, WithoutArgumentsWritesNothing) {
  const auto written = Write(true, {}, {});
  EXPECT_EQ(written.status, 1);
  EXPECT_EQ(written.flushes, std::vector<std::string>());
}

TEST(WritePlan, CarriesNvramSettingsAsTheyAre) {
  PlanValues plan;
  plan.lowestPriority = 0;
  plan.settings = {testing::Dict({{"b", 1.5}, {"a", List({true})}})};
  plan.clearings = {List({"x", "x", 7})};
  EXPECT_EQ(Write(false, {"a & b", "\x01"}, plan).flushes,
            std::vector<std::string>{"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                     "<plist version=\"1.0\">\n"
                                     "<dict>\n"
                                     "\t<key>Version</key>\n"
                                     "\t<integer>1</integer>\n"
                                     "\t<key>Priority</key>\n"
                                     "\t<integer>0</integer>\n"
                                     "\t<key>HallowArguments</key>\n"
                                     "\t<array>\n"
                                     "\t\t<string>a &amp; b</string>\n"
                                     "\t\t<string>\uFFFD</string>\n"
                                     "\t</array>\n"
                                     "\t<key>SetNVRAM</key>\n"
                                     "\t<dict>\n"
                                     "\t\t<key>b</key>\n"
                                     "\t\t<real>1.5</real>\n"
                                     "\t\t<key>a</key>\n"
                                     "\t\t<array>\n"
                                     "\t\t\t<true/>\n"
                                     "\t\t</array>\n"
                                     "\t</dict>\n"
                                     "\t<key>ClearNVRAM</key>\n"
                                     "\t<array>\n"
                                     "\t\t<string>x</string>\n"
                                     "\t\t<string>x</string>\n"
                                     "\t\t<integer>7</integer>\n"
                                     "\t</array>\n"
                                     "</dict>\n"
                                     "</plist>\n"});
}

}  // namespace
}  // namespace fernwick
