#include "lab/what_if/changed_computer.h"

#include <gtest/gtest.h>

#include "registry/board_identity.h"
#include "registry/recording_reader.h"
#include "testing/computer.h"
#include "testing/property_values.h"
#include "testing/recordings.h"

namespace fernwick::lab {
namespace {

// A computer with a port below a bus, and several entries of one name.
class ComputerToChange : public ::testing::Test {
 protected:
  ComputerToChange() {
    computer_.SetBoard("Zed-42", 3);
    const auto bus = computer_.AddService(computer_.Services(), "bus", "Bus", {});
    port_ = computer_.AddService(bus, "hpm0", "QuinceHPMDevice", {{"Version", 1}, {"RID", 2}});
    for (int i = 0; i < 9; ++i) computer_.AddPort("twin", {});
    // The twins are entries of their own; each has an entry below it.
    computer_.AddService(port_, "twin", "Other", {});
  }

  // The error of the changes, or the properties of the port.
  std::string Apply(std::vector<std::string> properties, std::size_t boardRevision = 256) {
    changes_ = *ParseChanges(
        {.properties = std::move(properties), .personalities = {}, .boardRevision = boardRevision});
    ChangedComputer changed(testing::RecordingOf(testing::ContentOf(computer_.Recorded())));
    if (const auto error = ApplyChanges(changes_, changed)) return Describe(*error);
    RecordedRegistry registry(changed.Recorded());
    revision_ = ReadBoardRevision(registry);
    return WriteXmlPropertyList(changed.Properties(port_));
  }

  static std::string Xml(const Record& record) { return WriteXmlPropertyList(Dictionary(record)); }

  testing::Computer computer_;
  RegistryEntry port_;
  Changes changes_;
  int revision_ = 0;
};

TEST_F(ComputerToChange, HasAPropertyReplacedAddedOrRemoved) {
  EXPECT_EQ(Apply({"hpm0:Version=5"}), Xml({{"Version", 5}, {"RID", 2}}));
  EXPECT_EQ(Apply({"hpm0:Address=5"}), Xml({{"Version", 1}, {"RID", 2}, {"Address", 5}}));
  EXPECT_EQ(Apply({"hpm0:Version="}), Xml({{"RID", 2}}));
  EXPECT_EQ(Apply({"hpm0:Version=", "hpm0:RID=7", "hpm0:RID=8"}), Xml({{"RID", 8}}));
}

TEST_F(ComputerToChange, IsAddressedByPathsToo) {
  EXPECT_EQ(Apply({"IOService:/bus/hpm0:Version=5"}), Xml({{"Version", 5}, {"RID", 2}}));
  EXPECT_EQ(Apply({"IODeviceTree:/:board-rev=<09>"}), Xml({{"Version", 1}, {"RID", 2}}));
  EXPECT_EQ(revision_, 9);
}

TEST_F(ComputerToChange, HasTextsAsBytesWhereDataIsRecorded) {
  EXPECT_EQ(Apply({"hpm0:Data=<00>", "hpm0:Data=text"}),
            Xml({{"Version", 1}, {"RID", 2}, {"Data", Data{std::string_view("text", 5)}}}));
  EXPECT_EQ(Apply({"hpm0:Data=<00>", "hpm0:Data=5"}),
            Xml({{"Version", 1}, {"RID", 2}, {"Data", 5}}));
  EXPECT_EQ(Apply({"hpm0:Data=<00>", "hpm0:Data="}), Xml({{"Version", 1}, {"RID", 2}}));
  EXPECT_EQ(Apply({"hpm0:board-id=Zed"}),
            Xml({{"Version", 1}, {"RID", 2}, {"board-id", Data{std::string_view("Zed", 4)}}}));
}

TEST_F(ComputerToChange, LacksAnEntry) {
  for (const char* entry :
       {"hpm9", "IOService:/hpm0", "Nowhere:/hpm0", "IOService:/bus/", "IOService://bus"}) {
    EXPECT_EQ(Apply({std::string(entry) + ":Version=5"}),
              "--set: there is no entry " + std::string(entry));
  }
}

TEST_F(ComputerToChange, HasSeveralEntriesOfTheName) {
  EXPECT_EQ(Apply({"twin:Version=5"}),
            "--set: there are several entries twin: IOService:/twin, IOService:/twin, "
            "IOService:/twin, IOService:/twin, IOService:/twin, IOService:/twin, IOService:/twin, "
            "IOService:/twin and 2 more");
  EXPECT_TRUE(Apply({"IOService:/twin:Version=5"})
                  .starts_with("--set: there are several entries IOService:/twin: "));
  EXPECT_EQ(Apply({"IOService:/bus/hpm0/twin:Version=5"}), Xml({{"Version", 1}, {"RID", 2}}));
}

TEST_F(ComputerToChange, ReportsTheBoardsRevision) {
  Apply({}, 200);
  EXPECT_EQ(revision_, 200);
  Apply({});
  EXPECT_EQ(revision_, 3);
}

TEST(ChangedComputer, WithoutADeviceTreeHasNoRevision) {
  auto recording = ReadRecording(
      "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict/></dict>");
  ASSERT_TRUE(recording);
  ChangedComputer changed(*std::move(recording));
  const auto changes = ParseChanges({.properties = {}, .personalities = {}, .boardRevision = 1});
  EXPECT_EQ(Describe(ApplyChanges(*changes, changed).value()),
            "--board-revision: the computer has no device tree");
}

TEST(ChangedComputer, GetsTheEntryOfTheVariables) {
  for (const char* entry : {"options", "IODeviceTree:/options"}) {
    for (const bool hasTree : {true, false}) {
      const std::string tree = "<key>IODeviceTree</key><dict/>";
      auto recording = ReadRecording(
          "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>" +
          (hasTree ? tree : "") + "</dict></dict>");
      ASSERT_TRUE(recording);
      ChangedComputer changed(*std::move(recording));
      const auto changes =
          ParseChanges({.properties = {std::string(entry) + ":a=1"}, .personalities = {}});
      EXPECT_EQ(ApplyChanges(*changes, changed).has_value(), !hasTree);
      RecordedRegistry registry(changed.Recorded());
      const auto options = registry.LookupEntryByPath("IODeviceTree:/options");
      EXPECT_EQ(options != 0, hasTree);
      if (!hasTree) continue;
      EXPECT_EQ(registry.GetProperty(options, "a"), PropertyValue(1));
    }
  }
}

TEST(ChangedComputer, GetsAnEntryOfNvramVariablesOnce) {
  const testing::Computer computer;
  ChangedComputer changed(testing::RecordingOf(testing::ContentOf(computer.Recorded())));
  const auto entry = changed.BootOptions();
  changed.SetProperties(entry, {{"a", 1}});
  ChangedComputer moved(std::move(changed));
  EXPECT_EQ(moved.BootOptions(), entry);
  RecordedRegistry registry(moved.Recorded());
  EXPECT_EQ(registry.LookupEntryByPath("IODeviceTree:/options"), entry);
  EXPECT_EQ(registry.GetProperty(entry, "a"), PropertyValue(1));
  EXPECT_EQ(PathInAnyPlane(moved.Recorded(), entry), "IODeviceTree:/options");
  EXPECT_EQ(PathInAnyPlane(moved.Recorded(), computer.Services()), "IOService:/");
}

}  // namespace
}  // namespace fernwick::lab
