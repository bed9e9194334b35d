// What lint says of a configuration, whole, without the locations: those are compared by the pairs.

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "lab/lint/linted.h"
#include "testing/dictionaries.h"
#include "testing/named_rows.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;
using testing::Named;
using testing::With;
using testing::Without;

const Record Port = {{"Version", 200},
                     {"Port Silicon Vendor ID", 1},
                     {"Port Silicon Device ID", 2},
                     {"Port Silicon Revision", 3},
                     {"Firmware", "a.bin"},
                     {"Priority", 20}};

const Record Ridge = {{"Version", 42},
                      {"Ridge Silicon Vendor ID", 4},
                      {"Ridge Silicon Device ID", 5},
                      {"Ridge Silicon Revision", 6},
                      {"Firmware", "a.bin"},
                      {"Priority", 20}};

Dictionary Usbc(const Record& entries) {
  return Dict({{"USBC", List({Dict(With(Port, entries))})}});
}

Dictionary Thunderbolt(const Record& entries) {
  return Dict({{"Thunderbolt", List({Dict(With(With(Port, Ridge), entries))})}});
}

Dictionary LegacyThunderbolt(const Record& entries) {
  return Dict({{"LegacyThunderbolt", List({Dict(With(Ridge, entries))})}});
}

Dictionary LegacyUsbc(const Record& entries) {
  return Dict({{"LegacyUSBC",
                Dict(With({{"Version", 200}, {"Firmware", "a.bin"}, {"Priority", 20}}, entries))}});
}

Dictionary AllTypes() {
  Record types(Usbc({{"Port Address", 2}}));
  for (const auto& other : {Thunderbolt({{"RID", 2}, {"Firmware", "c.bin"}}),
                            LegacyThunderbolt({{"RID", 1}, {"Firmware", "c.bin"}}),
                            LegacyUsbc({{"Port Address", 1}})}) {
    types.Merge(other);
  }
  return Dict(types);
}

// Lines "SEVERITY: MESSAGE [ID]" in the order of the locations.
std::string LintOutput(const PropertyValue& configuration) {
  std::string output;
  const testing::TemporaryDirectory directory;
  for (const auto& row :
       LintedRows(directory.Path(), configuration, {"a.bin", "c.bin", "images/b.bin"})) {
    output.append(NameOf(row.rule->severity)).append(": ").append(row.message);
    output.append(" [").append(row.rule->id).append("]\n");
  }
  return output;
}

struct Row {
  PropertyValue configuration;
  std::string output;
};

class LintOutputOfConfiguration : public ::testing::TestWithParam<Named<Row>> {};

TEST_P(LintOutputOfConfiguration, Whole) {
  EXPECT_EQ(LintOutput(GetParam().row.configuration), GetParam().row.output);
}

const double NaN = std::nan("");

const Named<Row> Shapes[] = {
    {"Empty", {Dict({}), ""}},
    {"Text", {"x", "error: the configuration is \"x\", not a dictionary [not-a-dictionary]\n"}},
    {"AllTypes", {AllTypes(), ""}},
    {"OtherTypes",
     {Dict({{"usbc", 1}, {"Thunderbolts", 1}, {"Legacy Thunderbolt", 1}, {"USB", 1}}),
      "error: \"usbc\" is not a type, so its contents match nothing; \"USBC\" may be meant "
      "[misspelt-type]\n"
      "error: \"Thunderbolts\" is not a type, so its contents match nothing; \"Thunderbolt\" may "
      "be meant [misspelt-type]\n"
      "error: \"Legacy Thunderbolt\" is not a type, so its contents match nothing; "
      "\"LegacyThunderbolt\" may be meant [misspelt-type]\n"
      "warning: \"USB\" is not a type, so its contents match nothing [unknown-type]\n"}},
    {"WrongShapes",
     {Dict({{"LegacyUSBC", List({})}, {"USBC", Dict({})}, {"Thunderbolt", 7}}),
      "error: \"LegacyUSBC\" is an array, not a single personality, so it matches nothing "
      "[wrong-type-shape]\n"
      "error: \"USBC\" is a dictionary, not an array of personalities, so it matches nothing "
      "[wrong-type-shape]\n"
      "error: \"Thunderbolt\" is 7, not an array of personalities, so it matches nothing "
      "[wrong-type-shape]\n"}},
    {"NoPersonalities",
     {Dict({{"USBC", List({testing::Bytes("x"), List({}), "x"})}, {"Thunderbolt", List({})}}),
      "error: data is written where a personality was expected [personality-not-a-dictionary]\n"
      "error: an array is written where a personality was expected [personality-not-a-dictionary]\n"
      "error: \"x\" is written where a personality was expected [personality-not-a-dictionary]\n"
      "note: \"Thunderbolt\" has no personality [empty-type]\n"}},
    {"EmptyPersonality",
     {Dict({{"LegacyUSBC", Dict({})}}),
      "error: without \"Version\" a personality of \"LegacyUSBC\" never matches unless the version "
      "check is bypassed [missing-key]\n"
      "error: a match of this personality, with no \"Firmware\", ends the run without a plan "
      "[no-firmware]\n"
      "warning: without \"Priority\" a match of this personality drives the plan's priority to 0 "
      "[no-priority]\n"}},
};

