#include "registry/recorded_registry.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "testing/computer.h"
#include "testing/distinctness.h"
#include "testing/property_values.h"
#include "testing/recordings.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Computer;
using testing::Dict;
using testing::ExpectDistinct;
using testing::List;
using testing::RecordingOf;

/// A handle that no registry here has handed out.
constexpr RegistryEntry UnknownHandle = 999;

// What tests compare is compared whole.
TEST(RecordedEntry, DiffersByEachOfItsMembers) {
  ExpectDistinct<RecordedEntry>({"Port0", "QuinceHPMDevice", Dict({{"RID", 2}})},
                                {{"Port1", "QuinceHPMDevice", Dict({{"RID", 2}})},
                                 {"Port0", "", Dict({{"RID", 2}})},
                                 {"Port0", "QuinceHPMDevice", Dict({{"RID", 3}})}});
}

TEST(RecordedPlane, DiffersByEachOfItsMembers) {
  ExpectDistinct<RecordedPlane>({1, {{1, {0, {2}}}, {2, {1, {}}}}},
                                {{2, {{1, {0, {2}}}, {2, {1, {}}}}},
                                 {1, {{1, {0, {2}}}, {2, {2, {}}}}},
                                 {1, {{1, {0, {}}}, {2, {1, {}}}}},
                                 {1, {{1, {0, {2}}}}}});
}

TEST(RecordedRegistryPath, NamesAnEntryOrNothing) {
  Computer computer;
  const RegistryEntry a = computer.AddService(computer.Services(), "a", "", {});
  const RegistryEntry b = computer.AddService(a, "b", "", {});
  const RegistryEntry secondA = computer.AddService(computer.Services(), "a", "", {});
  computer.AddService(secondA, "c", "", {});
  const RegistryEntry colon = computer.AddService(computer.Services(), "x:y", "", {});
  const RegistryEntry dots = computer.AddService(computer.Services(), "..", "", {});
  RecordedRegistry registry(computer.Recorded());
  const std::pair<const char*, RegistryEntry> rows[] = {
      {"IODeviceTree:/", computer.Board()},
      {"IODeviceTree:/options", computer.Options()},
      {"IOService:/", computer.Services()},
      {"IOService:/a", a},
      {"IOService:/a/b", b},
      {"IOService:/x:y", colon},
      {"IOService:/..", dots},
      {"IOService:/a/c", 0},  // the first child of a name is the only one that is looked into
      {"IOService:/a/b/b", 0},
      {"IOService:/b", 0},
      {"IOService:/A", 0},
      {"IOService:/ a", 0},
      {"IOService:/a/..", 0},
      {"IOService:/options", 0},
      {"IOService://a", 0},
      {"IOService:/a/", 0},
      {"IOService:/a//b", 0},
      {"IOService://", 0},
      {"IOService:a", 0},
      {"IOService:", 0},
      {"IOService", 0},
      {"IOService/", 0},
      {" IOService:/", 0},
      {"ioservice:/", 0},
      {"IOPower:/", 0},
      {"a", 0},
      {"/a", 0},
      {":/", 0},
      {":", 0},
      {"", 0},
  };
  for (const auto& [path, entry] : rows) EXPECT_EQ(registry.LookupEntryByPath(path), entry) << path;
}

TEST(RecordedRegistryPath, TheNameOfARootIsNotAStep) {
  const Recording recording =
      RecordingOf({{{"Root", "", {}}}, {{"IOService", {1, {{1, {}}}}}}, {}});
  RecordedRegistry registry(recording);
  EXPECT_EQ(registry.LookupEntryByPath("IOService:/"), 1u);
  EXPECT_EQ(registry.LookupEntryByPath("IOService:/Root"), 0u);
  EXPECT_EQ(registry.LookupEntryByPath("IOService:Root"), 0u);
}

