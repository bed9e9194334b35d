#include "lab/recordings/host_recording.h"

#include <gtest/gtest.h>

#include <string>

#include "registry/recording_reader.h"
#include "testing/host_tree.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::HostTree;

// The recording as an outline: the name of an entry, its class, its properties.
void AppendNode(const Recording& recording, const RecordedPlane& plane, RegistryEntry entry,
                const std::string& indentation, std::string& outline) {
  const auto& recorded = recording.entries[entry - 1];
  outline += indentation + std::string(recorded.name);
  if (!recorded.className.empty()) outline += " <" + std::string(recorded.className) + ">";
  for (const auto& property : recorded.properties.Entries()) {
    outline += " " + std::string(property.key);
  }
  outline += "\n";
  for (const auto child : plane.placements.at(entry).children) {
    AppendNode(recording, plane, child, indentation + "  ", outline);
  }
}

std::string OutlineOf(const HostTree& tree, RecordedProperties recorded) {
  HostRegistry registry(tree.Root());
  const auto recording = InterpretRecording(RecordHost(registry, recorded));
  if (!recording) return recording.Error().message;
  std::string outline;
  for (const auto& [name, plane] : recording->planes) {
    AppendNode(*recording, plane, plane.root, "", outline);
  }
  return outline;
}

constexpr char Board[] = R"(
proc/cmdline = quiet
proc/device-tree/
  board-id : Zed-42\x00
  model : Board\x00
  chosen/
    stdout : x
  firmware/board/
    board-rev : \x03
    serial : 123
  options/
    timeout : 5
    nested/a : x
sys/firmware/efi/efivars/
  Owner-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00Ann
  fernwick_bypassversioncheck-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x000
sys/bus/thunderbolt/devices/0-0/
  uevent = DEVTYPE=thunderbolt_device
  unique_id = 02300000-0000-0000-ffff-ffffffffffff
sys/bus/thunderbolt/devices/0-1/
  uevent = DEVTYPE=thunderbolt_device
  unique_id = 03400000-0000-0000-ffff-ffffffffffff
)";

TEST(RecordHost, HasWhatTheToolReadsAlone) {
  EXPECT_EQ(OutlineOf(HostTree(Board), RecordedProperties::ThoseOfTheTool),
            "Root board-id\n"
            "  firmware\n"
            "    board board-rev\n"
            "  options boot-args fernwick_bypassversioncheck\n"
            "Root\n"
            "  0-0 <ThunderboltSwitch> Depth Route String UID\n"
            "    0-1 <ThunderboltSwitch> Depth Route String UID\n");
}

TEST(RecordHost, HasEverythingWhenAsked) {
  EXPECT_EQ(OutlineOf(HostTree(Board), RecordedProperties::All),
            "Root board-id model\n"
            "  chosen stdout\n"
            "  firmware\n"
            "    board board-rev serial\n"
            "  options Owner boot-args fernwick_bypassversioncheck timeout\n"
            "    nested a\n"
            "Root\n"
            "  0-0 <ThunderboltSwitch> Depth Route String UID\n"
            "    0-1 <ThunderboltSwitch> Depth Route String UID\n");
}

TEST(RecordHost, AlwaysHasTheRootsAndOptions) {
  for (const auto recorded : {RecordedProperties::ThoseOfTheTool, RecordedProperties::All}) {
    EXPECT_EQ(OutlineOf(HostTree(""), recorded), "Root\n  options\nRoot\n");
    EXPECT_EQ(OutlineOf(HostTree("proc/device-tree/\n"), recorded), "Root\n  options\nRoot\n");
  }
}

// Another entry of that name is recorded for what it has.
TEST(RecordHost, HasNoOtherOptionsThanThoseBelowTheRoot) {
  const HostTree tree("proc/device-tree/soc/options/x : 1\n");
  EXPECT_EQ(OutlineOf(tree, RecordedProperties::ThoseOfTheTool), "Root\n  options\nRoot\n");
}

TEST(RecordHost, OwnsItsValues) {
  const HostTree tree("sys/class/dmi/id/board_name = Zed-42\nproc/cmdline = quiet\n");
  auto list = [&] {
    HostRegistry registry(tree.Root());
    return RecordHost(registry, RecordedProperties::All);
  }();
  const auto recording = InterpretRecording(std::move(list));
  ASSERT_TRUE(recording);
  RecordedRegistry registry(*recording);
  EXPECT_EQ(registry.GetProperty(registry.LookupEntryByPath("IODeviceTree:/"), "board-id"),
            PropertyValue(Data{{"Zed-42\0", 7}}));
  EXPECT_EQ(registry.GetProperty(registry.LookupEntryByPath("IODeviceTree:/options"), "boot-args"),
            PropertyValue("quiet"));
}

TEST(RecordHost, DeclaresTheClassOfSwitches) {
  const HostTree tree(Board);
  HostRegistry host(tree.Root());
  const auto recording = InterpretRecording(RecordHost(host, RecordedProperties::ThoseOfTheTool));
  ASSERT_TRUE(recording);
  RecordedRegistry registry(*recording);
  const auto bus = registry.LookupEntryByPath("IOService:/0-0");
  EXPECT_TRUE(registry.ConformsToClass(bus, "ThunderboltSwitch"));
  EXPECT_TRUE(registry.ConformsToClass(bus, "IOThunderboltSwitch"));
}

// The deepest entry that a device tree can have fits into a property list.
TEST(RecordHost, OfADeepDeviceTreeCanBeRead) {
  const HostTree tree("");
  std::string files = "proc/device-tree";
  for (int i = 0; i < 300; ++i) files += "/d";
  tree.Write(files + "/x", "x");
  HostRegistry registry(tree.Root());
  const auto list = RecordHost(registry, RecordedProperties::All);
  const auto recording = ReadRecording(WriteXmlPropertyList(list.value));
  ASSERT_TRUE(recording) << recording.Error().message;
  EXPECT_EQ(recording->entries.size(), 203u);
}

}  // namespace
}  // namespace fernwick::lab