const Named<Row> Keys[] = {
    {"Unread",
     {Usbc({{"Author", 1}, {"Personality Type", "x"}, {"firmware_mode", 1}}),
      "note: \"Author\" is not read, so it has no effect [unread-key]\n"
      "note: \"Personality Type\" is replaced by the type of the personality "
      "[reserved-key]\n"
      "error: \"firmware_mode\" is not read; \"Firmware Mode\" may be meant [misspelt-key]\n"}},
    {"ThatTheTypeDoesNotRead",
     {LegacyUsbc({{"RID", "x"}}),
      "warning: \"RID\" constrains nothing in a personality of \"LegacyUSBC\", whose check does "
      "not read it [key-not-read-by-type]\n"}},
    {"FirmwareModeOfALegacyControllerIsForThePlan",
     {LegacyThunderbolt({{"Firmware Mode", 1}}), ""}},
    {"MissingOfPortAndRidge",
     {Dict({{"Thunderbolt", List({Dict(Without(Without(With(Port, Ridge), "Port Silicon Revision"),
                                               "Ridge Silicon Vendor ID"))})}}),
      "error: without \"Port Silicon Revision\" a personality of \"Thunderbolt\" never matches "
      "[missing-key]\n"
      "error: without \"Ridge Silicon Vendor ID\" a personality of \"Thunderbolt\" never matches "
      "[missing-key]\n"}},
};