TEST(RecordedRegistryPath, AnEmptyStepDoesNotNameARootWithoutNameBelowAnotherRoot) {
  const Recording recording =
      RecordingOf({{{}, {}, {"a", "", {}}},
                   {{"IODeviceTree", {2, {{2, {}}}}},
                    {"IOService", {1, {{1, {0, {2}}}, {2, {1, {3}}}, {3, {2, {}}}}}}},
                   {}});
  RecordedRegistry registry(recording);
  EXPECT_EQ(registry.LookupEntryByPath("IOService://"), 0u);
  EXPECT_EQ(registry.LookupEntryByPath("IOService://a"), 0u);
}

TEST(RecordedRegistryPath, NamesNothingWithoutPlanes) {
  const Recording recording = RecordingOf({});
  RecordedRegistry registry(recording);
  EXPECT_EQ(registry.LookupEntryByPath("IODeviceTree:/"), 0u);
}

TEST(RecordedRegistryProperty, IsTheEntrysOwnOfTheExactKey) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Key", 1}, {"key", 2}});
  computer.AddService(entry, "Below", "", {{"Below", 3}});
  computer.Set(computer.Services(), "Above", 4);
  RecordedRegistry registry(computer.Recorded());
  EXPECT_EQ(registry.GetProperty(entry, "Key"), PropertyValue(1));
  EXPECT_EQ(registry.GetProperty(entry, "key"), PropertyValue(2));
  EXPECT_EQ(registry.GetProperty(entry, "KEY"), std::nullopt);
  EXPECT_EQ(registry.GetProperty(entry, "Below"), std::nullopt);
  EXPECT_EQ(registry.GetProperty(entry, "Above"), std::nullopt);
  EXPECT_EQ(registry.GetProperty(entry, ""), std::nullopt);
}

TEST(RecordedRegistryProperty, OfEveryKindIsReturnedUntouched) {
  const PropertyValue values[] = {"text",
                                  "",
                                  5,
                                  -1,
                                  0xFFFFFFFFFFFFFFFF,
                                  5.5,
                                  true,
                                  false,
                                  Date{5},
                                  Bytes("\1\0"),
                                  List({1, "a"}),
                                  Dict({{"a", 1}})};
  for (const auto& value : values) {
    Computer computer;
    const RegistryEntry entry = computer.AddPort("Port0", {{"Key", value}});
    RecordedRegistry registry(computer.Recorded());
    EXPECT_EQ(registry.GetProperty(entry, "Key"), value);
  }
}

TEST(RecordedRegistryProperty, IsAbsentForAHandleOfNoEntry) {
  const Computer computer;
  RecordedRegistry registry(computer.Recorded());
  RegistryEntry iterator = 0;
  registry.MatchServicesByClass("Fan", iterator);
  for (const RegistryEntry handle : {0u, UnknownHandle, iterator}) {
    EXPECT_EQ(registry.GetProperty(handle, "Key"), std::nullopt);
    EXPECT_EQ(registry.SearchProperty(handle, "IOService", "Key", SearchRecursively), std::nullopt);
  }
}

/// IOService: root over (a over (b, c), d). IODeviceTree: root over (d over b, other).
constexpr RegistryEntry ServiceRoot = 1, A = 2, B = 3, C = 4, D = 5, TreeRoot = 6, Other = 7;

Recording TwoPlanes(const std::vector<RegistryEntry>& owners) {
  Recording recording = RecordingOf({});
  for (const auto* name : {"", "a", "b", "c", "d", "", "other"}) {
    recording.entries.push_back({name, "", {}});
  }
  for (const RegistryEntry holder : owners) {
    recording.entries[holder - 1].properties = Dict({{"Key", holder}});
  }
  recording.planes["IOService"] = {ServiceRoot,
                                   {{ServiceRoot, {0, {A, D}}},
                                    {A, {ServiceRoot, {B, C}}},
                                    {B, {A, {}}},
                                    {C, {A, {}}},
                                    {D, {ServiceRoot, {}}}}};
  recording.planes["IODeviceTree"] = {
      TreeRoot,
      {{TreeRoot, {0, {D, Other}}}, {D, {TreeRoot, {B}}}, {B, {D, {}}}, {Other, {TreeRoot, {}}}}};
  return recording;
}

