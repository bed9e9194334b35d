#include "registry/host/host_registry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "registry/board_identity.h"
#include "registry/port_inventory.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/dictionaries.h"
#include "testing/host_tree.h"
#include "testing/property_values.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::HostTree;

using Names = std::vector<std::string>;

// A registry over the files that the text describes, and what is asked of it.
class Host {
 public:
  explicit Host(std::string_view description) : tree_(description), registry_(tree_.Root()) {}

  const HostTree& Tree() const { return tree_; }
  HostRegistry& Registry() { return registry_; }

  std::optional<PropertyValue> Property(std::string_view path, std::string_view key) {
    return registry_.GetProperty(registry_.LookupEntryByPath(path), key);
  }

  std::optional<PropertyValue> Search(std::string_view path, std::string_view key) {
    return registry_.SearchProperty(registry_.LookupEntryByPath(path), "IODeviceTree", key,
                                    SearchRecursively);
  }

  Names ChildrenOf(std::string_view path) {
    Names names;
    for (const auto child : registry_.ChildrenOf(registry_.LookupEntryByPath(path))) {
      names.push_back(registry_.NameOf(child));
    }
    return names;
  }

 private:
  HostTree tree_;
  HostRegistry registry_;
};

// The board as the tool reads it: identifier, number and revision.
std::string BoardTextOf(Registry& registry) {
  const auto board = ReadBoardIdentity(registry);
  return board.boardIdString.value_or("none") + " " + std::to_string(board.boardId) + " " +
         std::to_string(board.boardRevision);
}

constexpr char Root[] = "IODeviceTree:/";
constexpr char Options[] = "IODeviceTree:/options";

// --- Paths

constexpr char Tree[] = R"(
proc/device-tree/
  model : Board 7\x00
  soc/serial/clock : \x01
  soc/bus/
  Soc/
)";

TEST(HostRegistry, FindsEntriesByPath) {
  Host host(Tree);
  auto& registry = host.Registry();
  EXPECT_NE(registry.LookupEntryByPath(Root), 0u);
  EXPECT_NE(registry.LookupEntryByPath("IOService:/"), 0u);
  const auto serial = registry.LookupEntryByPath("IODeviceTree:/soc/serial");
  ASSERT_NE(serial, 0u);
  EXPECT_EQ(registry.NameOf(serial), "serial");
  EXPECT_EQ(registry.LookupEntryByPath("IODeviceTree:/soc/serial"), serial);
}

TEST(HostRegistry, FindsNothingAtOtherPaths) {
  Host host(Tree);
  for (const char* path :
       {"", "IODeviceTree", "IODeviceTree:", "IODeviceTree:soc", "IODeviceTree://",
        "IODeviceTree:/soc/", "IODeviceTree://soc", "IODeviceTree:/none",
        "IODeviceTree:/soc/none/a", "IODeviceTree:/model", "IODeviceTree:/..",
        "IODeviceTree:/soc/../soc", "IOUSB:/", "IOService:/options", ":/"}) {
    EXPECT_EQ(host.Registry().LookupEntryByPath(path), 0u) << path;
  }
}

TEST(HostRegistry, AcceptsEveryHandleThatIsNone) {
  Host host(Tree);
  auto& registry = host.Registry();
  registry.LookupEntryByPath(Root);
  RegistryEntry iterator = 0;
  registry.MatchServicesByClass(ThunderboltControllerClass, iterator);
  for (const RegistryEntry handle : {0u, 77u, iterator - 1, iterator + 1, 0xFFFFFFFFu}) {
    RegistryEntry parent = 7;
    EXPECT_EQ(registry.GetProperty(handle, "model"), std::nullopt);
    EXPECT_EQ(registry.SearchProperty(handle, "IODeviceTree", "model", SearchRecursively),
              std::nullopt);
    EXPECT_EQ(registry.GetParentEntry(handle, "IODeviceTree", parent), RegistryNotFound);
    EXPECT_EQ(parent, 0u);
    EXPECT_FALSE(registry.ConformsToClass(handle, ThunderboltControllerClass));
    registry.ResetIterator(handle);
    EXPECT_EQ(registry.NextEntry(handle), 0u);
    registry.ReleaseEntry(handle);
  }
}

// --- The device tree