const Named<Row> Values[] = {
    {"OfEveryKindThatMatches",
     {Thunderbolt({{"RID", 7.0},
                   {"Port Address", List({0.0})},
                   {"Port UUID", List({"5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00",
                                       "5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A01"})},
                   {"Ridge UID", 7},
                   {"Device Model Name", List({"Slate 13"})},
                   {"Firmware Mode", List({false, true})}}),
      ""}},
    {"OfAWrongKind",
     {Thunderbolt({{"RID", "1"},
                   {"MinBoardRevision", "1"},
                   {"Device Model Name", 7},
                   {"Port UUID", 7},
                   {"Ridge UID", testing::Bytes("x")}}),
      "error: \"RID\" is \"1\"; only a number or an array of numbers can match [wrong-kind]\n"
      "error: \"MinBoardRevision\" is \"1\"; only a number can match [wrong-kind]\n"
      "error: \"Device Model Name\" is 7; only a string or an array of strings can match "
      "[wrong-kind]\n"
      "error: \"Port UUID\" is 7; only an array of strings can match [wrong-kind]\n"
      "error: \"Ridge UID\" is data; only a number or an array of numbers can match "
      "[wrong-kind]\n"}},
    {"ListsOfOneValue",
     {Usbc({{"Existing Min Version", List({})}, {"MaxBoardRevision", List({3})}}),
      "error: \"Existing Min Version\" is an array; only a number can match [list-not-allowed]\n"
      "error: \"MaxBoardRevision\" is an array; only a number can match [list-not-allowed]\n"}},
    {"SingleUuid",
     {Usbc({{"Port UUID", "x"}}),
      "error: \"Port UUID\" is \"x\"; only an array of strings can match [single-port-uuid]\n"}},
    {"OutOfReach",
     {Thunderbolt({{"RID", 16},
                   {"Port Address", 56},
                   {"Firmware Mode", 2},
                   {"Device Model ID", 0.5},
                   {"Ridge UID", NaN},
                   {"Ridge Silicon Revision", -2147483649}}),
      "error: \"Ridge Silicon Revision\" is -2147483649, which can never match: controllers have "
      "whole numbers from -2147483648 to 2147483647 there [unreachable-number]\n"
      "warning: 16 in \"RID\" matches only a port with an RID of its own; that of a Thunderbolt "
      "controller is 0 to 15 [doubtful-rid]\n"
      "error: \"Port Address\" is 56, which can never match: controllers have 0 alone there "
      "[unreachable-number]\n"
      "error: \"Firmware Mode\" is 2, which can never match: controllers have whole numbers from 0 "
      "to 1 there [unreachable-number]\n"
      "error: \"Device Model ID\" is 0.5, which can never match: controllers have whole numbers "
      "from -2147483648 to 2147483647 there [unreachable-number]\n"
      "error: \"Ridge UID\" is nan, which can never match: NaN equals nothing "
      "[unreachable-number]\n"}},
    {"RidOfALegacyController",
     {LegacyThunderbolt({{"RID", -1}}),
      "error: \"RID\" is -1, which can never match: controllers have whole numbers from 0 to 15 "
      "there [rid-out-of-range]\n"}},
    {"RidsOfPorts",
     {Thunderbolt({{"RID", List({0, -1, 15, 16, "1", 15.5})}}),
      "warning: -1 in \"RID\" matches only a port with an RID of its own; that of a Thunderbolt "
      "controller is 0 to 15 [doubtful-rid]\n"
      "warning: 16 in \"RID\" matches only a port with an RID of its own; that of a Thunderbolt "
      "controller is 0 to 15 [doubtful-rid]\n"
      "warning: \"1\" in \"RID\" can never match: it is not a number [dead-list-element]\n"
      "warning: 15.5 in \"RID\" can never match: controllers have whole numbers from -2147483648 "
      "to 2147483647 there [dead-list-element]\n"}},
    {"RidOfAPortOutOfTheQuestion", {Usbc({{"RID", 16}}), ""}},
    {"Lists",
     {LegacyThunderbolt({{"RID", List({0, 16, "1", List({2})})},
                         {"Ridge UID", List({})},
                         {"Ridge Silicon Revision", List({"x", 1.5})}}),
      "error: no element of \"Ridge Silicon Revision\" can match; of the first, \"x\": it is not a "
      "number [dead-list]\n"
      "warning: 16 in \"RID\" can never match: controllers have whole numbers from 0 to 15 there "
      "[dead-list-element]\n"
      "warning: \"1\" in \"RID\" can never match: it is not a number [dead-list-element]\n"
      "warning: an array in \"RID\" can never match: it is not a number [dead-list-element]\n"
      "error: \"Ridge UID\" is an empty array, which matches nothing [empty-list]\n"}},
    {"TextLists",
     {Usbc({{"Port UUID", List({"5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00", 1})}}),
      "warning: 1 in \"Port UUID\" can never match: it is not a string [dead-list-element]\n"}},
    {"NotANumber",
     {Usbc({{"Existing Min Version", NaN}, {"MinBoardRevision", NaN}}),
      "warning: \"Existing Min Version\" is NaN, which excludes nothing [nan-bound]\n"
      "warning: \"MinBoardRevision\" is NaN, which excludes nothing [nan-bound]\n"}},
};

const std::string NoVersion =
    "error: no version that can be installed is in the window of this personality "
    "[empty-version-window]\n";

std::string JustMissed(const std::string& maximum, const std::string& reported) {
  return "warning: \"Existing Max Version\" " + maximum +
         " excludes the version that it names, which a Thunderbolt controller reports as " +
         reported + " [maximum-just-missed]\n";
}