struct SearchRow {
  std::string what;
  std::vector<RegistryEntry> owners;  // each has its own handle as a property
  RegistryEntry entry;
  std::string plane;
  std::uint32_t options;
  RegistryEntry found;  // 0: nothing
};

TEST(RecordedRegistrySearch, FindsTheOwnPropertyOrTheFirstBelow) {
  const SearchRow rows[] = {
      {"own before any below", {A, B, C}, A, "IOService", 1, A},
      {"own without recursion", {A}, A, "IOService", 0, A},
      {"own in a plane without the entry", {A}, A, "IODeviceTree", 1, A},
      {"own in an unknown plane", {A}, A, "IOPower", 1, A},
      {"below", {C}, A, "IOService", 1, C},
      {"below without recursion", {C}, A, "IOService", 0, 0},
      {"below with another option", {C}, A, "IOService", 2, 0},
      {"below with every option", {C}, A, "IOService", 0xFFFFFFFF, C},
      {"first child", {B, C}, A, "IOService", 1, B},
      {"below the first child before the second child", {C, D}, ServiceRoot, "IOService", 1, C},
      {"a child before what is below it", {A, B}, ServiceRoot, "IOService", 1, A},
      {"last of all", {D}, ServiceRoot, "IOService", 1, D},
      {"not above", {ServiceRoot}, A, "IOService", 1, 0},
      {"not beside", {D}, A, "IOService", 1, 0},
      {"not below in another plane", {B}, D, "IOService", 1, 0},
      {"below in the named plane", {B}, D, "IODeviceTree", 1, B},
      {"order of the named plane", {B, D, Other}, TreeRoot, "IODeviceTree", 1, D},
      {"below in an unknown plane", {C}, A, "IOPower", 1, 0},
      {"below in a plane without the entry", {B, D}, A, "IODeviceTree", 1, 0},
      {"plane of another case", {C}, A, "ioservice", 1, 0},
      {"no plane", {C}, A, "", 1, 0},
      {"nowhere", {}, ServiceRoot, "IOService", 1, 0},
  };
  for (const auto& [what, owners, entry, plane, options, found] : rows) {
    const Recording recording = TwoPlanes(owners);
    RecordedRegistry registry(recording);
    std::optional<PropertyValue> expected;
    if (found != 0) expected = found;
    EXPECT_EQ(registry.SearchProperty(entry, plane, "Key", options), expected) << what;
  }
}

/// The status, and the value of the out parameter for the parent.
std::pair<RegistryStatus, RegistryEntry> ParentOf(RegistryEntry entry, std::string_view plane) {
  const Recording recording = TwoPlanes({});
  RecordedRegistry registry(recording);
  RegistryEntry parent = UnknownHandle;
  const RegistryStatus status = registry.GetParentEntry(entry, plane, parent);
  return {status, parent};
}

const std::pair<RegistryStatus, RegistryEntry> NoParent{RegistryNotFound, 0};

TEST(RecordedRegistryParent, IsTheEntryAboveInTheNamedPlane) {
  EXPECT_EQ(ParentOf(B, "IOService"), std::pair(RegistrySuccess, A));
  EXPECT_EQ(ParentOf(B, "IODeviceTree"), std::pair(RegistrySuccess, D));
  EXPECT_EQ(ParentOf(D, "IOService"), std::pair(RegistrySuccess, ServiceRoot));
  EXPECT_EQ(ParentOf(D, "IODeviceTree"), std::pair(RegistrySuccess, TreeRoot));
}

TEST(RecordedRegistryParent, IsMissingAtTheRoot) {
  EXPECT_EQ(ParentOf(ServiceRoot, "IOService"), NoParent);
  EXPECT_EQ(ParentOf(TreeRoot, "IODeviceTree"), NoParent);
}