TEST(HostRegistry, PresentsTheDirectoriesOfTheDeviceTreeInByteOrder) {
  Host host(Tree);
  EXPECT_EQ(host.ChildrenOf(Root), (Names{"Soc", "soc", "options"}));
  EXPECT_EQ(host.ChildrenOf("IODeviceTree:/soc"), (Names{"bus", "serial"}));
  const auto root = host.Registry().LookupEntryByPath(Root);
  EXPECT_EQ(host.Registry().NameOf(root), "Root");
  EXPECT_EQ(host.Registry().ClassOf(root), "");
}

TEST(HostRegistry, PresentsTheFilesOfTheDeviceTreeAsData) {
  Host host(Tree);
  EXPECT_EQ(host.Property(Root, "model"), PropertyValue(Bytes({"Board 7\0", 8})));
  EXPECT_EQ(host.Property("IODeviceTree:/soc/serial", "clock"), PropertyValue(Bytes("\x01")));
  EXPECT_EQ(host.Property(Root, "clock"), std::nullopt);
  EXPECT_EQ(host.Property(Root, "soc"), std::nullopt);
}

TEST(HostRegistry, NamesTheFilesOfTheDeviceTreeByNothingButTheirNames) {
  using namespace std::string_view_literals;
  Host host(Tree);
  for (const auto key :
       {""sv, "."sv, ".."sv, "soc/serial/clock"sv, "./model"sv, "model\0"sv, "model\0x"sv}) {
    EXPECT_EQ(host.Property(Root, key), std::nullopt) << key;
  }
}

TEST(HostRegistry, FollowsTheLinkToTheDeviceTree) {
  Host host(
      "proc/device-tree -> /sys/firmware/devicetree/base\n"
      "sys/firmware/devicetree/base/board-id : Zed-42\\x00\n"
      "sys/firmware/devicetree/base/cpus/\n");
  EXPECT_EQ(host.ChildrenOf(Root), (Names{"cpus", "options"}));
  EXPECT_EQ(ReadBoardIdString(host.Registry()), "Zed-42");
}

TEST(HostRegistry, IgnoresLinksInTheDeviceTree) {
  Host host(
      "proc/device-tree/\n"
      "  model : x\n"
      "  link -> model\n"
      "  loop -> .\n"
      "  soc -> ../../sys\n"
      "  options -> cpus\n"
      "  cpus/a : 1\n");
  EXPECT_EQ(host.ChildrenOf(Root), (Names{"cpus", "options"}));
  EXPECT_EQ(host.Property(Root, "link"), std::nullopt);
  EXPECT_EQ(host.Property(Options, "a"), std::nullopt);
  const auto root = host.Registry().LookupEntryByPath(Root);
  EXPECT_EQ(host.Registry().PropertyNamesOf(root), std::set<std::string>{"model"});
}

TEST(HostRegistry, LeavesOutNamesInTheDeviceTreeThatAreNoText) {
  Host host("proc/device-tree/\n  \\xFF/\n  \\x1B/\n  a\\x01 : x\n  b : x\n  tab\\x09/\n");
  EXPECT_EQ(host.ChildrenOf(Root), (Names{"tab\t", "options"}));
  const auto root = host.Registry().LookupEntryByPath(Root);
  EXPECT_EQ(host.Registry().PropertyNamesOf(root), std::set<std::string>{"b"});
}

TEST(HostRegistry, ReadsLongFilesOfTheDeviceTree) {
  Host host("proc/device-tree/\n");
  const std::string longest(std::size_t{16} << 20, 'x');
  host.Tree().Write("proc/device-tree/fits", longest);
  host.Tree().Write("proc/device-tree/long", longest + "x");
  EXPECT_TRUE(host.Property(Root, "fits") == PropertyValue(Data{longest}));
  EXPECT_EQ(host.Property(Root, "long"), std::nullopt);
}

TEST(HostRegistry, LeavesOutWhatIsVeryDeepInTheDeviceTree) {
  Host host("proc/device-tree/\n");
  std::string files = "proc/device-tree";
  for (int i = 0; i < 200; ++i) files += "/d";
  host.Tree().Write(files + "/at-200", "x");
  host.Tree().Write(files + "/d/at-201", "x");
  EXPECT_EQ(host.Search(Root, "at-200"), PropertyValue(Bytes("x")));
  EXPECT_EQ(host.Search(Root, "at-201"), std::nullopt);
}

