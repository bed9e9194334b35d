#include "lab/recordings/redaction.h"

#include <gtest/gtest.h>

#include "registry/recording_reader.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

// A recording of one plane.
PropertyValue RecordingOf(Dictionary root) {
  return Dictionary{{"Recording Version", 1},
                    {"Classes", Dictionary{{"A", "B"}}},
                    {"Planes", Dictionary{{"IOService", std::move(root)}}}};
}

RedactedRecording Redacted(const PropertyValue& recording, const std::set<std::string>& keys = {}) {
  Pseudonyms pseudonyms;
  return RedactRecording(recording, keys, pseudonyms);
}

TEST(IdentifiesComputer, AUniqueIdASerialNumberAHardwareAddress) {
  for (const auto* key : {"UID", "uid", "UUID", "Port UUID", "platform-uuid", "Unique ID",
                          "serial-number", "SerialNumber", "Serial", "local-mac-address"}) {
    EXPECT_TRUE(IdentifiesComputer(key)) << key;
  }
}

TEST(IdentifiesComputer, NothingElse) {
  for (const auto* key : {"RID", "Vendor ID", "Device Model ID", "board-id", "board-rev", "Address",
                          "Serial Bus", "UID Mask", "", "Version", "boot-args"}) {
    EXPECT_FALSE(IdentifiesComputer(key)) << key;
  }
}

TEST(Redaction, ReplacesWhatIdentifiesTheComputerAndCountsItByKey) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties", Dictionary{{"UID", 0x5A3}, {"Vendor ID", 7}}},
       {"Children",
        Array{Dictionary{{"Name", "a"}, {"Properties", Dictionary{{"UUID", "F0-1"}, {"UID", 4}}}},
              Dictionary{{"Name", "b"}, {"Class", "A"}}}}}));
  EXPECT_EQ(
      redacted.value,
      RecordingOf({{"Properties", Dictionary{{"UID", 0x13}, {"Vendor ID", 7}}},
                   {"Children",
                    Array{Dictionary{{"Name", "a"},
                                     {"Properties", Dictionary{{"UUID", "00-1"}, {"UID", 0x24}}}},
                          Dictionary{{"Name", "b"}, {"Class", "A"}}}}}));
  EXPECT_EQ(redacted.replaced, (ReplacedCounts{{"UID", 2}, {"UUID", 1}}));
  EXPECT_EQ(redacted.textsElsewhere, 0u);
}

TEST(Redaction, ReachesIntoTheValuesOfProperties) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties",
        Dictionary{{"ports", Array{Dictionary{{"UUIDs", "kept"}, {"UUID", Array{"x", "y", "x"}}}}},
                   {"map", Dictionary{{"UID", true}}}}}}));
  EXPECT_EQ(redacted.value,
            RecordingOf({{"Properties",
                          Dictionary{{"ports", Array{Dictionary{{"UUIDs", "kept"},
                                                                {"UUID", Array{"1", "2", "1"}}}}},
                                     {"map", Dictionary{{"UID", true}}}}}}));
  EXPECT_EQ(redacted.replaced, (ReplacedCounts{{"UUID", 1}}));
}

TEST(Redaction, TakesFurtherKeys) {
  const auto redacted =
      Redacted(RecordingOf({{"Properties", Dictionary{{"owner", "Ann"}}}}), {"owner"});
  EXPECT_EQ(redacted.value, RecordingOf({{"Properties", Dictionary{{"owner", "001"}}}}));
}

TEST(Redaction, LongTextsGiveWayWhereverTheyStand) {
  const auto redacted = Redacted(RecordingOf(
      {{"ID", "at-F00D-BEEF"},
       {"Properties", Dictionary{{"path", "/F00D-BEEF/F00D-BEEF"}, {"UUID", "F00D-BEEF"}}},
       {"Children", Array{Dictionary{{"Name", "port F00D-BEEF"}, {"Class", "F00D-BEEF"}}}}}));
  EXPECT_EQ(
      redacted.value,
      RecordingOf(
          {{"ID", "at-0000-0001"},
           {"Properties", Dictionary{{"path", "/0000-0001/0000-0001"}, {"UUID", "0000-0001"}}},
           {"Children", Array{Dictionary{{"Name", "port 0000-0001"}, {"Class", "F00D-BEEF"}}}}}));
  EXPECT_EQ(redacted.textsElsewhere, 3u);
}

TEST(Redaction, LongTextsGiveWayInDataToo) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties", Dictionary{{"log", testing::Bytes(std::string("\xFF F00D-BEEF\0", 12))},
                                 {"other", testing::Bytes("F00D-BEE")},
                                 {"UUID", "F00D-BEEF"}}}}));
  EXPECT_EQ(redacted.value,
            RecordingOf({{"Properties",
                          Dictionary{{"log", testing::Bytes(std::string("\xFF 0000-0001\0", 12))},
                                     {"other", testing::Bytes("F00D-BEE")},
                                     {"UUID", "0000-0001"}}}}));
  EXPECT_EQ(redacted.textsElsewhere, 1u);
}

TEST(Redaction, ShortTextsMayStandElsewhereByChance) {
  const auto withUuid =
      RecordingOf({{"Properties", Dictionary{{"path", "1234567"}, {"UUID", "1234567"}}}});
  EXPECT_EQ(Redacted(withUuid).value,
            RecordingOf({{"Properties", Dictionary{{"path", "1234567"}, {"UUID", "0000001"}}}}));
}

TEST(Redaction, IsConsistentAcrossRecordingsAndLeavesThemWellFormed) {
  Pseudonyms pseudonyms;
  const auto desk =
      RecordingOf({{"ID", "DEADBEEF-1"}, {"Properties", Dictionary{{"UUID", "DEADBEEF"}}}});
  const auto lap =
      RecordingOf({{"Properties", Dictionary{{"UUID", Array{"CAFEBABE", "DEADBEEF"}}}}});
  const auto first = RedactRecording(desk, {}, pseudonyms).value;
  const auto second = RedactRecording(lap, {}, pseudonyms).value;
  EXPECT_EQ(first,
            RecordingOf({{"ID", "00000001-1"}, {"Properties", Dictionary{{"UUID", "00000001"}}}}));
  EXPECT_EQ(second,
            RecordingOf({{"Properties", Dictionary{{"UUID", Array{"00000002", "00000001"}}}}}));
  EXPECT_EQ(InterpretRecording(first).error, "");
}

}  // namespace
}  // namespace fernwick::lab