TEST(RecordedRegistryParent, IsMissingWhereTheEntryIsNotPresent) {
  EXPECT_EQ(ParentOf(A, "IODeviceTree"), NoParent);
  EXPECT_EQ(ParentOf(Other, "IOService"), NoParent);
  EXPECT_EQ(ParentOf(A, "IOPower"), NoParent);
  EXPECT_EQ(ParentOf(A, ""), NoParent);
}

TEST(RecordedRegistryParent, IsMissingForAHandleOfNoEntry) {
  EXPECT_EQ(ParentOf(0, "IOService"), NoParent);
  EXPECT_EQ(ParentOf(UnknownHandle, "IOService"), NoParent);
}

TEST(RecordedRegistryParent, MayReplaceTheEntryItself) {
  const Recording recording = TwoPlanes({});
  RecordedRegistry registry(recording);
  RegistryEntry entry = B;
  EXPECT_EQ(registry.GetParentEntry(entry, "IOService", entry), RegistrySuccess);
  EXPECT_EQ(entry, A);
}

// Values belong to the recording, not to the registry.
TEST(RecordedRegistryProperty, StaysValidAfterTheRegistryEnds) {
  Computer computer;
  const RegistryEntry entry = computer.AddPort("Port0", {{"Key", "a longer text"}});
  const auto value = [&] {
    RecordedRegistry registry(computer.Recorded());
    return registry.GetProperty(entry, "Key");
  }();
  EXPECT_EQ(value, PropertyValue("a longer text"));
}

std::vector<RegistryEntry> RestOf(Registry& registry, RegistryEntry iterator) {
  std::vector<RegistryEntry> entries;
  while (const RegistryEntry entry = registry.NextEntry(iterator)) entries.push_back(entry);
  return entries;
}

RegistryEntry Matched(Registry& registry, std::string_view className) {
  RegistryEntry iterator = 0;
  EXPECT_EQ(registry.MatchServicesByClass(className, iterator), RegistrySuccess);
  EXPECT_NE(iterator, 0u);
  return iterator;
}

std::vector<RegistryEntry> ServicesOf(const Recording& recording, std::string_view className) {
  RecordedRegistry registry(recording);
  return RestOf(registry, Matched(registry, className));
}

Recording TwoPlanesOfFans(const std::vector<RegistryEntry>& fans) {
  Recording recording = TwoPlanes({});
  for (const RegistryEntry fan : fans) recording.entries[fan - 1].className = "Fan";
  return recording;
}

TEST(RecordedRegistryServices, ComeParentsFirstAndDepthFirst) {
  EXPECT_EQ(ServicesOf(TwoPlanesOfFans({ServiceRoot, A, B, C, D, TreeRoot, Other}), "Fan"),
            (std::vector<RegistryEntry>{ServiceRoot, A, B, C, D}));
}

TEST(RecordedRegistryServices, ComeInChildOrderAndNotInThatOfTheirHandles) {
  Computer computer;
  const RegistryEntry first = computer.AddService(computer.Services(), "First", "Bus", {});
  const RegistryEntry second = computer.AddService(computer.Services(), "Second", "Fan", {});
  const RegistryEntry below = computer.AddService(first, "Below", "Fan", {});
  EXPECT_EQ(ServicesOf(computer.Recorded(), "Fan"), (std::vector<RegistryEntry>{below, second}));
}

TEST(RecordedRegistryServices, AreOnlyThoseOfTheServicePlane) {
  EXPECT_EQ(ServicesOf(TwoPlanesOfFans({TreeRoot, Other}), "Fan"), std::vector<RegistryEntry>());
}