// --- The board of a computer without a device tree

std::optional<PropertyValue> BoardOf(const std::string& files, std::string_view key) {
  Host host("sys/class/dmi/id/\n" + files);
  const auto value = host.Property(Root, key);
  if (!value) return std::nullopt;
  return PropertyValue(Bytes(value->AsData().value()));  // a copy that outlives the registry
}

TEST(HostRegistry, HasTheBoardOfDmiWhereThereIsNoDeviceTree) {
  Host host(
      "sys/class/dmi/id -> ../../devices/virtual/dmi/id\n"
      "sys/devices/virtual/dmi/id/\n"
      "  board_name = Zed-42\n"
      "  board_version = 3\n");
  EXPECT_EQ(BoardTextOf(host.Registry()), "Zed-42 66 3");
  EXPECT_EQ(host.ChildrenOf(Root), Names{"options"});
  const auto root = host.Registry().LookupEntryByPath(Root);
  EXPECT_EQ(host.Registry().PropertyNamesOf(root),
            (std::set<std::string>{"board-id", "board-rev"}));
  EXPECT_EQ(host.Property(Root, "model"), std::nullopt);
}

TEST(HostRegistry, HasTheBoardOfTheDeviceTreeWhereThereIsOne) {
  Host host("proc/device-tree/\nsys/class/dmi/id/board_name = Zed-42\n");
  EXPECT_EQ(host.Search(Root, "board-id"), std::nullopt);
  Host file("proc/device-tree = x\nsys/class/dmi/id/board_name = Zed-42\n");
  EXPECT_EQ(ReadBoardIdString(file.Registry()), "Zed-42");
  Host dangling("proc/device-tree -> none\nsys/class/dmi/id/board_name = Zed-42\n");
  EXPECT_EQ(ReadBoardIdString(dangling.Registry()), "Zed-42");
}

TEST(HostRegistry, TrimsTheNameOfTheBoardAndReplacesSlashes) {
  EXPECT_EQ(BoardOf("  board_name : \\x09 Zed 42/B//../1 \\n\\n\n", "board-id"),
            PropertyValue(Bytes({"Zed 42_B__.._1\0", 15})));
  EXPECT_EQ(BoardOf("  board_name : \\xFF\\x00a\n", "board-id"),
            PropertyValue(Bytes({"\xFF\0a\0", 4})));
}

TEST(HostRegistry, WithoutANameOfTheBoardHasNone) {
  EXPECT_EQ(BoardOf("", "board-id"), std::nullopt);
  EXPECT_EQ(BoardOf("  board_name :  \\n\n", "board-id"), std::nullopt);
  EXPECT_EQ(BoardOf("  board_name |\n", "board-id"), std::nullopt);
}

TEST(HostRegistry, HasTheRevisionOfTheBoardWhereItIsANumberOfOneByte) {
  EXPECT_EQ(BoardOf("  board_version = 0\n", "board-rev"), PropertyValue(Bytes({"\0", 1})));
  EXPECT_EQ(BoardOf("  board_version =  255 \n", "board-rev"), PropertyValue(Bytes("\xFF")));
  for (const char* version :
       {"", "256", "-1", "+1", "0x1", "1.0", "A", "1 2", "99999999999999999999999", "Rev 1"}) {
    const auto file = std::string("  board_version = ") + version + "\n";
    EXPECT_EQ(BoardOf(file, "board-rev"), std::nullopt) << version;
  }
  EXPECT_EQ(BoardOf("", "board-rev"), std::nullopt);
}

// --- Options

constexpr char EfiFiles[] = R"(
sys/firmware/efi/efivars/
  switch-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x001
  own-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00efi
  boot-args-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00efi
  \xFF-11111111-1111-1111-1111-111111111111 : \x07\x00\x00\x00no text
  no variable : x
)";

