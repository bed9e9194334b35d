#include "plan/match_report.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "testing/property_values.h"
#include "testing/test_console.h"

namespace fernwick {
namespace {

using testing::Dict;
using testing::List;

std::string ReportOf(const MatchRecord& match) {
  testing::TestConsole console;
  PrintMatchReport(console, match);
  return console.Output();
}

// The report of a match that has only the value that `line` shows: every other line shows an
// absent value. `line` replaces the line with the same label.
std::string EmptyReportBut(const std::string& line) {
  std::string report =
      "\tPERSONALITY_TYPE:               (null)\n"
      "\tCONFIG_PORT_ADDRESS:            0\n"
      "\tRID:                            0\n"
      "\tCONFIG_MODEL_NAME:              (null)\n"
      "\tCONFIG_MODEL_ID:                0\n"
      "\tCONFIG_MODEL_REVISION:          0\n"
      "\tCONFIG_PORT_UUID:               (null)\n"
      "\tCONFIG_PORT_SILICON_VENDOR_ID:  0\n"
      "\tCONFIG_PORT_SILICON_DEVICE_ID:  0\n"
      "\tCONFIG_PORT_SILICON_REVISION:   0\n"
      "\tCONFIG_PORT_OTP_REVISION:       0\n"
      "\tCONFIG_RIDGE_UID:               0x0\n"
      "\tCONFIG_RIDGE_SILICON_VENDOR_ID: 0\n"
      "\tCONFIG_RIDGE_SILICON_DEVICE_ID: 0\n"
      "\tCONFIG_RIDGE_SILICON_REVISION:  0\n"
      "\tCONFIG_RIDGE_FIRMWARE_MODE:     0\n"
      "\tCONFIG_FIRMWARE_NAME:           (null)\n"
      "\tCONFIG_VERSION:                 0.00\n"
      "\tCONFIG_PRIORITY:                0\n"
      "\tCONFIG_NVRAM_TO_SET:\n(null)\n"
      "\tCONFIG_NVRAM_TO_CLEAR:\n(null)\n"
      "\n\n";
  const auto label = line.substr(0, line.find(':') + 1);
  const auto start = report.find(label);
  auto end = report.find('\n', start) + 1;
  if (label.find("NVRAM") != std::string::npos) end = report.find('\n', end) + 1;
  return report.replace(start, end - start, line);
}

TEST(MatchReport, HeaderIsOneFlushedLine) {
  testing::TestConsole console;
  PrintMatchReportHeader(console);
  EXPECT_EQ(console.Flushes(), std::vector<std::string>{"Identified the following matches:\n"});
}

TEST(MatchReport, WholeMatch) {
  EXPECT_EQ(ReportOf({{"Personality Type", "Thunderbolt"},
                      {"Port Address", 56},
                      {"RID", 3},
                      {"Device Model Name", "Slate 13"},
                      {"Device Model ID", 17},
                      {"Device Model Revision", 2},
                      {"Port UUID", "5F1C9A04"},
                      {"Port Silicon Vendor ID", 1},
                      {"Port Silicon Device ID", 2},
                      {"Port Silicon Revision", 3},
                      {"Port OTP Revision", 4},
                      {"Ridge UID", 0xA1F3000000F510},
                      {"Ridge Silicon Vendor ID", 5},
                      {"Ridge Silicon Device ID", 6},
                      {"Ridge Silicon Revision", 7},
                      {"Firmware Mode", true},
                      {"Firmware", "ridge.bin"},
                      {"Version", 43.1},
                      {"Priority", 50},
                      {"SetNVRAM", Dict({{"a", "1"}, {"b", List({2})}})},
                      {"ClearNVRAM", List({"x", "y"})}}),
            "\tPERSONALITY_TYPE:               Thunderbolt\n"
            "\tCONFIG_PORT_ADDRESS:            56\n"
            "\tRID:                            3\n"
            "\tCONFIG_MODEL_NAME:              Slate 13\n"
            "\tCONFIG_MODEL_ID:                17\n"
            "\tCONFIG_MODEL_REVISION:          2\n"
            "\tCONFIG_PORT_UUID:               5F1C9A04\n"
            "\tCONFIG_PORT_SILICON_VENDOR_ID:  1\n"
            "\tCONFIG_PORT_SILICON_DEVICE_ID:  2\n"
            "\tCONFIG_PORT_SILICON_REVISION:   3\n"
            "\tCONFIG_PORT_OTP_REVISION:       4\n"
            "\tCONFIG_RIDGE_UID:               0xA1F3000000F510\n"
            "\tCONFIG_RIDGE_SILICON_VENDOR_ID: 5\n"
            "\tCONFIG_RIDGE_SILICON_DEVICE_ID: 6\n"
            "\tCONFIG_RIDGE_SILICON_REVISION:  7\n"
            "\tCONFIG_RIDGE_FIRMWARE_MODE:     1\n"
            "\tCONFIG_FIRMWARE_NAME:           ridge.bin\n"
            "\tCONFIG_VERSION:                 43.10\n"
            "\tCONFIG_PRIORITY:                50\n"
            "\tCONFIG_NVRAM_TO_SET:\n"
            "{\n"
            "    \"a\" = \"1\";\n"
            "    \"b\" = (\n"
            "        2\n"
            "    );\n"
            "}\n"
            "\tCONFIG_NVRAM_TO_CLEAR:\n"
            "(\n"
            "    \"x\",\n"
            "    \"y\"\n"
            ")\n"
            "\n\n");
}

TEST(MatchReport, WithoutPriorityShowsZero) {
  EXPECT_EQ(ReportOf({{"Firmware", "a.bin"}}),
            EmptyReportBut("\tCONFIG_FIRMWARE_NAME:           a.bin\n"));
}

TEST(MatchReport, WithoutSetNvramShowsNull) {
  EXPECT_EQ(ReportOf({}), EmptyReportBut("\tCONFIG_NVRAM_TO_SET:\n(null)\n"));
}

TEST(MatchReport, RidgeUidIsUpperCaseHexadecimal) {
  EXPECT_EQ(ReportOf({{"Ridge UID", 171}}),
            EmptyReportBut("\tCONFIG_RIDGE_UID:               0xAB\n"));
}

TEST(MatchReport, RidgeUidZeroKeepsItsPrefix) {
  EXPECT_EQ(ReportOf({{"Ridge UID", 0}}),
            EmptyReportBut("\tCONFIG_RIDGE_UID:               0x0\n"));
}

TEST(MatchReport, RidgeUidShowsAll64Bits) {
  EXPECT_EQ(ReportOf({{"Ridge UID", -1}}),
            EmptyReportBut("\tCONFIG_RIDGE_UID:               0xFFFFFFFFFFFFFFFF\n"));
}

TEST(MatchReport, NegativePortAddressPrintsUnsigned) {
  EXPECT_EQ(ReportOf({{"Port Address", -1}}),
            EmptyReportBut("\tCONFIG_PORT_ADDRESS:            4294967295\n"));
}

TEST(MatchReport, PortAddressThatIsAListShowsZero) {
  EXPECT_EQ(ReportOf({{"Port Address", List({1, 2})}}),
            EmptyReportBut("\tCONFIG_PORT_ADDRESS:            0\n"));
}

TEST(MatchReport, TextThatIsANumberIsRead) {
  EXPECT_EQ(ReportOf({{"Priority", "12 or so"}}),
            EmptyReportBut("\tCONFIG_PRIORITY:                12\n"));
}

TEST(MatchReport, ModelNameThatIsAListShowsNull) {
  EXPECT_EQ(ReportOf({{"Device Model Name", List({"a"})}}),
            EmptyReportBut("\tCONFIG_MODEL_NAME:              (null)\n"));
}

TEST(MatchReport, VersionHasTwoDecimals) {
  EXPECT_EQ(ReportOf({{"Version", 3}}), EmptyReportBut("\tCONFIG_VERSION:                 3.00\n"));
}

TEST(MatchReport, VersionIsSinglePrecision) {
  EXPECT_EQ(ReportOf({{"Version", 16777217}}),
            EmptyReportBut("\tCONFIG_VERSION:                 16777216.00\n"));
}

TEST(MatchReport, VersionNanPrintsAsTheCLibraryHasIt) {
  EXPECT_EQ(ReportOf({{"Version", std::numeric_limits<double>::quiet_NaN()}}),
            EmptyReportBut("\tCONFIG_VERSION:                 nan\n"));
}

TEST(MatchReport, NvramOfOtherKindsIsDumpedAsItIs) {
  EXPECT_EQ(ReportOf({{"SetNVRAM", "text"}}), EmptyReportBut("\tCONFIG_NVRAM_TO_SET:\n\"text\"\n"));
  EXPECT_EQ(ReportOf({{"ClearNVRAM", testing::Bytes("abcde")}}),
            EmptyReportBut("\tCONFIG_NVRAM_TO_CLEAR:\n<61626364 65>\n"));
}

TEST(MatchReport, FlushesLineByLine) {
  testing::TestConsole console;
  PrintMatchReport(console, {{"RID", 1}});
  ASSERT_EQ(console.Flushes().size(), 22u);
  EXPECT_EQ(console.Flushes()[2], "\tRID:                            1\n");
  EXPECT_EQ(console.Flushes()[19], "\tCONFIG_NVRAM_TO_SET:\n(null)\n");
  EXPECT_EQ(console.Flushes()[21], "\n\n");
}

}  // namespace
}  // namespace fernwick