TEST(RecordedRegistryServices, OfNoEntryHaveAnIteratorAllTheSame) {
  EXPECT_EQ(ServicesOf(TwoPlanesOfFans({A}), "Lamp"), std::vector<RegistryEntry>());
  EXPECT_EQ(ServicesOf(TwoPlanesOfFans({A}), "fan"), std::vector<RegistryEntry>());
  EXPECT_EQ(ServicesOf(TwoPlanesOfFans({A}), ""), std::vector<RegistryEntry>());
  EXPECT_EQ(ServicesOf(RecordingOf({}), "Fan"), std::vector<RegistryEntry>());
}

TEST(RecordedRegistryServices, OfDerivedClassesComeToo) {
  Computer computer;
  computer.Derive("QuietFan", "Fan").Derive("SilentFan", "QuietFan").Derive("Fan", "Device");
  const RegistryEntry silent = computer.AddService(computer.Services(), "Fan0", "SilentFan", {});
  const RegistryEntry plain = computer.AddService(computer.Services(), "Fan1", "Fan", {});
  computer.AddService(computer.Services(), "Dev", "Device", {});
  EXPECT_EQ(ServicesOf(computer.Recorded(), "Fan"), (std::vector<RegistryEntry>{silent, plain}));
}

TEST(RecordedRegistryClass, FollowsTheChainUpwards) {
  Computer computer;
  computer.Derive("QuietFan", "Fan").Derive("SilentFan", "QuietFan").Derive("Fan", "Device");
  const RegistryEntry fan = computer.AddService(computer.Services(), "Fan0", "QuietFan", {});
  RecordedRegistry registry(computer.Recorded());
  const std::pair<const char*, bool> rows[] = {
      {"QuietFan", true}, {"Fan", true},       {"Device", true}, {"SilentFan", false},
      {"Lamp", false},    {"quietfan", false}, {"Quiet", false}, {"", false},
  };
  for (const auto& [className, conforms] : rows) {
    EXPECT_EQ(registry.ConformsToClass(fan, className), conforms) << className;
  }
}

TEST(RecordedRegistryClass, WithoutADerivationIsItselfAlone) {
  const Recording recording = TwoPlanesOfFans({A});
  RecordedRegistry registry(recording);
  EXPECT_TRUE(registry.ConformsToClass(A, "Fan"));
  EXPECT_FALSE(registry.ConformsToClass(A, "Device"));
}

TEST(RecordedRegistryClass, OfAnEntryWithoutOneConformsToNothing) {
  const Recording recording = TwoPlanesOfFans({A});
  RecordedRegistry registry(recording);
  EXPECT_FALSE(registry.ConformsToClass(B, "Fan"));
  EXPECT_FALSE(registry.ConformsToClass(B, ""));
}

TEST(RecordedRegistryClass, OfAHandleOfNoEntryConformsToNothing) {
  const Recording recording = TwoPlanesOfFans({A});
  RecordedRegistry registry(recording);
  const RegistryEntry iterator = Matched(registry, "Fan");
  for (const RegistryEntry handle : {0u, UnknownHandle, iterator}) {
    EXPECT_FALSE(registry.ConformsToClass(handle, "Fan"));
    EXPECT_FALSE(registry.ConformsToClass(handle, ""));
  }
}

TEST(RecordedRegistryIterator, BeginsAtTheFirstEntryAlsoWithoutReset) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry registry(recording);
  EXPECT_EQ(registry.NextEntry(Matched(registry, "Fan")), A);
}

TEST(RecordedRegistryIterator, StaysExhausted) {
  const Recording recording = TwoPlanesOfFans({A});
  RecordedRegistry registry(recording);
  const RegistryEntry iterator = Matched(registry, "Fan");
  EXPECT_EQ(registry.NextEntry(iterator), A);
  EXPECT_EQ(registry.NextEntry(iterator), 0u);
  EXPECT_EQ(registry.NextEntry(iterator), 0u);
}

