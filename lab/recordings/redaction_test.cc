#include "lab/recordings/redaction.h"

#include <gtest/gtest.h>

#include "registry/recording_reader.h"
#include "testing/property_values.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;

// A recording of one plane.
PropertyValue RecordingOf(const Record& root) {
  return Dict({{"Recording Version", 1},
               {"Classes", Dict({{"A", "B"}})},
               {"Planes", Dict({{"IOService", Dict(root)}})}});
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
      {{"Properties", Dict({{"UID", 0x5A3}, {"Vendor ID", 7}})},
       {"Children",
        List({Dict({{"Name", "a"}, {"Properties", Dict({{"UUID", "F0-1"}, {"UID", 4}})}}),
              Dict({{"Name", "b"}, {"Class", "A"}})})}}));
  EXPECT_EQ(
      redacted.list.value,
      RecordingOf(
          {{"Properties", Dict({{"UID", 0x13}, {"Vendor ID", 7}})},
           {"Children",
            List({Dict({{"Name", "a"}, {"Properties", Dict({{"UUID", "00-1"}, {"UID", 0x24}})}}),
                  Dict({{"Name", "b"}, {"Class", "A"}})})}}));
  EXPECT_EQ(redacted.replaced, (ReplacedCounts{{"UID", 2}, {"UUID", 1}}));
  EXPECT_EQ(redacted.textsElsewhere, 0u);
}

TEST(Redaction, ReachesIntoTheValuesOfProperties) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties",
        Dict({{"ports", List({Dict({{"UUIDs", "kept"}, {"UUID", List({"x", "y", "x"})}})})},
              {"map", Dict({{"UID", true}})}})}}));
  EXPECT_EQ(
      redacted.list.value,
      RecordingOf(
          {{"Properties",
            Dict({{"ports", List({Dict({{"UUIDs", "kept"}, {"UUID", List({"1", "2", "1"})}})})},
                  {"map", Dict({{"UID", true}})}})}}));
  EXPECT_EQ(redacted.replaced, (ReplacedCounts{{"UUID", 1}}));
}

TEST(Redaction, TakesFurtherKeys) {
  const auto redacted =
      Redacted(RecordingOf({{"Properties", Dict({{"owner", "Ann"}})}}), {"owner"});
  EXPECT_EQ(redacted.list.value, RecordingOf({{"Properties", Dict({{"owner", "001"}})}}));
}

TEST(Redaction, LongTextsGiveWayWhereverTheyStand) {
  const auto redacted = Redacted(RecordingOf(
      {{"ID", "at-F00D-BEEF"},
       {"Properties", Dict({{"path", "/F00D-BEEF/F00D-BEEF"}, {"UUID", "F00D-BEEF"}})},
       {"Children", List({Dict({{"Name", "port F00D-BEEF"}, {"Class", "F00D-BEEF"}})})}}));
  EXPECT_EQ(
      redacted.list.value,
      RecordingOf(
          {{"ID", "at-0000-0001"},
           {"Properties", Dict({{"path", "/0000-0001/0000-0001"}, {"UUID", "0000-0001"}})},
           {"Children", List({Dict({{"Name", "port 0000-0001"}, {"Class", "F00D-BEEF"}})})}}));
  EXPECT_EQ(redacted.textsElsewhere, 3u);
}

TEST(Redaction, LongTextsGiveWayInDataToo) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties", Dict({{"log", testing::Bytes(std::string("\xFF F00D-BEEF\0", 12))},
                            {"other", testing::Bytes("F00D-BEE")},
                            {"UUID", "F00D-BEEF"}})}}));
  EXPECT_EQ(redacted.list.value,
            RecordingOf(
                {{"Properties", Dict({{"log", testing::Bytes(std::string("\xFF 0000-0001\0", 12))},
                                      {"other", testing::Bytes("F00D-BEE")},
                                      {"UUID", "0000-0001"}})}}));
  EXPECT_EQ(redacted.textsElsewhere, 1u);
}

TEST(Redaction, ShortTextsMayStandElsewhereByChance) {
  const auto withUuid =
      RecordingOf({{"Properties", Dict({{"path", "1234567"}, {"UUID", "1234567"}})}});
  EXPECT_EQ(Redacted(withUuid).list.value,
            RecordingOf({{"Properties", Dict({{"path", "1234567"}, {"UUID", "0000001"}})}}));
}

TEST(Redaction, IsConsistentAcrossRecordingsAndLeavesThemWellFormed) {
  Pseudonyms pseudonyms;
  const auto desk =
      RecordingOf({{"ID", "DEADBEEF-1"}, {"Properties", Dict({{"UUID", "DEADBEEF"}})}});
  const auto lap = RecordingOf({{"Properties", Dict({{"UUID", List({"CAFEBABE", "DEADBEEF"})}})}});
  auto first = RedactRecording(desk, {}, pseudonyms).list;
  const auto second = RedactRecording(lap, {}, pseudonyms).list;
  EXPECT_EQ(first.value,
            RecordingOf({{"ID", "00000001-1"}, {"Properties", Dict({{"UUID", "00000001"}})}}));
  EXPECT_EQ(second.value,
            RecordingOf({{"Properties", Dict({{"UUID", List({"00000002", "00000001"})}})}}));
  EXPECT_TRUE(InterpretRecording(std::move(first)));
}

}  // namespace
}  // namespace fernwick::lab
