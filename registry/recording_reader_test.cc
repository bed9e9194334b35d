#include "registry/recording_reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "testing/computer.h"
#include "testing/inputs/corruption.h"
#include "testing/named_rows.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::Named;
using testing::Repeated;
using testing::RowName;
using testing::Truncated;

constexpr std::string_view BothPlanes = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- A computer with one port controller below a Thunderbolt controller. -->
<plist version="1.0">
<dict>
	<key>Recording Version</key>
	<integer>1</integer>
	<key>Classes</key>
	<dict>
		<key>RidgeSwitchType3</key>
		<string>RidgeSwitch</string>
		<key>RidgeSwitch</key>
		<string>IOThunderboltSwitch</string>
	</dict>
	<key>Planes</key>
	<dict>
		<key>IOService</key>
		<dict>
			<key>Name</key>
			<string>Root</string>
			<key>Children</key>
			<array>
				<dict>
					<key>Link</key>
					<string>soc</string>
					<key>Children</key>
					<array>
						<dict>
							<key>Name</key>
							<string>Ridge0</string>
							<key>Class</key>
							<string>RidgeSwitchType3</string>
							<key>Properties</key>
							<dict>
								<key>UID</key>
								<integer>0x5A3</integer>
								<key>Depth</key>
								<integer>0</integer>
							</dict>
							<key>Children</key>
							<array>
								<dict>
									<key>Name</key>
									<string>Port0</string>
									<key>Class</key>
									<string>QuinceHPMDevice</string>
								</dict>
							</array>
						</dict>
					</array>
				</dict>
				<dict>
					<key>Name</key>
					<string>Port0</string>
				</dict>
			</array>
		</dict>
		<key>IODeviceTree</key>
		<dict>
			<key>Properties</key>
			<dict>
				<key>board-rev</key>
				<data>Aw==</data>
			</dict>
			<key>Children</key>
			<array>
				<dict>
					<key>Name</key>
					<string>options</string>
				</dict>
				<dict>
					<key>Name</key>
					<string>soc</string>
					<key>ID</key>
					<string>soc</string>
				</dict>
			</array>
		</dict>
	</dict>
</dict>
</plist>
)";

TEST(RecordingReader, ReadsBothPlanesWithALinkBetweenThem) {
  const Recording expected{
      {{"Root", "", {}},
       {"Ridge0", "RidgeSwitchType3", {{"UID", 0x5A3}, {"Depth", 0}}},
       {"Port0", "QuinceHPMDevice", {}},
       {"Port0", "", {}},
       {"", "", {{"board-rev", Bytes("\3")}}},
       {"options", "", {}},
       {"soc", "", {}}},
      {{"IOService",
        {1, {{1, {0, {7, 4}}}, {7, {1, {2}}}, {2, {7, {3}}}, {3, {2, {}}}, {4, {1, {}}}}}},
       {"IODeviceTree", {5, {{5, {0, {6, 7}}}, {6, {5, {}}}, {7, {5, {}}}}}}},
      {{"RidgeSwitchType3", "RidgeSwitch"}, {"RidgeSwitch", "IOThunderboltSwitch"}}};
  const auto reading = ReadRecording(std::string(BothPlanes));
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.recording, expected);
}

/// A recording with these planes, and with nothing else.
Dictionary WithPlanes(Dictionary planes) {
  return {{"Recording Version", 1}, {"Planes", std::move(planes)}};
}

/// A recording of one plane with this root.
Dictionary WithRoot(PropertyValue root) {
  return WithPlanes({{"IOService", std::move(root)}});
}

/// A recording of one plane whose root has this one child.
Dictionary WithChild(PropertyValue child) {
  return WithRoot(Dictionary{{"Children", Array{std::move(child)}}});
}

/// A recording without planes with these classes.
Dictionary WithClasses(PropertyValue classes) {
  Dictionary recording = WithPlanes({});
  recording.Set("Classes", std::move(classes));
  return recording;
}