const Named<Row> Versions[] = {
    {"BoundsCrossed",
     {Usbc({{"Existing Min Version", 7}, {"Existing Max Version", 6.5}}),
      "error: \"Existing Max Version\" 6.5 is below \"Existing Min Version\" 7 "
      "[version-bounds-crossed]\n"}},
    {"NotAboveMinimum",
     {LegacyThunderbolt({{"Existing Min Version", 42.0}}),
      "error: \"Version\" 42 is not above \"Existing Min Version\" 42 "
      "[version-not-above-minimum]\n"}},
    // 42.00 is stored as 42.000000001, which is above 42.
    {"BelowTheFirstHundredth", {LegacyThunderbolt({{"Existing Min Version", 41.635}}), NoVersion}},
    {"AtTheLastHundredth", {LegacyThunderbolt({{"Existing Min Version", 41.63}}), ""}},
    {"Zero", {LegacyThunderbolt({{"Version", 0}}), NoVersion}},
    {"ZeroForPorts", {Usbc({{"Version", 0}}), NoVersion}},
    {"OneForPorts", {Usbc({{"Version", 1}}), ""}},
    {"NotANumber", {Usbc({{"Version", NaN}}), NoVersion}},
    {"BetweenWholeNumbersOfPorts",
     {Usbc({{"Existing Min Version", 5.7}, {"Existing Max Version", 5.9}}), NoVersion}},
    {"AWholeNumberOfPorts", {Usbc({{"Existing Min Version", 5}, {"Existing Max Version", 5}}), ""}},
    {"NegativeMaximum", {Usbc({{"Existing Max Version", -1}}), NoVersion}},
    {"BeyondEveryVersion",
     {Usbc({{"Version", 1e9}, {"Existing Min Version", 166666666}}),
      NoVersion + "error: \"Version\" is 1e+09, but a controller reports no more than eight "
                  "digits: the update never settles [unreportable-version]\n"}},
    {"TheGreatestThatIsStored", {Usbc({{"Version", 99999999}}), ""}},
    {"BeyondTheGreatestThatIsStored",
     {Usbc({{"Version", 100000000}}),
      "error: \"Version\" is 100000000, but a controller reports no more than eight digits: the "
      "update never settles [unreportable-version]\n"}},
    {"AFractionOfTheGreatestThatIsStored",
     {LegacyUsbc({{"Port Address", 0x38}, {"Version", 99999999.5}}),
      "error: \"Version\" is 99999999.5, but a controller reports whole numbers: the update never "
      "settles [unreportable-version]\n"}},
    {"BoundsWithoutAVersion",
     {Dict({{"LegacyUSBC",
             Dict({{"Existing Max Version", -1}, {"Firmware", "a.bin"}, {"Priority", 1}})}}),
      "error: without \"Version\" a personality of \"LegacyUSBC\" never matches unless the version "
      "check is bypassed [missing-key]\n" +
          NoVersion}},
    {"MaximumJustMissed",
     {LegacyThunderbolt({{"Existing Max Version", 41.05}}),
      JustMissed("41.05", "41.050000000999994")}},
    {"WholeMaximumJustMissed",
     {Thunderbolt({{"Existing Max Version", 41}}), JustMissed("41", "41.000000001")}},
    {"FractionOfAPort",
     {Usbc({{"Existing Max Version", 41.05}}), JustMissed("41.05", "41.050000000999994")}},
    {"WholeMaximumOfAPort", {Usbc({{"Existing Max Version", 41}}), ""}},
    {"MaximumBetweenHundredths", {LegacyThunderbolt({{"Existing Max Version", 41.055}}), ""}},
    {"MaximumThatNamesNoVersion", {LegacyThunderbolt({{"Existing Max Version", 41.64}}), ""}},
    {"MaximumOfTheImageItself", {LegacyThunderbolt({{"Existing Max Version", 42}}), ""}},
    {"MaximumThatTheMinimumLeavesEmpty",
     {LegacyThunderbolt({{"Existing Min Version", 41.05}, {"Existing Max Version", 41.05}}),
      NoVersion}},
};

