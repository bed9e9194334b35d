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

// No property is dropped, unless the rules say so.
RedactedRecording Redacted(const PropertyValue& recording,
                           const RedactionRules& rules = {.keepsAll = true}) {
  Pseudonyms pseudonyms;
  return RedactRecording(recording, rules, pseudonyms);
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
  EXPECT_EQ(redacted.counts.replaced, (PropertyCounts{{"UID", 2}, {"UUID", 1}}));
  EXPECT_EQ(redacted.counts.kept, (PropertyCounts{{"Vendor ID", 1}}));
  EXPECT_EQ(redacted.counts.texts, 0u);
  EXPECT_EQ(redacted.counts.names, 0u);
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
  EXPECT_EQ(redacted.counts.replaced, (PropertyCounts{{"UUID", 1}}));
}

TEST(Redaction, ReplacesFurtherKeys) {
  const auto redacted =
      Redacted(RecordingOf({{"Properties", Dict({{"owner", "Ann"}})}}), {.replaced = {"owner"}});
  EXPECT_EQ(redacted.list.value, RecordingOf({{"Properties", Dict({{"owner", "001"}})}}));
}

TEST(Redaction, ReplacesLongTextsEverywhere) {
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
  EXPECT_EQ(redacted.counts.texts, 1u);
  EXPECT_EQ(redacted.counts.names, 2u);
}

TEST(Redaction, ReplacesLongTextsInData) {
  const auto redacted = Redacted(RecordingOf(
      {{"Properties", Dict({{"log", testing::Bytes(std::string("\xFF F00D-BEEF\0", 12))},
                            {"other", testing::Bytes("F00D-BEE")},
                            {"UUID", "F00D-BEEF"}})}}));
  EXPECT_EQ(redacted.list.value,
            RecordingOf(
                {{"Properties", Dict({{"log", testing::Bytes(std::string("\xFF 0000-0001\0", 12))},
                                      {"other", testing::Bytes("F00D-BEE")},
                                      {"UUID", "0000-0001"}})}}));
  EXPECT_EQ(redacted.counts.texts, 1u);
}

TEST(Redaction, KeepsShortTextsThatMayOccurByChance) {
  const auto withUuid =
      RecordingOf({{"Properties", Dict({{"path", "1234567"}, {"UUID", "1234567"}})}});
  EXPECT_EQ(Redacted(withUuid).list.value,
            RecordingOf({{"Properties", Dict({{"path", "1234567"}, {"UUID", "0000001"}})}}));
}

TEST(Redaction, DropsPropertiesThatTheToolDoesNotRead) {
  const auto recording =
      RecordingOf({{"Properties", Dict({{"owner", "Ann"}, {"Version", 5}, {"place", "lab"}})}});
  const auto redacted = Redacted(recording, {});
  EXPECT_EQ(redacted.list.value, RecordingOf({{"Properties", Dict({{"Version", 5}})}}));
  EXPECT_EQ(redacted.counts.kept, (PropertyCounts{{"Version", 1}}));
  EXPECT_EQ(redacted.counts.dropped, (PropertyCounts{{"owner", 1}, {"place", 1}}));
  EXPECT_EQ(
      Redacted(recording, {.replaced = {"owner"}, .kept = {"place"}}).list.value,
      RecordingOf({{"Properties", Dict({{"owner", "001"}, {"Version", 5}, {"place", "lab"}})}}));
}

TEST(Redaction, ReplacesIdentifiersOfDroppedPropertiesInNames) {
  const auto redacted = Redacted(
      RecordingOf(
          {{"Properties", Dict({{"serial-number", testing::Bytes(std::string("C02XK1JG\0", 9))},
                                {"boot-args", "sn=c02xk1jg"}})},
           {"Children", List({Dict({{"Name", "desk C02XK1JG"}, {"ID", "sw@1b2c3d4e5f60"}})})}}),
      {});
  EXPECT_EQ(redacted.list.value,
            RecordingOf({{"Properties", Dict({{"boot-args", "sn=00000001"}})},
                         {"Children",
                          List({Dict({{"Name", "desk 00000001"}, {"ID", "sw@000000000002"}})})}}));
  EXPECT_EQ(redacted.counts.dropped, (PropertyCounts{{"serial-number", 1}}));
  EXPECT_EQ(redacted.counts.names, 2u);
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