TEST(HostRegistry, AlwaysHasOptions) {
  EXPECT_NE(Host("").Registry().LookupEntryByPath(Options), 0u);
  EXPECT_NE(Host("proc/device-tree/\n").Registry().LookupEntryByPath(Options), 0u);
  Host own("proc/device-tree/options/own : x\n");
  EXPECT_EQ(own.ChildrenOf(Root), Names{"options"});
  EXPECT_EQ(own.Property(Options, "own"), PropertyValue(Bytes("x")));
}

TEST(HostRegistry, HasTheCommandLineAsBootArguments) {
  EXPECT_EQ(Host("proc/cmdline = quiet a=b\n").Property(Options, "boot-args"),
            PropertyValue("quiet a=b"));
  EXPECT_EQ(Host("proc/cmdline = \\xFF\n").Property(Options, "boot-args"), std::nullopt);
  EXPECT_EQ(Host("").Property(Options, "boot-args"), std::nullopt);
  EXPECT_EQ(Host(EfiFiles).Property(Options, "boot-args"), std::nullopt);
}

TEST(HostRegistry, HasTheEfiVariablesAsOptions) {
  Host host(EfiFiles);
  EXPECT_EQ(host.Property(Options, "switch"), PropertyValue(Bytes("1")));
  EXPECT_EQ(host.Property(Options, "switc"), std::nullopt);
  EXPECT_EQ(host.Property(Options, ""), std::nullopt);
  EXPECT_EQ(host.Property(Root, "switch"), std::nullopt);
}

TEST(HostRegistry, PrefersTheOptionsOfTheDeviceTree) {
  Host host(std::string("proc/cmdline = quiet\nproc/device-tree/options/\n  own : tree\n"
                        "  boot-args : tree\n  deeper/\n") +
            EfiFiles);
  EXPECT_EQ(host.Property(Options, "own"), PropertyValue(Bytes("tree")));
  EXPECT_EQ(host.Property(Options, "boot-args"), PropertyValue(Bytes("tree")));
  EXPECT_EQ(host.Property(Options, "switch"), PropertyValue(Bytes("1")));
  EXPECT_EQ(host.ChildrenOf(Options), Names{"deeper"});
  EXPECT_EQ(host.Registry().PropertyNamesOf(host.Registry().LookupEntryByPath(Options)),
            (std::set<std::string>{"boot-args", "own", "switch"}));
}

TEST(HostRegistry, AddsOptionsToTheOneBelowTheRootAlone) {
  Host host(std::string("proc/cmdline = quiet\nproc/device-tree/soc/options/\n") + EfiFiles);
  EXPECT_EQ(host.Property("IODeviceTree:/soc/options", "boot-args"), std::nullopt);
  EXPECT_EQ(host.ChildrenOf("IODeviceTree:/soc"), Names{"options"});
  EXPECT_EQ(host.ChildrenOf(Options), Names());
}

// A file that vanishes after its directory was listed.
TEST(HostRegistry, HasNoPropertyOfAFileThatVanished) {
  Host host(EfiFiles);
  EXPECT_NE(host.Property(Options, "switch"), std::nullopt);
  std::filesystem::remove_all(host.Tree().Root() + "/sys/firmware");
  EXPECT_EQ(host.Property(Options, "switch"), std::nullopt);
}

// --- Searches

TEST(HostRegistry, SearchesDepthFirstInByteOrder) {
  Host host(
      "proc/device-tree/\n"
      "  b/board-id : Zed-2\n"
      "  a/z/board-id : Zed-1\n"
      "  a/board-rev : \\x01\n"
      "  options/board-id : Zed-3\n");
  EXPECT_EQ(host.Search(Root, "board-id"), PropertyValue(Bytes("Zed-1")));
  EXPECT_EQ(host.Search("IODeviceTree:/b", "board-id"), PropertyValue(Bytes("Zed-2")));
  EXPECT_EQ(BoardTextOf(host.Registry()), "Zed-1 1 1");
  EXPECT_EQ(host.Search(Root, "none"), std::nullopt);
}

TEST(HostRegistry, SearchesBelowOnlyWhenAskedToAndInItsPlane) {
  Host host("proc/device-tree/a/x : 1\n");
  auto& registry = host.Registry();
  const auto root = registry.LookupEntryByPath(Root);
  EXPECT_EQ(registry.SearchProperty(root, "IODeviceTree", "x", 0), std::nullopt);
  EXPECT_EQ(registry.SearchProperty(root, "IOService", "x", SearchRecursively), std::nullopt);
  EXPECT_NE(registry.SearchProperty(root, "IODeviceTree", "x", SearchRecursively), std::nullopt);
  const auto services = registry.LookupEntryByPath("IOService:/");
  EXPECT_EQ(registry.SearchProperty(services, "IOService", "x", SearchRecursively), std::nullopt);
}