const Named<Row> BoardRevisions[] = {
    {"All", {Usbc({{"MinBoardRevision", 0}, {"MaxBoardRevision", 255}}), ""}},
    {"One", {Usbc({{"MinBoardRevision", 3}, {"MaxBoardRevision", 3}}), ""}},
    {"NoneBetween",
     {Usbc({{"MinBoardRevision", 3.2}, {"MaxBoardRevision", 3.8}}),
      "error: no board revision, 0 to 255, is within the bounds of this personality "
      "[empty-board-revision-range]\n"}},
    {"NoneAbove",
     {Usbc({{"MinBoardRevision", 256}}),
      "error: no board revision, 0 to 255, is within the bounds of this personality "
      "[empty-board-revision-range]\n"}},
    {"ExcludingNothing",
     {Usbc({{"MinBoardRevision", -1}, {"MaxBoardRevision", 1000}}),
      "warning: \"MinBoardRevision\" is -1, but board revisions are 0 to 255, so it excludes "
      "nothing [board-revision-out-of-range]\n"
      "warning: \"MaxBoardRevision\" is 1000, but board revisions are 0 to 255, so it excludes "
      "nothing [board-revision-out-of-range]\n"}},
};

std::string NoFirmware(const std::string& what) {
  return "error: a match of this personality, with " + what +
         ", ends the run without a plan [no-firmware]\n";
}

const Named<Row> Images[] = {
    {"EmptyName", {Usbc({{"Firmware", ""}}), NoFirmware("an empty \"Firmware\"")}},
    {"NotText", {Usbc({{"Firmware", 7}}), NoFirmware("7 for a \"Firmware\"")}},
    {"Missing",
     {Usbc({{"Firmware", "A.bin"}}),
      "error: \"A.bin\" is not in the board directory [missing-image]\n"}},
    {"BelowAFile",
     {Usbc({{"Firmware", "a.bin/x"}}),
      "warning: \"a.bin/x\" is a path, not the name of a file in the board directory "
      "[image-not-a-plain-name]\n"
      "error: \"a.bin/x\" is not in the board directory [missing-image]\n"}},
    {"Directory",
     {Usbc({{"Firmware", "images"}}), "error: \"images\" is not a file [image-not-a-file]\n"}},
    {"TheBoardDirectory",
     {Usbc({{"Firmware", "."}}), "error: \".\" is not a file [image-not-a-file]\n"}},
    {"Path",
     {Usbc({{"Firmware", "images/b.bin"}}),
      "warning: \"images/b.bin\" is a path, not the name of a file in the board directory "
      "[image-not-a-plain-name]\n"}},
    {"AbsolutePath",
     {Usbc({{"Firmware", "//a.bin"}}),
      "warning: \"//a.bin\" is a path, not the name of a file in the board directory "
      "[image-not-a-plain-name]\n"}},
    {"OutAndBackIn",
     {Usbc({{"Firmware", "../Zed-42/a.bin"}}),
      "error: \"../Zed-42/a.bin\" is outside the board directory "
      "[image-outside-board-directory]\n"}},
    {"InAndOut",
     {Usbc({{"Firmware", "images/../../PortFlash.efi"}}),
      "error: \"images/../../PortFlash.efi\" is outside the board directory "
      "[image-outside-board-directory]\n"}},
    {"InAndBack",
     {Usbc({{"Firmware", "images/../a.bin"}}),
      "warning: \"images/../a.bin\" is a path, not the name of a file in the board directory "
      "[image-not-a-plain-name]\n"}},
};

std::string Altered(const std::string& written, const std::string& read) {
  return "warning: \"Priority\" is " + written + ", which counts as " + read +
         " [altered-priority]\n";
}

const Named<Row> Priorities[] = {
    {"Zero", {Usbc({{"Priority", 0}}), ""}},
    {"WholeReal", {Usbc({{"Priority", 20.0}}), ""}},
    {"Boolean",
     {Usbc({{"Priority", true}}),
      "warning: \"Priority\" is a boolean, which counts as 1 [boolean-for-number]\n"}},
    {"Fraction", {Usbc({{"Priority", 20.5}}), Altered("20.5", "20")}},
    {"Negative", {Usbc({{"Priority", -1}}), Altered("-1", "4294967295")}},
    {"Beyond32Bits", {Usbc({{"Priority", 0x100000005}}), Altered("4294967301", "5")}},
    {"Text", {Usbc({{"Priority", " 30"}}), Altered("\" 30\"", "30")}},
    {"Word", {Usbc({{"Priority", "high"}}), Altered("\"high\"", "0")}},
    {"List", {Usbc({{"Priority", List({1})}}), Altered("an array", "0")}},
    {"GreatestUnsigned",
     {Usbc({{"Priority", 0xFFFFFFFFu}}),
      "warning: \"Priority\" 4294967295 never lowers the plan's, which begins at 2147483647 "
      "[priority-without-effect]\n"}},
};