TEST(RecordedRegistryIterator, ResetRewindsItFromAnywhere) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry registry(recording);
  const RegistryEntry iterator = Matched(registry, "Fan");
  const std::vector<RegistryEntry> all{A, D};
  registry.ResetIterator(iterator);
  EXPECT_EQ(RestOf(registry, iterator), all);
  registry.ResetIterator(iterator);
  EXPECT_EQ(registry.NextEntry(iterator), A);
  registry.ResetIterator(iterator);
  EXPECT_EQ(RestOf(registry, iterator), all);
}

TEST(RecordedRegistryIterator, SeveralAtOnceDoNotDisturbEachOther) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry registry(recording);
  const RegistryEntry first = Matched(registry, "Fan");
  const RegistryEntry second = Matched(registry, "Fan");
  EXPECT_NE(first, second);
  EXPECT_EQ(registry.NextEntry(first), A);
  EXPECT_EQ(registry.NextEntry(second), A);
  registry.ResetIterator(second);
  EXPECT_EQ(registry.NextEntry(first), D);
  EXPECT_EQ(registry.NextEntry(second), A);
  EXPECT_EQ(registry.NextEntry(first), 0u);
  EXPECT_EQ(registry.NextEntry(second), D);
}

TEST(RecordedRegistryIterator, OfAnotherRegistryOverTheSameRecordingIsItsOwn) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry first(recording);
  RecordedRegistry second(recording);
  const RegistryEntry iterator = Matched(first, "Fan");
  EXPECT_EQ(first.NextEntry(iterator), A);
  EXPECT_EQ(second.NextEntry(iterator), 0u);
  EXPECT_EQ(Matched(second, "Fan"), iterator);
  EXPECT_EQ(second.NextEntry(iterator), A);
  EXPECT_EQ(first.NextEntry(iterator), D);
}

TEST(RecordedRegistryIterator, StaysValidAfterItsRelease) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry registry(recording);
  const RegistryEntry iterator = Matched(registry, "Fan");
  EXPECT_EQ(registry.NextEntry(iterator), A);
  registry.ReleaseEntry(iterator);
  EXPECT_EQ(registry.NextEntry(iterator), D);
  EXPECT_NE(Matched(registry, "Fan"), iterator);
}

TEST(RecordedRegistryIterator, OfAHandleOfNoIteratorIsExhausted) {
  const Recording recording = TwoPlanesOfFans({A, D});
  RecordedRegistry registry(recording);
  const RegistryEntry iterator = Matched(registry, "Fan");
  for (const RegistryEntry handle : {0u, A, Other, iterator + 1, UnknownHandle}) {
    registry.ResetIterator(handle);
    EXPECT_EQ(registry.NextEntry(handle), 0u) << handle;
  }
  EXPECT_EQ(registry.NextEntry(iterator), A);
}

TEST(RecordedRegistryEntry, StaysValidAfterItsRelease) {
  const Recording recording = TwoPlanes({A});
  RecordedRegistry registry(recording);
  registry.ReleaseEntry(A);
  EXPECT_EQ(registry.GetProperty(A, "Key"), PropertyValue(A));
  EXPECT_EQ(registry.LookupEntryByPath("IOService:/a"), A);
}

TEST(RecordedRegistryEntry, HasTheSameHandleByWhateverWayItIsReached) {
  const Recording recording = TwoPlanesOfFans({B});
  RecordedRegistry registry(recording);
  EXPECT_EQ(registry.LookupEntryByPath("IOService:/a/b"), B);
  EXPECT_EQ(registry.LookupEntryByPath("IODeviceTree:/d/b"), B);
  EXPECT_EQ(registry.NextEntry(Matched(registry, "Fan")), B);
}

TEST(RecordedRegistryEntry, ReleasingNoneOrAnUnknownOneDoesNothing) {
  const Recording recording = TwoPlanes({A});
  RecordedRegistry registry(recording);
  registry.ReleaseEntry(0);
  registry.ReleaseEntry(UnknownHandle);
  EXPECT_EQ(registry.GetProperty(A, "Key"), PropertyValue(A));
}

}  // namespace
}  // namespace fernwick