// --- The Thunderbolt bus

constexpr char Bus[] = R"(
sys/devices/pci0000:00/0000:00:0d.2/
  vendor = 0x2a01
  device = 0x0310
  revision = 0x06
  domain0/0-0/
    uevent = DEVTYPE=thunderbolt_device
    unique_id = 02300000-0000-0000-ffff-ffffffffffff
    nvm_version = 41.5
    device_name = Slate 13
    device = 0x11
    0-1/
      uevent = DEVTYPE=thunderbolt_device
      unique_id = 03400000-0000-0000-ffff-ffffffffffff
      nvm_version = 20.0
sys/bus/thunderbolt/devices/
  0-0 -> ../../../devices/pci0000:00/0000:00:0d.2/domain0/0-0
  0-1 -> ../../../devices/pci0000:00/0000:00:0d.2/domain0/0-0/0-1
  domain0 -> ../../../devices/pci0000:00/0000:00:0d.2/domain0
)";

TEST(HostRegistry, PresentsTheSwitchesOfTheBus) {
  Host host(Bus);
  EXPECT_EQ(host.ChildrenOf("IOService:/"), Names{"0-0"});
  EXPECT_EQ(host.ChildrenOf("IOService:/0-0"), Names{"0-1"});
  EXPECT_EQ(host.ChildrenOf("IOService:/0-0/0-1"), Names());
  EXPECT_EQ(host.Property("IOService:/0-0/0-1", "ROM Version"), PropertyValue(0x20));
  EXPECT_EQ(host.Property("IOService:/", "ROM Version"), std::nullopt);
  auto& registry = host.Registry();
  EXPECT_EQ(registry.PropertyNamesOf(registry.LookupEntryByPath("IOService:/")),
            std::set<std::string>());
  EXPECT_EQ(registry.PropertyNamesOf(registry.LookupEntryByPath("IOService:/0-0")),
            SwitchPropertyNames());
}

Names Matched(HostRegistry& registry, std::string_view className) {
  RegistryEntry iterator = 0;
  EXPECT_EQ(registry.MatchServicesByClass(className, iterator), RegistrySuccess);
  registry.ResetIterator(iterator);
  Names names;
  while (const auto entry = registry.NextEntry(iterator)) names.push_back(registry.NameOf(entry));
  EXPECT_EQ(registry.NextEntry(iterator), 0u);
  registry.ReleaseEntry(iterator);
  return names;
}

TEST(HostRegistry, MatchesSwitchesByTheirClassAndTheOneThatItDerivesFrom) {
  Host host(Bus);
  EXPECT_EQ(Matched(host.Registry(), "IOThunderboltSwitch"), (Names{"0-0", "0-1"}));
  EXPECT_EQ(Matched(host.Registry(), "ThunderboltSwitch"), (Names{"0-0", "0-1"}));
  EXPECT_EQ(Matched(host.Registry(), PortControllerClass), Names());
  EXPECT_EQ(Matched(host.Registry(), ""), Names());
}

TEST(HostRegistry, RewindsAnIteratorWithoutAnyOther) {
  Host host(Bus);
  auto& registry = host.Registry();
  RegistryEntry first = 0;
  RegistryEntry second = 0;
  registry.MatchServicesByClass("IOThunderboltSwitch", first);
  registry.MatchServicesByClass("IOThunderboltSwitch", second);
  EXPECT_NE(first, second);
  const auto host0 = registry.NextEntry(first);
  EXPECT_EQ(registry.NextEntry(second), host0);
  EXPECT_NE(registry.NextEntry(second), host0);
  registry.ResetIterator(first);
  EXPECT_EQ(registry.NextEntry(first), host0);
  EXPECT_EQ(registry.NextEntry(second), 0u);
}

