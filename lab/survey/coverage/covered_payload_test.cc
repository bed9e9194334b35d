#include "lab/survey/coverage/covered_payload.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>

#include "lab/support/tool_run.h"
#include "testing/capture.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

constexpr char Recorded[] =
    "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
    "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
    "<data>WmVkLTE=</data></dict></dict></dict></dict>";

// A payload for the board "Zed-1", and a recording of it.
class PayloadCoverage : public ::testing::Test {
 protected:
  PayloadCoverage() { WriteConfiguration("{ USBC = (); }"); }

  void WriteConfiguration(const std::string& text) {
    directory_.Write("payload/Fernwick/Zed-1/Config.plist", text);
  }

  std::string Directory() const { return directory_.Path() + "/payload/Fernwick"; }

  testing::TemporaryDirectory directory_;
  const Options options_ = ToolOptions(directory_.Path() + "/payload", false);
  const std::string recording_ = directory_.Write("a.registry.plist", Recorded);
};

TEST_F(PayloadCoverage, OfAConfigurationThatIsReplacedMeanwhileIsAnError) {
  CoveredPayload payload(options_, {"Zed-1"});
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::Counted);
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::Counted);
  WriteConfiguration("{ USBC = ({}); }");
  const auto again = payload.Cover({recording_});
  ASSERT_FALSE(again);
  EXPECT_EQ(again.Error().status, LabStatus::UnreadableInput);
  EXPECT_EQ(again.Error().error.message,
            Directory() + "/Zed-1/Config.plist: it was replaced by another meanwhile");
  StringConsole console;
  CoverageTotals totals;
  const auto format = MakeCoverageText(console);
  testing::StandardErrorCapture errors;
  EXPECT_EQ(payload.Print(*format, totals), LabStatus::UnreadableInput);
  EXPECT_EQ(errors.TakeText(), "fernwick-lab: " + again.Error().error.message + "\n");
  EXPECT_EQ(totals.boardsWithoutRun, 1u);
}

TEST_F(PayloadCoverage, OfAConfigurationThatIsRemovedMeanwhileIsAnError) {
  WriteConfiguration("{}");
  CoveredPayload payload(options_, {"Zed-1"});
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::Counted);
  std::filesystem::remove(Directory() + "/Zed-1/Config.plist");
  StringConsole console;
  CoverageTotals totals;
  testing::StandardErrorCapture errors;
  EXPECT_EQ(payload.Print(*MakeCoverageText(console), totals), LabStatus::UnreadableInput);
  errors.TakeText();
}

// Without a descriptor for the configuration.
TEST_F(PayloadCoverage, EndsWhereDescriptorsAreLacking) {
  // The sanitizers need descriptors of their own.
  if (testing::UnderAddressSanitizer) GTEST_SKIP();
  const CoveredPayload payload(options_, {"Zed-1", "Zed-2"});
  StringConsole console;
  CoverageTotals totals;
  const auto format = MakeCoverageText(console);
  testing::StandardErrorCapture errors;
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none = {0, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const int status = payload.Print(*format, totals);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(status, LabStatus::OutOfResources);
  EXPECT_EQ(errors.TakeText(),
            "fernwick-lab: " + Directory() + "/Zed-1/Config.plist: Too many open files\n");
  console.Flush();
  EXPECT_EQ(console.Output(), "");
}

TEST_F(PayloadCoverage, AddsTheCountsOfThisPayloadAlone) {
  CoveredPayload counted(options_, {"Zed-1"});
  EXPECT_EQ(counted.Cover({recording_})->use, RecordingUse::Counted);
  const auto counts = counted.Counts();
  CoveredPayload payload(options_, {"Zed-1"});
  EXPECT_EQ(payload.Counts(), Json::object());
  EXPECT_TRUE(payload.AddCounts(counts));
  EXPECT_EQ(payload.Counts(), counts);
  EXPECT_TRUE(payload.AddCounts(counts));
  EXPECT_EQ(payload.Counts()["Zed-1"]["runs"], 2);
  EXPECT_FALSE(payload.AddCounts(nullptr));
  EXPECT_FALSE(payload.AddCounts({{"Zed-2", counts["Zed-1"]}}));
  EXPECT_FALSE(payload.AddCounts({{"Zed-1", 1}}));
  WriteConfiguration("{ USBC = ({}); }");
  EXPECT_FALSE(payload.AddCounts(counts));
  CoveredPayload ofAnother(options_, {"Zed-1"});
  EXPECT_EQ(ofAnother.Cover({recording_})->use, RecordingUse::Counted);
  EXPECT_FALSE(payload.AddCounts(ofAnother.Counts()));
}

TEST_F(PayloadCoverage, DoesNotCountWhatHasNoConfiguration) {
  CoveredPayload payload(options_, {"Zed-1"});
  WriteConfiguration("()");
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::NoConfiguration);
  WriteConfiguration("{");
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::NoConfiguration);
  std::filesystem::remove_all(Directory() + "/Zed-1");
  EXPECT_EQ(payload.Cover({recording_})->use, RecordingUse::UnknownBoard);
}

}  // namespace
}  // namespace fernwick::lab