std::string AlteredMode(const std::string& written, const std::string& read) {
  return "warning: \"Firmware Mode\" is " + written + ", which the plan reads as " + read +
         " [altered-firmware-mode]\n";
}

const Named<Row> FirmwareModes[] = {
    {"Zero", {LegacyThunderbolt({{"Firmware Mode", 0}}), ""}},
    {"True", {LegacyThunderbolt({{"Firmware Mode", true}}), ""}},
    {"Another", {LegacyThunderbolt({{"Firmware Mode", 2.0}}), ""}},
    {"Fraction", {LegacyThunderbolt({{"Firmware Mode", 0.5}}), AlteredMode("0.5", "0")}},
    {"Text", {LegacyThunderbolt({{"Firmware Mode", "1"}}), AlteredMode("\"1\"", "1")}},
    {"List", {LegacyThunderbolt({{"Firmware Mode", List({1})}}), AlteredMode("an array", "0")}},
    {"ListThatTheCheckReads", {Thunderbolt({{"Firmware Mode", List({1})}}), ""}},
};

// Two personalities of "USBC" for different RIDs.
Dictionary Pair(const Record& first, const Record& second) {
  return Dict({{"USBC", List({Dict(With(With(Port, {{"RID", 1}}), first)),
                              Dict(With(With(Port, {{"RID", 2}}), second))})}});
}

Record Setting(const PropertyValue& value) {
  return {{"SetNVRAM", Dict({{"staged", value}})}};
}

const Record Clearing = {{"ClearNVRAM", List({"staged"})}};

const std::string Conflict =
    "warning: \"staged\" is set to another value at 23:5, by a personality that can match on the "
    "same computer [nvram-conflict]\n";

const std::string SetAt23 =
    "warning: \"staged\" is cleared here and set at 23:5 [nvram-set-and-cleared]\n";

const Named<Row> NvramSettings[] = {
    {"WrongShapes",
     {Usbc({{"SetNVRAM", "x"}, {"ClearNVRAM", Dict({})}}),
      "error: \"SetNVRAM\" is \"x\", not a dictionary, so the plan leaves it out "
      "[nvram-wrong-shape]\n"
      "error: \"ClearNVRAM\" is a dictionary, not an array, so the plan leaves it out "
      "[nvram-wrong-shape]\n"}},
    {"NoNames",
     {Usbc({{"ClearNVRAM", List({"a", 1, List({})})}}),
      "warning: 1 in \"ClearNVRAM\" is not the name of a variable [cleared-name-not-text]\n"
      "warning: an array in \"ClearNVRAM\" is not the name of a variable "
      "[cleared-name-not-text]\n"}},
    {"SameValue", {Pair(Setting("1"), Setting("1")), ""}},
    {"DifferentValues", {Pair(Setting("1"), Setting("2")), Conflict}},
    {"DifferentKinds", {Pair(Setting(1), Setting(1.0)), Conflict}},
    {"OtherBoardRevisions",
     {Pair(With(Setting("1"), {{"MaxBoardRevision", 2}}),
           With(Setting("2"), {{"MinBoardRevision", 3}})),
      ""}},
    {"OverlappingBoardRevisions",
     {Pair(With(Setting("1"), {{"MaxBoardRevision", 3}}),
           With(Setting("2"), {{"MinBoardRevision", 3}})),
      Conflict}},
    {"OfOneThatNeverMatches",
     {Pair(With(Setting("1"), {{"Port OTP Revision", List({})}}), Setting("2")),
      "error: \"Port OTP Revision\" is an empty array, which matches nothing [empty-list]\n"}},
    {"ClearedByAnother", {Pair(Setting("1"), Clearing), SetAt23}},
    {"ClearedByAnotherBefore",
     {Pair(Clearing, Setting("1")),
      "warning: \"staged\" is cleared here and set at 43:5 [nvram-set-and-cleared]\n"}},
    {"ClearedByItself", {Pair(With(Setting("1"), Clearing), {}), SetAt23}},
    {"ClearedOnOtherBoardRevisions",
     {Pair(With(Setting("1"), {{"MaxBoardRevision", 2}}),
           With(Clearing, {{"MinBoardRevision", 3}})),
      ""}},
    {"ClearedTwice", {Pair(Clearing, Clearing), ""}},
};