TEST(HostRegistry, KnowsTheClassOfSwitches) {
  Host host(Bus);
  auto& registry = host.Registry();
  const auto bus = registry.LookupEntryByPath("IOService:/0-0");
  EXPECT_EQ(registry.ClassOf(bus), "ThunderboltSwitch");
  EXPECT_TRUE(registry.ConformsToClass(bus, "ThunderboltSwitch"));
  EXPECT_TRUE(registry.ConformsToClass(bus, ThunderboltControllerClass));
  EXPECT_FALSE(registry.ConformsToClass(bus, PortControllerClass));
  const auto root = registry.LookupEntryByPath("IOService:/");
  EXPECT_FALSE(registry.ConformsToClass(root, ThunderboltControllerClass));
  EXPECT_EQ(registry.ClassOf(root), "");
  for (auto last = bus; last != 0;) {
    EXPECT_EQ(registry.ClassOf(last), "ThunderboltSwitch") << registry.NameOf(last);
    const auto& children = registry.ChildrenOf(last);
    last = children.empty() ? 0 : children.back();
  }
}

TEST(HostRegistry, KnowsTheParentsInThePlaneOfTheEntry) {
  Host host(Bus);
  auto& registry = host.Registry();
  const auto root = registry.LookupEntryByPath("IOService:/");
  const auto bus = registry.LookupEntryByPath("IOService:/0-0");
  const auto device = registry.LookupEntryByPath("IOService:/0-0/0-1");
  RegistryEntry parent = 7;
  EXPECT_EQ(registry.GetParentEntry(device, "IOService", parent), RegistrySuccess);
  EXPECT_EQ(parent, bus);
  EXPECT_EQ(registry.GetParentEntry(bus, "IOService", parent), RegistrySuccess);
  EXPECT_EQ(parent, root);
  EXPECT_EQ(registry.GetParentEntry(root, "IOService", parent), RegistryNotFound);
  EXPECT_EQ(parent, 0u);
  EXPECT_EQ(registry.GetParentEntry(bus, "IODeviceTree", parent), RegistryNotFound);
  const auto options = registry.LookupEntryByPath(Options);
  EXPECT_EQ(registry.GetParentEntry(options, "IODeviceTree", parent), RegistrySuccess);
  EXPECT_EQ(parent, registry.LookupEntryByPath(Root));
}

TEST(HostRegistry, HasTheHostsInTheInventoryOfThunderboltControllers) {
  Host host(Bus);
  const auto inventory = CollectThunderboltControllers(host.Registry());
  ASSERT_TRUE(inventory);
  ASSERT_EQ(inventory->records.size(), 1u);
  EXPECT_EQ(inventory->records[0], (Record{{"RID", 2},
                                           {"Ridge Silicon Vendor ID", 0x2A01},
                                           {"Ridge Silicon Device ID", 0x310},
                                           {"Ridge Silicon Revision", 6},
                                           {"Device Model Name", "Slate 13"},
                                           {"Device Model ID", 0x11},
                                           {"Ridge UID", 0x3002},
                                           {"Version", 41.050000000999994},
                                           {"Engineering Version", 0}}));
  EXPECT_EQ(CollectPortControllers(host.Registry()), InventoryResult(HardwareInventory()));
}

// Unplugged between the list and the properties: a run needs the unique id and ends without it.
TEST(HostRegistry, KeepsTheUniqueIdOfASwitchThatVanishes) {
  Host host(Bus);
  EXPECT_EQ(host.ChildrenOf("IOService:/"), Names{"0-0"});
  std::filesystem::remove_all(host.Tree().Root() + "/sys/devices");
  EXPECT_EQ(host.Property("IOService:/0-0", "UID"), PropertyValue(0x3002));
  EXPECT_EQ(host.Property("IOService:/0-0", "ROM Version"), std::nullopt);
  const auto inventory = CollectThunderboltControllers(host.Registry());
  ASSERT_TRUE(inventory);
  EXPECT_EQ(inventory->records.size(), 1u);
}

// --- Roots

TEST(HostRegistry, OfACopyThatIsNotThereHasAnError) {
  EXPECT_EQ(HostRegistry("/none").RootError(), "No such file or directory");
  EXPECT_EQ(Host("").Registry().RootError(), "");
  EXPECT_EQ(HostRegistry().RootError(), "");
}

}  // namespace
}  // namespace fernwick