struct AcceptedRow {
  PropertyValue value;
  Recording recording;
};

class AcceptedRecording : public ::testing::TestWithParam<Named<AcceptedRow>> {};

TEST_P(AcceptedRecording, IsRead) {
  const auto reading = InterpretRecording(GetParam().row.value);
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.recording, GetParam().row.recording);
}

/// A plane of a root without children.
RecordedPlane OnlyRoot(RegistryEntry root) {
  return {root, {{root, {}}}};
}

/// The recording of one plane whose root has one child.
Recording RootOver(RecordedEntry child) {
  return {{{}, std::move(child)}, {{"IOService", {1, {{1, {0, {2}}}, {2, {1, {}}}}}}}, {}};
}

const Named<AcceptedRow> AcceptedRows[] = {
    {"NoPlanes", {WithPlanes({}), {}}},
    {"EmptyClasses", {WithClasses(Dictionary{}), {}}},
    {"EmptyRoot", {WithRoot(Dictionary{}), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"PlaneOfAnyName",
     {WithPlanes({{"A plane: /", Dictionary{}}}), {{{}}, {{"A plane: /", OnlyRoot(1)}}, {}}}},
    {"RootWithName",
     {WithRoot(Dictionary{{"Name", "Root"}}),
      {{{"Root", "", {}}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"RootWithClass",
     {WithRoot(Dictionary{{"Class", "Fan"}}),
      {{{"", "Fan", {}}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"RootWithEmptyClass",
     {WithRoot(Dictionary{{"Class", ""}}), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"RootWithUnusedId",
     {WithRoot(Dictionary{{"ID", "root"}}), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"EmptyChildren",
     {WithRoot(Dictionary{{"Children", Array{}}}), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"Child", {WithChild(Dictionary{{"Name", "a"}}), RootOver({"a", "", {}})}},
    {"ChildOfEveryKey",
     {WithChild(Dictionary{{"Children", Array{}},
                           {"ID", "1"},
                           {"Properties", Dictionary{{"Key", 1}}},
                           {"Class", "Fan"},
                           {"Name", "a"}}),
      RootOver({"a", "Fan", {{"Key", 1}}})}},
    {"NameOfOtherCharacters",
     {WithChild(Dictionary{{"Name", " a:b\\\u00E9@0,1. "}}),
      RootOver({" a:b\\\u00E9@0,1. ", "", {}})}},
    {"EmptyProperties",
     {WithChild(Dictionary{{"Name", "a"}, {"Properties", Dictionary{}}}), RootOver({"a", "", {}})}},
    {"PropertiesOfEveryKind",
     {WithChild(Dictionary{{"Name", "a"},
                           {"Properties", Dictionary{{"Text", ""},
                                                     {"Integer", -1},
                                                     {"Real", 5.5},
                                                     {"Boolean", true},
                                                     {"Data", Bytes("a")},
                                                     {"Date", Date{5}},
                                                     {"Array", Array{Array{}}},
                                                     {"Link", Dictionary{{"Link", 1}}}}}}),
      RootOver({"a",
                "",
                {{"Text", ""},
                 {"Integer", -1},
                 {"Real", 5.5},
                 {"Boolean", true},
                 {"Data", Bytes("a")},
                 {"Date", Date{5}},
                 {"Array", Array{Array{}}},
                 {"Link", Dictionary{{"Link", 1}}}}})}},
    {"SiblingsOfOneName",
     {WithRoot(
          Dictionary{{"Children", Array{Dictionary{{"Name", "a"}}, Dictionary{{"Name", "a"}}}}}),
      {{{}, {"a", "", {}}, {"a", "", {}}},
       {{"IOService", {1, {{1, {0, {2, 3}}}, {2, {1, {}}}, {3, {1, {}}}}}}},
       {}}}},
    {"ClassChain",
     {WithClasses(Dictionary{{"A", "B"}, {"C", "D"}, {"B", "C"}}),
      {{}, {}, {{"A", "B"}, {"B", "C"}, {"C", "D"}}}}},
    {"TwoClassesOfOneSuperclass",
     {WithClasses(Dictionary{{"A", "C"}, {"B", "C"}, {"C", "D"}}),
      {{}, {}, {{"A", "C"}, {"B", "C"}, {"C", "D"}}}}},
    {"LinkAsRoot",
     {WithPlanes({{"IODeviceTree", Dictionary{{"ID", "root"}}},
                  {"IOService", Dictionary{{"Link", "root"}}}}),
      {{{}}, {{"IODeviceTree", OnlyRoot(1)}, {"IOService", OnlyRoot(1)}}, {}}}},
    {"LinkBeforeItsEntry",
     {WithPlanes({{"IOService", Dictionary{{"Link", "root"}}},
                  {"IODeviceTree", Dictionary{{"ID", "root"}}}}),
      {{{}}, {{"IODeviceTree", OnlyRoot(1)}, {"IOService", OnlyRoot(1)}}, {}}}},
    {"LinkBelowLink",
     {WithPlanes({{"IODeviceTree",
                   Dictionary{{"ID", "root"},
                              {"Children", Array{Dictionary{{"Name", "a"}, {"ID", "a"}}}}}},
                  {"IOService",
                   Dictionary{{"Link", "a"}, {"Children", Array{Dictionary{{"Link", "root"}}}}}}}),
      {{{}, {"a", "", {}}},
       {{"IODeviceTree", {1, {{1, {0, {2}}}, {2, {1, {}}}}}},
        {"IOService", {2, {{2, {0, {1}}}, {1, {2, {}}}}}}},
       {}}}},
    {"ChildrenAreOfThePlaneOfTheirNode",
     {WithPlanes({{"IODeviceTree",
                   Dictionary{{"ID", "root"}, {"Children", Array{Dictionary{{"Name", "a"}}}}}},
                  {"IOService",
                   Dictionary{{"Link", "root"}, {"Children", Array{Dictionary{{"Name", "b"}}}}}}}),
      {{{}, {"a", "", {}}, {"b", "", {}}},
       {{"IODeviceTree", {1, {{1, {0, {2}}}, {2, {1, {}}}}}},
        {"IOService", {1, {{1, {0, {3}}}, {3, {1, {}}}}}}},
       {}}}},
    {"OneEntryInThreePlanes",
     {WithPlanes({{"IODeviceTree", Dictionary{{"ID", "root"}}},
                  {"IOPower", Dictionary{{"Link", "root"}}},
                  {"IOService", Dictionary{{"Link", "root"}}}}),
      {{{}},
       {{"IODeviceTree", OnlyRoot(1)}, {"IOPower", OnlyRoot(1)}, {"IOService", OnlyRoot(1)}},
       {}}}},
};

INSTANTIATE_TEST_SUITE_P(RecordingReader, AcceptedRecording, ::testing::ValuesIn(AcceptedRows),
                         RowName);

struct RejectedRow {
  PropertyValue value;
  std::string error;
};

class RejectedRecording : public ::testing::TestWithParam<Named<RejectedRow>> {};

TEST_P(RejectedRecording, IsRefusedWholeWithItsPlaceAndFault) {
  const auto reading = InterpretRecording(GetParam().row.value);
  EXPECT_EQ(reading.error, GetParam().row.error);
  EXPECT_FALSE(reading.recording.has_value());
}

const Named<RejectedRow> TopLevelRows[] = {
    {"Array", {Array{}, "a recording is a dictionary"}},
    {"String", {"text", "a recording is a dictionary"}},
    {"Integer", {1, "a recording is a dictionary"}},
    {"EmptyDictionary", {Dictionary{}, "\"Recording Version\" is missing"}},
    {"NoVersion", {Dictionary{{"Planes", Dictionary{}}}, "\"Recording Version\" is missing"}},
    {"VersionOfAnotherCase",
     {Dictionary{{"recording version", 1}}, "\"Recording Version\" is missing"}},
    {"UnknownKey",
     {Dictionary{{"Recording Version", 1}, {"Planes", Dictionary{}}, {"Notes", "text"}},
      "the key \"Notes\" is not known"}},
    {"EmptyKey",
     {Dictionary{{"Recording Version", 1}, {"", 1}, {"Planes", Dictionary{}}},
      "the key \"\" is not known"}},
    {"KeyOfAnotherCase",
     {Dictionary{{"Recording Version", 1}, {"Planes", Dictionary{}}, {"classes", Dictionary{}}},
      "the key \"classes\" is not known"}},
    {"NoPlanes", {Dictionary{{"Recording Version", 1}}, "\"Planes\" is missing"}},
    {"PlanesArray",
     {Dictionary{{"Recording Version", 1}, {"Planes", Array{}}}, "Planes: not a dictionary"}},
    {"PlanesString",
     {Dictionary{{"Recording Version", 1}, {"Planes", "IOService"}}, "Planes: not a dictionary"}},
};

INSTANTIATE_TEST_SUITE_P(TopLevel, RejectedRecording, ::testing::ValuesIn(TopLevelRows), RowName);

TEST(RecordingReader, RefusesEveryVersionButTheIntegerOne) {
  const PropertyValue versions[] = {0,
                                    2,
                                    -1,
                                    0x100000001,
                                    std::numeric_limits<std::uint64_t>::max(),
                                    1.0,
                                    true,
                                    "1",
                                    Bytes("\1"),
                                    Date{1},
                                    false,
                                    Array{1},
                                    Dictionary{{"Version", 1}},
                                    1.5};
  for (const auto& version : versions) {
    const auto reading =
        InterpretRecording(Dictionary{{"Recording Version", version}, {"Planes", Dictionary{}}});
    EXPECT_EQ(reading.error, "\"Recording Version\" is not the integer 1");
    EXPECT_FALSE(reading.recording.has_value());
  }
}

TEST(RecordingReader, TellsAnotherVersionBeforeWhatThatVersionMayHold) {
  EXPECT_EQ(InterpretRecording(Dictionary{{"Machines", 5}, {"Recording Version", 2}}).error,
            "\"Recording Version\" is not the integer 1");
}

const Named<RejectedRow> ClassRows[] = {
    {"Array", {WithClasses(Array{}), "Classes: not a dictionary"}},
    {"String", {WithClasses("Fan"), "Classes: not a dictionary"}},
    {"SuperclassInteger",
     {WithClasses(Dictionary{{"A", "B"}, {"B", 5}}),
      "Classes: the superclass of \"B\" is not a string"}},
    {"SuperclassArray",
     {WithClasses(Dictionary{{"A", Array{"B"}}}),
      "Classes: the superclass of \"A\" is not a string"}},
    {"SuperclassData",
     {WithClasses(Dictionary{{"A", Bytes("B")}}),
      "Classes: the superclass of \"A\" is not a string"}},
    {"LoopOfOne",
     {WithClasses(Dictionary{{"A", "A"}}), "Classes: the class \"A\" derives from itself"}},
    {"LoopOfTwo",
     {WithClasses(Dictionary{{"A", "B"}, {"B", "A"}}),
      "Classes: the class \"A\" derives from itself"}},
    {"LoopOfThree",
     {WithClasses(Dictionary{{"C", "A"}, {"B", "C"}, {"A", "B"}}),
      "Classes: the class \"A\" derives from itself"}},
    {"LoopBehindATail",
     {WithClasses(Dictionary{{"A", "B"}, {"B", "C"}, {"C", "D"}, {"D", "E"}, {"E", "C"}}),
      "Classes: the class \"C\" derives from itself"}},
    {"TailThatIsReadAfterTheLoop",
     {WithClasses(Dictionary{{"Z", "A"}, {"A", "B"}, {"B", "A"}}),
      "Classes: the class \"A\" derives from itself"}},
    {"LoopBesideAGoodChain",
     {WithClasses(Dictionary{{"A", "B"}, {"B", "C"}, {"X", "X"}}),
      "Classes: the class \"X\" derives from itself"}},
};

INSTANTIATE_TEST_SUITE_P(Classes, RejectedRecording, ::testing::ValuesIn(ClassRows), RowName);

/// A chain of classes, "0" deriving from "1" and so on, whose last derives from `end`.
Dictionary ClassChain(int length, std::string_view end) {
  Dictionary classes;
  for (int i = 1; i < length; ++i) classes.Set(std::to_string(i - 1), std::to_string(i));
  classes.Set(std::to_string(length - 1), end);
  return classes;
}

TEST(RecordingReader, AcceptsALongClassChain) {
  EXPECT_EQ(InterpretRecording(WithClasses(ClassChain(1000, "end"))).error, "");
}

TEST(RecordingReader, FindsTheLoopAtTheEndOfALongClassChain) {
  EXPECT_EQ(InterpretRecording(WithClasses(ClassChain(1000, "998"))).error,
            "Classes: the class \"998\" derives from itself");
}

constexpr char ChildPath[] = "Planes/IOService/Children[0]: ";

RejectedRow RejectedChild(PropertyValue child, std::string_view fault) {
  return {WithChild(std::move(child)), ChildPath + std::string(fault)};
}

RejectedRow RejectedRoot(PropertyValue root, std::string_view fault) {
  return {WithRoot(std::move(root)), "Planes/IOService: " + std::string(fault)};
}

const Named<RejectedRow> NodeRows[] = {
    {"RootString", RejectedRoot("root", "not a dictionary")},
    {"RootArray", RejectedRoot(Array{}, "not a dictionary")},
    {"RootOfAPlaneOfAnyName",
     {WithPlanes({{"a\tb\u009B/c", "root"}}), "Planes/a b\\233/c: not a dictionary"}},
    {"ChildString", RejectedChild("child", "not a dictionary")},
    {"ChildArray", RejectedChild(Array{}, "not a dictionary")},
    {"RootUnknownKey", RejectedRoot(Dictionary{{"Names", "a"}}, "the key \"Names\" is not known")},
    {"ChildUnknownKey",
     RejectedChild(Dictionary{{"Name", "a"}, {"Parent", "b"}}, "the key \"Parent\" is not known")},
    {"ChildKeyOfAnotherCase",
     RejectedChild(Dictionary{{"Name", "a"}, {"class", "b"}}, "the key \"class\" is not known")},
    {"NoName", RejectedChild(Dictionary{}, "\"Name\" is missing")},
    {"NoNameButAllElse",
     RejectedChild(Dictionary{{"Class", "Fan"}, {"ID", "1"}}, "\"Name\" is missing")},
    {"EmptyName", RejectedChild(Dictionary{{"Name", ""}}, "\"Name\" is empty")},
    {"EmptyNameOfARoot", RejectedRoot(Dictionary{{"Name", ""}}, "\"Name\" is empty")},
    {"NameOfASlash", RejectedChild(Dictionary{{"Name", "/"}}, "\"Name\" holds a \"/\"")},
    {"NameWithASlash", RejectedChild(Dictionary{{"Name", "a/b"}}, "\"Name\" holds a \"/\"")},
    {"NameWithASlashOfARoot", RejectedRoot(Dictionary{{"Name", "a/"}}, "\"Name\" holds a \"/\"")},
    {"NameInteger", RejectedChild(Dictionary{{"Name", 5}}, "\"Name\" is not a string")},
    {"NameData", RejectedChild(Dictionary{{"Name", Bytes("a")}}, "\"Name\" is not a string")},
    {"NameIntegerOfARoot", RejectedRoot(Dictionary{{"Name", 5}}, "\"Name\" is not a string")},
    {"ClassInteger",
     RejectedChild(Dictionary{{"Name", "a"}, {"Class", 5}}, "\"Class\" is not a string")},
    {"ClassArray", RejectedRoot(Dictionary{{"Class", Array{"Fan"}}}, "\"Class\" is not a string")},
    {"PropertiesArray", RejectedChild(Dictionary{{"Name", "a"}, {"Properties", Array{}}},
                                      "\"Properties\" is not a dictionary")},
    {"PropertiesString",
     RejectedRoot(Dictionary{{"Properties", "UID"}}, "\"Properties\" is not a dictionary")},
    {"IdInteger", RejectedChild(Dictionary{{"Name", "a"}, {"ID", 5}}, "\"ID\" is not a string")},
    {"EmptyId", RejectedChild(Dictionary{{"Name", "a"}, {"ID", ""}}, "\"ID\" is empty")},
    {"ChildrenDictionary", RejectedChild(Dictionary{{"Name", "a"}, {"Children", Dictionary{}}},
                                         "\"Children\" is not an array")},
    {"ChildrenString", RejectedRoot(Dictionary{{"Children", "a"}}, "\"Children\" is not an array")},
    {"LinkInteger", RejectedChild(Dictionary{{"Link", 5}}, "\"Link\" is not a string")},
    {"LinkData", RejectedChild(Dictionary{{"Link", Bytes("a")}}, "\"Link\" is not a string")},
    {"LinkWithName",
     RejectedChild(Dictionary{{"Link", "x"}, {"Name", "a"}}, "a link must not have \"Name\"")},
    {"LinkWithClass",
     RejectedChild(Dictionary{{"Link", "x"}, {"Class", "Fan"}}, "a link must not have \"Class\"")},
    {"LinkWithProperties", RejectedChild(Dictionary{{"Link", "x"}, {"Properties", Dictionary{}}},
                                         "a link must not have \"Properties\"")},
    {"LinkWithId",
     RejectedChild(Dictionary{{"Link", "x"}, {"ID", "y"}}, "a link must not have \"ID\"")},
    {"LinkWithNameAsRoot",
     RejectedRoot(Dictionary{{"Link", "x"}, {"Name", "a"}}, "a link must not have \"Name\"")},
    {"LinkWithUnknownKey",
     RejectedChild(Dictionary{{"Link", "x"}, {"Parent", "b"}}, "the key \"Parent\" is not known")},
    {"LinkChildrenDictionary", RejectedChild(Dictionary{{"Link", "x"}, {"Children", Dictionary{}}},
                                             "\"Children\" is not an array")},
    {"DanglingLink", RejectedChild(Dictionary{{"Link", "x"}}, "no entry has the ID \"x\"")},
    {"DanglingLinkAsRoot", RejectedRoot(Dictionary{{"Link", "x"}}, "no entry has the ID \"x\"")},
    {"EmptyLink", RejectedChild(Dictionary{{"Link", ""}}, "no entry has the ID \"\"")},
    {"LinkToANameThatIsNoId",
     {WithPlanes(
          {{"IODeviceTree", Dictionary{{"Name", "x"}}}, {"IOService", Dictionary{{"Link", "x"}}}}),
      "Planes/IOService: no entry has the ID \"x\""}},
    {"LinkToAnIdOfAnotherCase",
     {WithPlanes(
          {{"IODeviceTree", Dictionary{{"ID", "X"}}}, {"IOService", Dictionary{{"Link", "x"}}}}),
      "Planes/IOService: no entry has the ID \"x\""}},
    {"IdTwiceInAPlane",
     {WithRoot(Dictionary{
          {"ID", "x"},
          {"Children", Array{Dictionary{{"Name", "a"}}, Dictionary{{"Name", "b"}, {"ID", "x"}}}}}),
      "Planes/IOService/Children[1]: the ID \"x\" is taken by an earlier node"}},
    {"IdTwiceAcrossPlanes",
     {WithPlanes(
          {{"IOService", Dictionary{{"ID", "x"}}}, {"IODeviceTree", Dictionary{{"ID", "x"}}}}),
      "Planes/IODeviceTree: the ID \"x\" is taken by an earlier node"}},
    {"TwoLinksToOneEntry",
     {WithPlanes({{"IODeviceTree", Dictionary{{"ID", "x"}}},
                  {"IOService", Dictionary{{"Children", Array{Dictionary{{"Link", "x"}},
                                                              Dictionary{{"Link", "x"}}}}}}}),
      "Planes/IOService/Children[1]: the entry already stands in this plane"}},
    {"LinkBelowALinkToTheSameEntry",
     {WithPlanes({{"IODeviceTree", Dictionary{{"ID", "x"}}},
                  {"IOService",
                   Dictionary{{"Link", "x"}, {"Children", Array{Dictionary{{"Link", "x"}}}}}}}),
      "Planes/IOService/Children[0]: the entry already stands in this plane"}},
    {"LinkBehindTheEntryOfItsPlane",
     {WithRoot(Dictionary{
          {"Children", Array{Dictionary{{"Name", "a"}, {"ID", "x"}}, Dictionary{{"Link", "x"}}}}}),
      "Planes/IOService/Children[1]: the entry already stands in this plane"}},
    {"LinkBeforeTheEntryOfItsPlane",
     {WithRoot(Dictionary{
          {"Children", Array{Dictionary{{"Link", "x"}}, Dictionary{{"Name", "a"}, {"ID", "x"}}}}}),
      "Planes/IOService/Children[0]: the entry already stands in this plane"}},
    {"LinkBelowItsEntry",
     {WithRoot(Dictionary{{"ID", "x"}, {"Children", Array{Dictionary{{"Link", "x"}}}}}),
      "Planes/IOService/Children[0]: the entry already stands in this plane"}},
    {"LinkAboveItsEntry",
     {WithRoot(
          Dictionary{{"Link", "x"}, {"Children", Array{Dictionary{{"Name", "a"}, {"ID", "x"}}}}}),
      "Planes/IOService: the entry already stands in this plane"}},
    {"FaultDeepDown",
     {WithRoot(Dictionary{
          {"Children",
           Array{Dictionary{{"Name", "a"}},
                 Dictionary{{"Name", "b"},
                            {"Children", Array{Dictionary{{"Name", "c"}}, Dictionary{{"Name", "d"}},
                                               Dictionary{}}}}}}}),
      "Planes/IOService/Children[1]/Children[2]: \"Name\" is missing"}},
    {"FaultBelowALink",
     {WithPlanes({{"IODeviceTree", Dictionary{{"ID", "x"}}},
                  {"IOService", Dictionary{{"Link", "x"}, {"Children", Array{Dictionary{}}}}}}),
      "Planes/IOService/Children[0]: \"Name\" is missing"}},
    {"FirstOfTwoFaults",
     {WithPlanes({{"IOService", Dictionary{{"Class", 5}}}, {"IODeviceTree", 5}}),
      "Planes/IOService: \"Class\" is not a string"}},
};

INSTANTIATE_TEST_SUITE_P(Nodes, RejectedRecording, ::testing::ValuesIn(NodeRows), RowName);

/// The whole error that the bytes of a file give; empty when they are a recording.
std::string ErrorOfFile(std::string_view bytes) {
  auto reading = ReadRecording(std::string(bytes));
  EXPECT_EQ(reading.recording.has_value(), reading.error.empty());
  return reading.error;
}

/// The error that the property list's own reader gives.
std::string PropertyListError(std::string_view bytes) {
  return ReadPropertyList(std::string(bytes)).error;
}

const std::string BinaryRecording(
    "bplist00\xd2\x01\x02\x03\x04\x5f\x10\x11Recording VersionVPlanes\x10\x01\xd1\x05\x06YIOService"
    "\xd0\x08\x0d!(*-7\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x07\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x00"
    "8",
    95);

TEST(RecordingReader, ReadsABinaryPropertyList) {
  const auto reading = ReadRecording(BinaryRecording);
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.recording, (Recording{{{}}, {{"IOService", OnlyRoot(1)}}, {}}));
}

TEST(RecordingReader, RefusesTheOldTextForm) {
  const char* const texts[] = {
      "{ \"Recording Version\" = 1; Planes = { IOService = {}; }; }",
      "\"Recording Version\" = 1; Planes = {};",
      "( )",
  };
  for (const auto* text : texts) {
    EXPECT_EQ(ErrorOfFile(text),
              "a recording is an XML or binary property list, not the old text form");
  }
}

TEST(RecordingReader, RefusesWhatIsNoDictionary) {
  EXPECT_EQ(ErrorOfFile("<plist><array/></plist>"), "a recording is a dictionary");
  EXPECT_EQ(ErrorOfFile("<string/>"), "a recording is a dictionary");
}

TEST(RecordingReader, ReadsVersionOneHoweverItIsSpelled) {
  EXPECT_EQ(ErrorOfFile("<dict><key>Recording Version</key><integer>0x1</integer>"
                        "<key>Planes</key><dict/></dict>"),
            "");
}

TEST(RecordingReader, APlaneThatOccursTwiceKeepsItsFirstPlaceAndItsLastRoot) {
  const auto reading = ReadRecording(
      "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
      "<key>IOService</key><string>never looked at</string>"
      "<key>IODeviceTree</key><dict><key>Name</key><string>first</string></dict>"
      "<key>IOService</key><dict><key>Name</key><string>last</string></dict>"
      "</dict></dict>");
  EXPECT_EQ(reading.error, "");
  EXPECT_EQ(reading.recording,
            (Recording{{{"last", "", {}}, {"first", "", {}}},
                       {{"IOService", OnlyRoot(1)}, {"IODeviceTree", OnlyRoot(2)}},
                       {}}));
}

/// A recording whose root stands above a chain of `depth` children, the last of which has these
/// properties.
std::string ChainOfChildren(std::size_t depth, const std::string& properties) {
  return "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
         "<key>IOService</key><dict>" +
         Repeated("<key>Children</key><array><dict><key>Name</key><string>a</string>", depth) +
         "<key>Properties</key><dict>" + properties + "</dict>" +
         Repeated("</dict></array>", depth) + "</dict></dict></dict>";
}

TEST(RecordingReader, AcceptsTheDeepestNestingThatAFileMayHave) {
  // Three dictionaries around the root's children, two containers for each child, the properties.
  const auto reading = ReadRecording(ChainOfChildren(254, ""));
  EXPECT_EQ(reading.error, "");
  ASSERT_TRUE(reading.recording.has_value());
  EXPECT_EQ(reading.recording->entries.size(), 255u);
  EXPECT_EQ(ErrorOfFile(ChainOfChildren(254, "<key>a</key><array/>")),
            "line 1, column 16653: more than 512 arrays and dictionaries are nested in each other");
}

TEST(RecordingReader, PassesOnTheFaultOfAMalformedFile) {
  const std::string files[] = {
      "",
      " ",
      "{",
      "not a property list",
      "<plist><dict>",
      "<plist><dict><key>Recording Version</key></dict></plist>",
      "bplist00",
      Truncated(BothPlanes, BothPlanes.size() / 2),
      Truncated(BinaryRecording, BinaryRecording.size() - 1),
      Truncated(BinaryRecording, BinaryRecording.size() / 2),
  };
  for (const auto& file : files) {
    EXPECT_EQ(ErrorOfFile(file), PropertyListError(file));
    EXPECT_NE(ErrorOfFile(file), "");
  }
}

TEST(RecordingReader, RefusesEveryCutRecording) {
  for (std::size_t size = 0; size < BinaryRecording.size(); ++size) {
    EXPECT_NE(ErrorOfFile(Truncated(BinaryRecording, size)), "") << size;
  }
  const std::size_t end = BothPlanes.rfind("</plist>") + 7;
  for (std::size_t size = 0; size <= end; ++size) {
    EXPECT_NE(ErrorOfFile(Truncated(BothPlanes, size)), "") << size;
  }
}

}  // namespace
}  // namespace fernwick