// Two personalities of "USBC", the first at 6:3.
Dictionary Two(const Record& first, const Record& second) {
  return Dict({{"USBC", List({Dict(With(Port, first)), Dict(With(Port, second))})}});
}

const std::string Shadowed =
    "warning: the personality at 6:3 accepts everything that this one accepts, which is never "
    "reached [shadowed-personality]\n";

const Named<Row> Shadows[] = {
    {"Same", {Two({}, {}), Shadowed}},
    {"NarrowerSet", {Two({{"RID", List({1, 2})}}, {{"RID", 2.0}}), Shadowed}},
    {"WiderSet", {Two({{"RID", 2}}, {{"RID", List({1, 2})}}), ""}},
    {"NoSet", {Two({{"RID", 2}}, {}), ""}},
    {"OlderImage", {Two({}, {{"Version", 199}, {"Firmware", "c.bin"}}), Shadowed}},
    {"NewerImage", {Two({}, {{"Version", 201}, {"Firmware", "c.bin"}}), ""}},
    {"NarrowerWindow",
     {Two({{"Existing Min Version", 5}, {"Existing Max Version", 9}},
          {{"Existing Min Version", 5}, {"Existing Max Version", 8}}),
      Shadowed}},
    {"LowerMinimum", {Two({{"Existing Min Version", 5}}, {{"Existing Min Version", 4}}), ""}},
    {"HigherMaximum", {Two({{"Existing Max Version", 8}}, {{"Existing Max Version", 9}}), ""}},
    {"LowerFirstBoardRevision", {Two({{"MinBoardRevision", 4}}, {{"MinBoardRevision", 3}}), ""}},
    {"NoMaximum", {Two({{"Existing Max Version", 300}}, {}), ""}},
    {"BoundThatIsNotANumber",
     {Two({{"Existing Min Version", 0}}, {{"Existing Min Version", NaN}}),
      "warning: \"Existing Min Version\" is NaN, which excludes nothing [nan-bound]\n"}},
    {"FewerBoardRevisions",
     {Two({{"MinBoardRevision", 2}}, {{"MinBoardRevision", 3}, {"MaxBoardRevision", 4}}),
      Shadowed}},
    {"MoreBoardRevisions", {Two({{"MaxBoardRevision", 4}}, {{"MaxBoardRevision", 5}}), ""}},
    {"ByOneThatNeverMatches",
     {Two({{"RID", List({})}}, {}),
      "error: \"RID\" is an empty array, which matches nothing [empty-list]\n"}},
};

constexpr auto Name = testing::RowName;
INSTANTIATE_TEST_SUITE_P(Shape, LintOutputOfConfiguration, ::testing::ValuesIn(Shapes), Name);
INSTANTIATE_TEST_SUITE_P(Key, LintOutputOfConfiguration, ::testing::ValuesIn(Keys), Name);
INSTANTIATE_TEST_SUITE_P(Value, LintOutputOfConfiguration, ::testing::ValuesIn(Values), Name);
INSTANTIATE_TEST_SUITE_P(Version, LintOutputOfConfiguration, ::testing::ValuesIn(Versions), Name);
INSTANTIATE_TEST_SUITE_P(Revision, LintOutputOfConfiguration, ::testing::ValuesIn(BoardRevisions),
                         Name);
INSTANTIATE_TEST_SUITE_P(Image, LintOutputOfConfiguration, ::testing::ValuesIn(Images), Name);
INSTANTIATE_TEST_SUITE_P(Priority, LintOutputOfConfiguration, ::testing::ValuesIn(Priorities),
                         Name);
INSTANTIATE_TEST_SUITE_P(Mode, LintOutputOfConfiguration, ::testing::ValuesIn(FirmwareModes), Name);
INSTANTIATE_TEST_SUITE_P(Nvram, LintOutputOfConfiguration, ::testing::ValuesIn(NvramSettings),
                         Name);
INSTANTIATE_TEST_SUITE_P(Shadow, LintOutputOfConfiguration, ::testing::ValuesIn(Shadows), Name);

}  // namespace
}  // namespace fernwick::lab
