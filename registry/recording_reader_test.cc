#include "registry/recording_reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "testing/inputs/corruption.h"
#include "testing/named_rows.h"
#include "testing/property_values.h"
#include "testing/recordings.h"
#include "value/property_list_reader.h"

namespace fernwick {
namespace {

using testing::Bytes;
using testing::ContentOf;
using testing::Dict;
using testing::Kept;
using testing::List;
using testing::Named;
using testing::RecordingContent;
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

/// Expects that the recording was read and has this content.
void ExpectContent(const Result<Recording>& reading, const RecordingContent& content) {
  ASSERT_TRUE(reading) << Describe(reading.Error());
  EXPECT_EQ(ContentOf(*reading), content);
}

/// The whole error; empty when there is a recording.
std::string ErrorOf(const Result<Recording>& reading) {
  return reading ? "" : Describe(reading.Error());
}

/// What is read from a property list of this value.
Result<Recording> Interpreted(PropertyValue value) {
  return InterpretRecording(PropertyList{.arena = {}, .value = value});
}

TEST(RecordingReader, ReadsBothPlanesWithALinkBetweenThem) {
  const RecordingContent expected{
      {{"Root", "", {}},
       {"Ridge0", "RidgeSwitchType3", Dict({{"UID", 0x5A3}, {"Depth", 0}})},
       {"Port0", "QuinceHPMDevice", {}},
       {"Port0", "", {}},
       {"", "", Dict({{"board-rev", Bytes("\3")}})},
       {"options", "", {}},
       {"soc", "", {}}},
      {{"IOService",
        {1, {{1, {0, {7, 4}}}, {7, {1, {2}}}, {2, {7, {3}}}, {3, {2, {}}}, {4, {1, {}}}}}},
       {"IODeviceTree", {5, {{5, {0, {6, 7}}}, {6, {5, {}}}, {7, {5, {}}}}}}},
      {{"RidgeSwitchType3", "RidgeSwitch"}, {"RidgeSwitch", "IOThunderboltSwitch"}}};
  ExpectContent(ReadRecording(std::string(BothPlanes)), expected);
}

/// A recording with these planes, and with nothing else.
Dictionary WithPlanes(const Record& planes) {
  return Dict({{"Recording Version", 1}, {"Planes", Dict(planes)}});
}

/// A recording of one plane with this root.
Dictionary WithRoot(PropertyValue root) {
  return WithPlanes({{"IOService", root}});
}

/// A recording of one plane whose root has this one child.
Dictionary WithChild(PropertyValue child) {
  return WithRoot(Dict({{"Children", List({child})}}));
}

/// A recording without planes with these classes.
Dictionary WithClasses(PropertyValue classes) {
  return Dict({{"Recording Version", 1}, {"Planes", Dictionary()}, {"Classes", classes}});
}

struct AcceptedRow {
  PropertyValue value;
  RecordingContent content;
};

class AcceptedRecording : public ::testing::TestWithParam<Named<AcceptedRow>> {};

TEST_P(AcceptedRecording, IsRead) {
  ExpectContent(Interpreted(GetParam().row.value), GetParam().row.content);
}

/// A plane of a root without children.
RecordedPlane OnlyRoot(RegistryEntry root) {
  return {root, {{root, {}}}};
}

/// The recording of one plane whose root has one child.
RecordingContent RootOver(RecordedEntry child) {
  return {{{}, child}, {{"IOService", {1, {{1, {0, {2}}}, {2, {1, {}}}}}}}, {}};
}

const Named<AcceptedRow> AcceptedRows[] = {
    {"NoPlanes", {WithPlanes({}), {}}},
    {"EmptyClasses", {WithClasses(Dictionary()), {}}},
    {"EmptyRoot", {WithRoot(Dictionary()), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"PlaneOfAnyName",
     {WithPlanes({{"A plane, / \u00E9", Dictionary()}}),
      {{{}}, {{"A plane, / \u00E9", OnlyRoot(1)}}, {}}}},
    {"RootWithName",
     {WithRoot(Dict({{"Name", "Root"}})), {{{"Root", "", {}}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"RootWithClass",
     {WithRoot(Dict({{"Class", "Fan"}})), {{{"", "Fan", {}}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"RootWithUnusedId",
     {WithRoot(Dict({{"ID", "root"}})), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"EmptyChildren",
     {WithRoot(Dict({{"Children", Array()}})), {{{}}, {{"IOService", OnlyRoot(1)}}, {}}}},
    {"Child", {WithChild(Dict({{"Name", "a"}})), RootOver({"a", "", {}})}},
    {"ChildOfEveryKey",
     {WithChild(Dict({{"Children", Array()},
                      {"ID", "1"},
                      {"Properties", Dict({{"Key", 1}})},
                      {"Class", "Fan"},
                      {"Name", "a"}})),
      RootOver({"a", "Fan", Dict({{"Key", 1}})})}},
    {"NameOfOtherCharacters",
     {WithChild(Dict({{"Name", " a:b\\\u00E9@0,1. "}})), RootOver({" a:b\\\u00E9@0,1. ", "", {}})}},
    {"EmptyProperties",
     {WithChild(Dict({{"Name", "a"}, {"Properties", Dictionary()}})), RootOver({"a", "", {}})}},
    {"PropertiesOfEveryKind",
     {WithChild(Dict({{"Name", "a"},
                      {"Properties", Dict({{"Text", ""},
                                           {"Integer", -1},
                                           {"Real", 5.5},
                                           {"Boolean", true},
                                           {"Data", Bytes("a")},
                                           {"Date", Date{5}},
                                           {"Array", List({Array()})},
                                           {"Link", Dict({{"Link", 1}})}})}})),
      RootOver({"a", "",
                Dict({{"Text", ""},
                      {"Integer", -1},
                      {"Real", 5.5},
                      {"Boolean", true},
                      {"Data", Bytes("a")},
                      {"Date", Date{5}},
                      {"Array", List({Array()})},
                      {"Link", Dict({{"Link", 1}})}})})}},
    {"SiblingsOfOneName",
     {WithRoot(Dict({{"Children", List({Dict({{"Name", "a"}}), Dict({{"Name", "a"}})})}})),
      {{{}, {"a", "", {}}, {"a", "", {}}},
       {{"IOService", {1, {{1, {0, {2, 3}}}, {2, {1, {}}}, {3, {1, {}}}}}}},
       {}}}},
    {"ClassChain",
     {WithClasses(Dict({{"A", "B"}, {"C", "D"}, {"B", "C"}})),
      {{}, {}, {{"A", "B"}, {"B", "C"}, {"C", "D"}}}}},
    {"TwoClassesOfOneSuperclass",
     {WithClasses(Dict({{"A", "C"}, {"B", "C"}, {"C", "D"}})),
      {{}, {}, {{"A", "C"}, {"B", "C"}, {"C", "D"}}}}},
    {"LinkAsRoot",
     {WithPlanes(
          {{"IODeviceTree", Dict({{"ID", "root"}})}, {"IOService", Dict({{"Link", "root"}})}}),
      {{{}}, {{"IODeviceTree", OnlyRoot(1)}, {"IOService", OnlyRoot(1)}}, {}}}},
    {"LinkBeforeItsEntry",
     {WithPlanes(
          {{"IOService", Dict({{"Link", "root"}})}, {"IODeviceTree", Dict({{"ID", "root"}})}}),
      {{{}}, {{"IODeviceTree", OnlyRoot(1)}, {"IOService", OnlyRoot(1)}}, {}}}},
    {"LinkBelowLink",
     {WithPlanes(
          {{"IODeviceTree",
            Dict({{"ID", "root"}, {"Children", List({Dict({{"Name", "a"}, {"ID", "a"}})})}})},
           {"IOService", Dict({{"Link", "a"}, {"Children", List({Dict({{"Link", "root"}})})}})}}),
      {{{}, {"a", "", {}}},
       {{"IODeviceTree", {1, {{1, {0, {2}}}, {2, {1, {}}}}}},
        {"IOService", {2, {{2, {0, {1}}}, {1, {2, {}}}}}}},
       {}}}},
    {"ChildrenAreOfThePlaneOfTheirNode",
     {WithPlanes(
          {{"IODeviceTree", Dict({{"ID", "root"}, {"Children", List({Dict({{"Name", "a"}})})}})},
           {"IOService", Dict({{"Link", "root"}, {"Children", List({Dict({{"Name", "b"}})})}})}}),
      {{{}, {"a", "", {}}, {"b", "", {}}},
       {{"IODeviceTree", {1, {{1, {0, {2}}}, {2, {1, {}}}}}},
        {"IOService", {1, {{1, {0, {3}}}, {3, {1, {}}}}}}},
       {}}}},
    {"OneEntryInThreePlanes",
     {WithPlanes({{"IODeviceTree", Dict({{"ID", "root"}})},
                  {"IOPower", Dict({{"Link", "root"}})},
                  {"IOService", Dict({{"Link", "root"}})}}),
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

TEST_P(RejectedRecording, IsRefusedWholeWithItsLocationAndFault) {
  EXPECT_EQ(ErrorOf(Interpreted(GetParam().row.value)), GetParam().row.error);
}

const Named<RejectedRow> TopLevelRows[] = {
    {"Array", {Array(), "a recording is a dictionary"}},
    {"String", {"text", "a recording is a dictionary"}},
    {"Integer", {1, "a recording is a dictionary"}},
    {"EmptyDictionary", {Dictionary(), "\"Recording Version\" is missing"}},
    {"NoVersion", {Dict({{"Planes", Dictionary()}}), "\"Recording Version\" is missing"}},
    {"VersionOfAnotherCase",
     {Dict({{"recording version", 1}}), "\"Recording Version\" is missing"}},
    {"UnknownKey",
     {Dict({{"Recording Version", 1}, {"Planes", Dictionary()}, {"Notes", "text"}}),
      "the key \"Notes\" is not known"}},
    {"EmptyKey",
     {Dict({{"Recording Version", 1}, {"", 1}, {"Planes", Dictionary()}}),
      "the key \"\" is not known"}},
    {"KeyOfAnotherCase",
     {Dict({{"Recording Version", 1}, {"Planes", Dictionary()}, {"classes", Dictionary()}}),
      "the key \"classes\" is not known"}},
    {"NoPlanes", {Dict({{"Recording Version", 1}}), "\"Planes\" is missing"}},
    {"PlanesArray",
     {Dict({{"Recording Version", 1}, {"Planes", Array()}}), "Planes: not a dictionary"}},
    {"PlanesString",
     {Dict({{"Recording Version", 1}, {"Planes", "IOService"}}), "Planes: not a dictionary"}},
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
                                    List({1}),
                                    Dict({{"Version", 1}}),
                                    1.5};
  for (const auto& version : versions) {
    const auto reading =
        Interpreted(Dict({{"Recording Version", version}, {"Planes", Dictionary()}}));
    EXPECT_EQ(ErrorOf(reading), "\"Recording Version\" is not the integer 1");
  }
}

TEST(RecordingReader, ReportsAnotherVersionBeforeWhatThatVersionMayContain) {
  EXPECT_EQ(ErrorOf(Interpreted(Dict({{"Machines", 5}, {"Recording Version", 2}}))),
            "\"Recording Version\" is not the integer 1");
}

const Named<RejectedRow> ClassRows[] = {
    {"Array", {WithClasses(Array()), "Classes: not a dictionary"}},
    {"String", {WithClasses("Fan"), "Classes: not a dictionary"}},
    {"SuperclassInteger",
     {WithClasses(Dict({{"A", "B"}, {"B", 5}})),
      "Classes: the superclass of \"B\" is not a string"}},
    {"SuperclassArray",
     {WithClasses(Dict({{"A", List({"B"})}})), "Classes: the superclass of \"A\" is not a string"}},
    {"SuperclassData",
     {WithClasses(Dict({{"A", Bytes("B")}})), "Classes: the superclass of \"A\" is not a string"}},
    {"EmptyClass",
     {WithClasses(Dict({{"A", "B"}, {"", "C"}})), "Classes: the name of a class is empty"}},
    {"EmptyClassWithoutSuperclass",
     {WithClasses(Dict({{"", 5}})), "Classes: the name of a class is empty"}},
    {"EmptySuperclass",
     {WithClasses(Dict({{"A", "B"}, {"B", ""}})),
      "Classes: the name of the superclass of \"B\" is empty"}},
    {"FirstOfTwoEmptyNames",
     {WithClasses(Dict({{"A", ""}, {"", "B"}})),
      "Classes: the name of the superclass of \"A\" is empty"}},
    {"LoopOfOne",
     {WithClasses(Dict({{"A", "A"}})), "Classes: the class \"A\" derives from itself"}},
    {"LoopOfTwo",
     {WithClasses(Dict({{"A", "B"}, {"B", "A"}})), "Classes: the class \"A\" derives from itself"}},
    {"LoopOfThree",
     {WithClasses(Dict({{"C", "A"}, {"B", "C"}, {"A", "B"}})),
      "Classes: the class \"A\" derives from itself"}},
    {"LoopBehindATail",
     {WithClasses(Dict({{"A", "B"}, {"B", "C"}, {"C", "D"}, {"D", "E"}, {"E", "C"}})),
      "Classes: the class \"C\" derives from itself"}},
    {"TailThatIsReadAfterTheLoop",
     {WithClasses(Dict({{"Z", "A"}, {"A", "B"}, {"B", "A"}})),
      "Classes: the class \"A\" derives from itself"}},
    {"LoopBesideAGoodChain",
     {WithClasses(Dict({{"A", "B"}, {"B", "C"}, {"X", "X"}})),
      "Classes: the class \"X\" derives from itself"}},
};

INSTANTIATE_TEST_SUITE_P(Classes, RejectedRecording, ::testing::ValuesIn(ClassRows), RowName);

/// A chain of classes, "0" deriving from "1" and so on, whose last derives from `end`.
Dictionary ClassChain(int length, std::string_view end) {
  const auto name = [](int number) { return Kept(std::to_string(number)); };
  Record classes;
  for (int i = 1; i < length; ++i) classes.Set(name(i - 1), name(i));
  classes.Set(name(length - 1), end);
  return Dict(classes);
}

TEST(RecordingReader, AcceptsALongClassChain) {
  EXPECT_EQ(ErrorOf(Interpreted(WithClasses(ClassChain(1000, "end")))), "");
}

TEST(RecordingReader, FindsTheLoopAtTheEndOfALongClassChain) {
  EXPECT_EQ(ErrorOf(Interpreted(WithClasses(ClassChain(1000, "998")))),
            "Classes: the class \"998\" derives from itself");
}

const Named<RejectedRow> PlaneRows[] = {
    {"EmptyName", {WithPlanes({{"", Dictionary()}}), "Planes: the name of a plane is empty"}},
    {"EmptyNameBeforeItsRoot",
     {WithPlanes({{"", "root"}}), "Planes: the name of a plane is empty"}},
    {"EmptyNameOfTheSecond",
     {WithPlanes({{"IOService", Dictionary()}, {"", Dictionary()}}),
      "Planes: the name of a plane is empty"}},
    {"Colon", {WithPlanes({{":", Dictionary()}}), "Planes: the name \":\" contains a \":\""}},
    {"NameWithAColon",
     {WithPlanes({{"IOService:/a", Dictionary()}}),
      "Planes: the name \"IOService:/a\" contains a \":\""}},
    {"NameWithAColonAtItsEnd",
     {WithPlanes({{"IOService", Dictionary()}, {"IOPower:", "root"}}),
      "Planes: the name \"IOPower:\" contains a \":\""}},
    {"FaultOfAnEarlierPlane",
     {WithPlanes({{"IOService", "root"}, {"IOPower:", Dictionary()}}),
      "Planes/IOService: not a dictionary"}},
};

INSTANTIATE_TEST_SUITE_P(Planes, RejectedRecording, ::testing::ValuesIn(PlaneRows), RowName);

constexpr char ChildPath[] = "Planes/IOService/Children[0]: ";

RejectedRow RejectedChild(PropertyValue child, std::string_view fault) {
  return {WithChild(child), ChildPath + std::string(fault)};
}

RejectedRow RejectedRoot(PropertyValue root, std::string_view fault) {
  return {WithRoot(root), "Planes/IOService: " + std::string(fault)};
}

const Named<RejectedRow> NodeRows[] = {
    {"RootString", RejectedRoot("root", "not a dictionary")},
    {"RootArray", RejectedRoot(Array(), "not a dictionary")},
    {"RootOfAPlaneOfAnyName",
     {WithPlanes({{"a\tb\u009B/c", "root"}}), "Planes/a b\\233/c: not a dictionary"}},
    {"ChildString", RejectedChild("child", "not a dictionary")},
    {"ChildArray", RejectedChild(Array(), "not a dictionary")},
    {"RootUnknownKey", RejectedRoot(Dict({{"Names", "a"}}), "the key \"Names\" is not known")},
    {"ChildUnknownKey",
     RejectedChild(Dict({{"Name", "a"}, {"Parent", "b"}}), "the key \"Parent\" is not known")},
    {"ChildKeyOfAnotherCase",
     RejectedChild(Dict({{"Name", "a"}, {"class", "b"}}), "the key \"class\" is not known")},
    {"NoName", RejectedChild(Dictionary(), "\"Name\" is missing")},
    {"NoNameButAllElse",
     RejectedChild(Dict({{"Class", "Fan"}, {"ID", "1"}}), "\"Name\" is missing")},
    {"EmptyName", RejectedChild(Dict({{"Name", ""}}), "\"Name\" is empty")},
    {"EmptyNameOfARoot", RejectedRoot(Dict({{"Name", ""}}), "\"Name\" is empty")},
    {"NameOfASlash", RejectedChild(Dict({{"Name", "/"}}), "\"Name\" contains a \"/\"")},
    {"NameWithASlash", RejectedChild(Dict({{"Name", "a/b"}}), "\"Name\" contains a \"/\"")},
    {"NameWithASlashOfARoot", RejectedRoot(Dict({{"Name", "a/"}}), "\"Name\" contains a \"/\"")},
    {"NameInteger", RejectedChild(Dict({{"Name", 5}}), "\"Name\" is not a string")},
    {"NameData", RejectedChild(Dict({{"Name", Bytes("a")}}), "\"Name\" is not a string")},
    {"NameIntegerOfARoot", RejectedRoot(Dict({{"Name", 5}}), "\"Name\" is not a string")},
    {"ClassInteger",
     RejectedChild(Dict({{"Name", "a"}, {"Class", 5}}), "\"Class\" is not a string")},
    {"ClassArray", RejectedRoot(Dict({{"Class", List({"Fan"})}}), "\"Class\" is not a string")},
    {"EmptyClass", RejectedChild(Dict({{"Name", "a"}, {"Class", ""}}), "\"Class\" is empty")},
    {"EmptyClassOfARoot", RejectedRoot(Dict({{"Class", ""}}), "\"Class\" is empty")},
    {"PropertiesArray", RejectedChild(Dict({{"Name", "a"}, {"Properties", Array()}}),
                                      "\"Properties\" is not a dictionary")},
    {"PropertiesString",
     RejectedRoot(Dict({{"Properties", "UID"}}), "\"Properties\" is not a dictionary")},
    {"IdInteger", RejectedChild(Dict({{"Name", "a"}, {"ID", 5}}), "\"ID\" is not a string")},
    {"EmptyId", RejectedChild(Dict({{"Name", "a"}, {"ID", ""}}), "\"ID\" is empty")},
    {"ChildrenDictionary", RejectedChild(Dict({{"Name", "a"}, {"Children", Dictionary()}}),
                                         "\"Children\" is not an array")},
    {"ChildrenString", RejectedRoot(Dict({{"Children", "a"}}), "\"Children\" is not an array")},
    {"LinkInteger", RejectedChild(Dict({{"Link", 5}}), "\"Link\" is not a string")},
    {"LinkData", RejectedChild(Dict({{"Link", Bytes("a")}}), "\"Link\" is not a string")},
    {"LinkWithName",
     RejectedChild(Dict({{"Link", "x"}, {"Name", "a"}}), "a link must not have \"Name\"")},
    {"LinkWithClass",
     RejectedChild(Dict({{"Link", "x"}, {"Class", "Fan"}}), "a link must not have \"Class\"")},
    {"LinkWithProperties", RejectedChild(Dict({{"Link", "x"}, {"Properties", Dictionary()}}),
                                         "a link must not have \"Properties\"")},
    {"LinkWithId",
     RejectedChild(Dict({{"Link", "x"}, {"ID", "y"}}), "a link must not have \"ID\"")},
    {"LinkWithNameAsRoot",
     RejectedRoot(Dict({{"Link", "x"}, {"Name", "a"}}), "a link must not have \"Name\"")},
    {"LinkWithUnknownKey",
     RejectedChild(Dict({{"Link", "x"}, {"Parent", "b"}}), "the key \"Parent\" is not known")},
    {"LinkChildrenDictionary", RejectedChild(Dict({{"Link", "x"}, {"Children", Dictionary()}}),
                                             "\"Children\" is not an array")},
    {"DanglingLink", RejectedChild(Dict({{"Link", "x"}}), "no entry has the ID \"x\"")},
    {"DanglingLinkAsRoot", RejectedRoot(Dict({{"Link", "x"}}), "no entry has the ID \"x\"")},
    {"EmptyLink", RejectedChild(Dict({{"Link", ""}}), "no entry has the ID \"\"")},
    {"LinkToANameThatIsNoId",
     {WithPlanes({{"IODeviceTree", Dict({{"Name", "x"}})}, {"IOService", Dict({{"Link", "x"}})}}),
      "Planes/IOService: no entry has the ID \"x\""}},
    {"LinkToAnIdOfAnotherCase",
     {WithPlanes({{"IODeviceTree", Dict({{"ID", "X"}})}, {"IOService", Dict({{"Link", "x"}})}}),
      "Planes/IOService: no entry has the ID \"x\""}},
    {"IdTwiceInAPlane",
     {WithRoot(
          Dict({{"ID", "x"},
                {"Children", List({Dict({{"Name", "a"}}), Dict({{"Name", "b"}, {"ID", "x"}})})}})),
      "Planes/IOService/Children[1]: the ID \"x\" belongs to an earlier node"}},
    {"IdTwiceAcrossPlanes",
     {WithPlanes({{"IOService", Dict({{"ID", "x"}})}, {"IODeviceTree", Dict({{"ID", "x"}})}}),
      "Planes/IODeviceTree: the ID \"x\" belongs to an earlier node"}},
    {"TwoLinksToOneEntry",
     {WithPlanes({{"IODeviceTree", Dict({{"ID", "x"}})},
                  {"IOService",
                   Dict({{"Children", List({Dict({{"Link", "x"}}), Dict({{"Link", "x"}})})}})}}),
      "Planes/IOService/Children[1]: the entry is already in this plane"}},
    {"LinkBelowALinkToTheSameEntry",
     {WithPlanes(
          {{"IODeviceTree", Dict({{"ID", "x"}})},
           {"IOService", Dict({{"Link", "x"}, {"Children", List({Dict({{"Link", "x"}})})}})}}),
      "Planes/IOService/Children[0]: the entry is already in this plane"}},
    {"LinkBehindTheEntryOfItsPlane",
     {WithRoot(
          Dict({{"Children", List({Dict({{"Name", "a"}, {"ID", "x"}}), Dict({{"Link", "x"}})})}})),
      "Planes/IOService/Children[1]: the entry is already in this plane"}},
    {"LinkBeforeTheEntryOfItsPlane",
     {WithRoot(
          Dict({{"Children", List({Dict({{"Link", "x"}}), Dict({{"Name", "a"}, {"ID", "x"}})})}})),
      "Planes/IOService/Children[0]: the entry is already in this plane"}},
    {"LinkBelowItsEntry",
     {WithRoot(Dict({{"ID", "x"}, {"Children", List({Dict({{"Link", "x"}})})}})),
      "Planes/IOService/Children[0]: the entry is already in this plane"}},
    {"LinkAboveItsEntry",
     {WithRoot(Dict({{"Link", "x"}, {"Children", List({Dict({{"Name", "a"}, {"ID", "x"}})})}})),
      "Planes/IOService: the entry is already in this plane"}},
    {"FaultDeepDown",
     {WithRoot(Dict(
          {{"Children", List({Dict({{"Name", "a"}}),
                              Dict({{"Name", "b"},
                                    {"Children", List({Dict({{"Name", "c"}}), Dict({{"Name", "d"}}),
                                                       Dictionary()})}})})}})),
      "Planes/IOService/Children[1]/Children[2]: \"Name\" is missing"}},
    {"FaultBelowALink",
     {WithPlanes({{"IODeviceTree", Dict({{"ID", "x"}})},
                  {"IOService", Dict({{"Link", "x"}, {"Children", List({Dictionary()})}})}}),
      "Planes/IOService/Children[0]: \"Name\" is missing"}},
    {"FirstOfTwoFaults",
     {WithPlanes({{"IOService", Dict({{"Class", 5}})}, {"IODeviceTree", 5}}),
      "Planes/IOService: \"Class\" is not a string"}},
};

INSTANTIATE_TEST_SUITE_P(Nodes, RejectedRecording, ::testing::ValuesIn(NodeRows), RowName);

/// The whole error of a file of these bytes; empty when they are a recording.
std::string ErrorOfFile(std::string_view bytes) {
  return ErrorOf(ReadRecording(std::string(bytes)));
}

const std::string BinaryRecording(
    "bplist00\xd2\x01\x02\x03\x04\x5f\x10\x11Recording VersionVPlanes\x10\x01\xd1\x05\x06YIOService"
    "\xd0\x08\x0d!(*-7\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x07\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x00"
    "8",
    95);

TEST(RecordingReader, ReadsABinaryPropertyList) {
  ExpectContent(ReadRecording(BinaryRecording), {{{}}, {{"IOService", OnlyRoot(1)}}, {}});
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

TEST(RecordingReader, RefusesWhatIsNotADictionary) {
  EXPECT_EQ(ErrorOfFile("<plist><array/></plist>"), "a recording is a dictionary");
  EXPECT_EQ(ErrorOfFile("<string/>"), "a recording is a dictionary");
}

TEST(RecordingReader, ReadsVersionOneHoweverItIsSpelled) {
  EXPECT_EQ(ErrorOfFile("<dict><key>Recording Version</key><integer>0x1</integer>"
                        "<key>Planes</key><dict/></dict>"),
            "");
}

TEST(RecordingReader, APlaneThatOccursTwiceKeepsItsFirstPositionAndItsLastRoot) {
  const auto reading = ReadRecording(
      "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
      "<key>IOService</key><string>never looked at</string>"
      "<key>IODeviceTree</key><dict><key>Name</key><string>first</string></dict>"
      "<key>IOService</key><dict><key>Name</key><string>last</string></dict>"
      "</dict></dict>");
  ExpectContent(reading, {{{"last", "", {}}, {"first", "", {}}},
                          {{"IOService", OnlyRoot(1)}, {"IODeviceTree", OnlyRoot(2)}},
                          {}});
}

/// A recording whose root is above a chain of `depth` children, the last of which has these
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
  ASSERT_TRUE(reading) << Describe(reading.Error());
  EXPECT_EQ(reading->entries.size(), 255u);
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
    const auto reading = ReadRecording(file);
    const auto list = ReadPropertyList(file).list;
    ASSERT_FALSE(reading || list) << file;
    EXPECT_EQ(reading.Error(), list.Error());
  }
}

TEST(RecordingReader, ReportsWhereAFileIsMalformed) {
  const auto reading = ReadRecording("<plist>\n<dict>\n</plist>");
  ASSERT_FALSE(reading);
  ASSERT_TRUE(reading.Error().location.has_value());
  EXPECT_EQ(reading.Error().location->line, 3u);
}

// The recording owns the file that its entries, names and properties view.
TEST(RecordingReader, ARecordingStaysValidWhenItIsMoved) {
  auto reading = ReadRecording(std::string(BothPlanes));
  ASSERT_TRUE(reading);
  const RecordingContent content = ContentOf(*reading);
  const Recording moved = *std::move(reading);
  EXPECT_EQ(ContentOf(moved), content);
  ASSERT_NE(moved.entries[1].properties.Find("UID"), nullptr);
  EXPECT_EQ(*moved.entries[1].properties.Find("UID"), PropertyValue(0x5A3));
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
