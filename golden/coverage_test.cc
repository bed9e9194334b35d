// The verb `coverage` as a process.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "testing/files.h"
#include "testing/programs/child_process.h"
#include "testing/programs/many_computers.h"
#include "testing/temporary_directory.h"

namespace fernwick {
namespace {

using Json = nlohmann::json;
using testing::ChildOutcome;
using testing::ExpectOutcome;
using testing::OutputTarget;

ChildOutcome Cover(std::vector<std::string> arguments,
                   const std::string& directory = FERNWICK_GOLDEN_DIRECTORY,
                   OutputTarget target = OutputTarget::Captured) {
  arguments.insert(arguments.begin(), {FERNWICK_LAB_PROGRAM, "coverage", "-p"});
  return testing::RunChild(arguments, directory, target);
}

constexpr char NearMisses[] =
    "Zed-42: 5 recordings, 4 of 7 personalities and 6 of 24 list elements matched\n"
    "  Notes at 5:2: names no type and is not read\n"
    "  USBC 1 at 9:3, \"bad.bin\": never matched, tested 8, rejected first by Version 4, Existing "
    "Min Version 3, engineering firmware 1\n"
    "  USBC 2 at 44:3, \"both.bin\": matched 1 of 8, rejected first by Port UUID 4, Version 1, "
    "engineering firmware 1, Port OTP Revision 1\n"
    "    Port Silicon Device ID 17 at 51:5: never matched, tested 6, rejected first by Port "
    "Silicon Device ID 6\n"
    "    Port Silicon Device ID 18 at 52:5: matched 1 of 6, rejected first by Port UUID 4, Port "
    "OTP Revision 1\n"
    "    Port UUID \"A0\" at 58:5: matched 1 of 4, rejected first by Port UUID 3\n"
    "    Port UUID \"A2\" at 59:5: never matched, tested 3, rejected first by Port UUID 3\n"
    "  USBC 3 at 72:3: is a string\n"
    "  USBC 4 at 73:3, \"two.bin\": matched 1 of 7, rejected first by Port Address 4, Version 1, "
    "engineering firmware 1\n"
    "    Port Silicon Device ID 17 at 80:5: never matched, tested 1, rejected first by Port "
    "Silicon Device ID 1\n"
    "    Port Silicon Device ID 18 at 81:5: matched 1 of 1\n"
    "  USBC 5 at 90:3, \"any.bin\": matched 4 of 6, rejected first by Version 1, engineering "
    "firmware 1\n"
    "    Port Silicon Device ID 17 at 97:5: never matched, tested 4, rejected first by Port "
    "Silicon Device ID 4\n"
    "    Port Silicon Device ID 18 at 98:5: matched 4 of 4\n"
    "    Port Address 0 at 104:5: matched 3 of 4, rejected first by Port Address 1\n"
    "    Port Address 1 at 105:5: matched 1 of 1\n"
    "    Port Address 2 at 106:5, 3 at 107:5, 4 at 108:5, 5 at 109:5, 6 at 110:5, 7 at 111:5, 8 at "
    "112:5: never tested\n"
    "  Thunderbolt 1 at 120:3, \"model.bin\": never matched, tested 8, rejected first by Version "
    "4, Device Model ID 3, engineering firmware 1\n"
    "    Port Silicon Device ID 17 at 127:5: never matched, tested 3, rejected first by Port "
    "Silicon Device ID 3\n"
    "    Port Silicon Device ID 18 at 128:5: never matched, tested 3, rejected first by Device "
    "Model ID 3\n"
    "    Device Model Name \"Slate 13\" at 140:5: never matched, tested 3, rejected first by "
    "Device Model ID 3\n"
    "    Device Model Name \"Slate 15\" at 141:5: never tested\n"
    "  LegacyUSBC at 152:2: never matched, tested 8, rejected first by Version 7, Existing Max "
    "Version 1\n"
    "  LegacyThunderbolt 1 at 162:3, \"ridge.bin\": matched 4 of 5, rejected first by Version 1\n"
    "12 recordings: 5 counted, 3 of boards that the payload lacks, 2 bypassed, 2 ended abnormally\n"
    "1 board: 0 without a recording\n"
    "4 of 7 personalities and 6 of 24 list elements matched: 32.2 %\n";

TEST(Coverage, PrintsEveryPersonalityAndEveryElementThatWasTested) {
  for (const auto* jobs : {"-j1", "-j4"}) {
    ExpectOutcome(Cover({"payloads/near-misses", "recordings", jobs}), {"0", NearMisses, ""});
  }
  ExpectOutcome(Cover({"payloads/near-misses", "recordings", "--threshold", "32.2"}),
                {"0", NearMisses, ""});
  ExpectOutcome(Cover({"payloads/near-misses", "recordings", "--threshold", "32.3"}),
                {"1", NearMisses, ""});
}

TEST(Coverage, NamesWhatIsNoPersonality) {
  ExpectOutcome(
      Cover({"payloads/wrong-shapes", "recordings/typical.registry.plist", "--threshold", "100"}),
      {"0",
       "Zed-42: 1 recording, 0 of 0 personalities and 0 of 0 list elements matched\n"
       "  LegacyUSBC at 1:14: is an array, in which nothing matches\n"
       "  USBC at 1:57: is a dictionary, in which nothing matches\n"
       "  Thunderbolt 1 at 1:108: is a string\n"
       "  LegacyThunderbolt at 1:134: is a boolean, in which nothing matches\n"
       "1 recording: 1 counted\n"
       "1 board: 0 without a recording\n"
       "0 of 0 personalities and 0 of 0 list elements matched: 100.0 %\n",
       ""});
}

TEST(Coverage, WithTheVersionBypassMatchesMore) {
  const auto lastLine = [](const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"../examples/payload", "../examples"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    auto text = Cover(arguments).standardOutput;
    text.pop_back();
    return text.substr(text.rfind('\n') + 1);
  };
  EXPECT_EQ(lastLine({}), "4 of 7 personalities and 8 of 13 list elements matched: 60.0 %");
  EXPECT_EQ(lastLine({"--bypassVersion"}),
            "6 of 7 personalities and 9 of 13 list elements matched: 75.0 %");
}

// A recording of the board "Zed-1" with a port at each address, and one of its payload's boards.
class CoverageOfPayload : public ::testing::Test {
 protected:
  CoverageOfPayload() {
    Write("payload/Fernwick/Zed-1/Config.plist",
          "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>\n"
          "<key>Port Address</key><array>\n<integer>1</integer>\n<data>Wg==</data></array>"
          "</dict><key>X\x7F</key><true/></dict>");
    Write("a.registry.plist",
          "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
          "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key>"
          "<data>WmVkLTE=</data></dict></dict><key>IOService</key><dict><key>Children</key><array>"
          "<dict><key>Name</key><string>p</string><key>Class</key><string>QuinceHPMDevice</string>"
          "<key>Properties</key><dict><key>Version</key><integer>1</integer><key>Address</key>"
          "<integer>1</integer></dict></dict></array></dict></dict></dict>");
  }

  std::string Write(const std::string& path, const std::string& text) const {
    return directory_.Write(path, text);
  }

  ChildOutcome Cover(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "payload");
    return fernwick::Cover(arguments, directory_.Path());
  }

  testing::TemporaryDirectory directory_;
};

constexpr char WholeJson[] = R"({
  "boards": [
    {
      "board": "Zed-1",
      "recordings": 2,
      "problem": null,
      "keys": [
        {
          "key": "LegacyUSBC",
          "location": {
            "line": 1,
            "column": 7
          },
          "isType": true,
          "hasShape": true,
          "personalities": [
            {
              "personality": 1,
              "location": {
                "line": 1,
                "column": 28
              },
              "isDictionary": true,
              "firmware": null,
              "tested": 2,
              "matched": 2,
              "rejectedFirst": [],
              "lists": [
                {
                  "key": "Port Address",
                  "location": {
                    "line": 2,
                    "column": 1
                  },
                  "elements": [
                    {
                      "value": 1,
                      "location": {
                        "line": 3,
                        "column": 1
                      },
                      "tested": 2,
                      "matched": 2,
                      "rejectedFirst": []
                    },
                    {
                      "value": {
                        "data": "5a"
                      },
                      "location": {
                        "line": 4,
                        "column": 1
                      },
                      "tested": 0,
                      "matched": 0,
                      "rejectedFirst": []
                    }
                  ]
                }
              ]
            }
          ]
        },
        {
          "key": "X\u007f",
          "location": {
            "line": 4,
            "column": 33
          },
          "isType": false,
          "hasShape": false,
          "personalities": []
        }
      ]
    },
    {
      "board": "Zed-2",
      "recordings": 0,
      "problem": null,
      "keys": [
        {
          "key": "USBC",
          "location": {
            "line": 1,
            "column": 3
          },
          "isType": true,
          "hasShape": true,
          "personalities": [
            {
              "personality": 1,
              "location": {
                "line": 1,
                "column": 12
              },
              "isDictionary": false,
              "firmware": null,
              "tested": 0,
              "matched": 0,
              "rejectedFirst": [],
              "lists": []
            },
            {
              "personality": 2,
              "location": {
                "line": 1,
                "column": 15
              },
              "isDictionary": true,
              "firmware": null,
              "tested": 0,
              "matched": 0,
              "rejectedFirst": [],
              "lists": []
            }
          ]
        }
      ]
    }
  ],
  "recordings": {
    "counted": 2,
    "noConfiguration": 0,
    "unknownBoard": 0,
    "bypassed": 0,
    "endedAbnormally": 0,
    "refused": 0
  },
  "boardsWithoutRecording": 1,
  "personalities": {
    "all": 2,
    "tested": 1,
    "matched": 1
  },
  "elements": {
    "all": 2,
    "tested": 1,
    "matched": 1
  },
  "percent": 50.0
}
)";

TEST_F(CoverageOfPayload, AsJsonHasEveryElementAndEveryCount) {
  Write("payload/Fernwick/Zed-2/Config.plist", "{ USBC = ( x, {} ); }");
  ExpectOutcome(Cover({"a.registry.plist", "a.registry.plist", "--json"}), {"0", WholeJson, ""});
  EXPECT_EQ(Cover({"a.registry.plist", "a.registry.plist", "--json"}),
            Cover({"a.registry.plist", "a.registry.plist", "--format", "json", "-j3"}));
}

TEST_F(CoverageOfPayload, NamesBoardsWithoutARecordingOrAConfiguration) {
  Write("payload/Fernwick/Zed-2/Config.plist", "{ USBC = ( x, {} ); }");
  Write("payload/Fernwick/Zed-3/README", "");
  Write("payload/Fernwick/Zed-4/Config.plist", "()");
  Write("payload/Fernwick/Zed-5\x1B/Config.plist", "{ LegacyUSBC = {}; }");
  ExpectOutcome(Cover({"."}),
                {"0",
                 "Zed-1: 1 recording, 1 of 1 personality and 1 of 2 list elements matched\n"
                 "  LegacyUSBC at 1:28: matched 1 of 1\n"
                 "    Port Address 1 at 3:1: matched 1 of 1\n"
                 "    Port Address <5a> at 4:1: never tested\n"
                 "  X\\177 at 4:33: names no type and is not read\n"
                 "Zed-2: no recording, 0 of 1 personality and 0 of 0 list elements matched\n"
                 "Zed-3: no recording, there is no Config.plist\n"
                 "Zed-4: no recording, its configuration is not a dictionary\n"
                 "Zed-5\\033: no recording, 0 of 1 personality and 0 of 0 list elements matched\n"
                 "1 recording: 1 counted\n"
                 "5 boards: 4 without a recording\n"
                 "1 of 3 personalities and 1 of 2 list elements matched: 40.0 %\n",
                 ""});
}

// A configuration with this list of addresses.
std::string WithAddresses(const std::vector<int>& addresses) {
  std::string list;
  for (const int address : addresses) list += "<integer>" + std::to_string(address) + "</integer>";
  return "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>9</integer>"
         "<key>Port Address</key>\n<array>" +
         list + "</array></dict></dict>";
}

TEST_F(CoverageOfPayload, PrintsElementsWithEqualCountsInOneLine) {
  const auto linesOf = [&](const std::vector<int>& addresses) {
    Write("payload/Fernwick/Zed-1/Config.plist", WithAddresses(addresses));
    const auto text = Cover({"."}).standardOutput;
    const auto first = text.find("    Port Address");
    return text.substr(first, text.find("1 recording:") - first);
  };
  EXPECT_EQ(linesOf({8, 7, 1, 6, 5}),
            "    Port Address 8 at 2:8, 7 at 2:28: never matched, tested 1, rejected first by Port "
            "Address 1\n"
            "    Port Address 1 at 2:48: matched 1 of 1\n"
            "    Port Address 6 at 2:68, 5 at 2:88: never tested\n");
  EXPECT_NE(
      linesOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}).find(" 9 at 2:168 and 2 more: never tested\n"),
      std::string::npos);
}

TEST_F(CoverageOfPayload, PrintsNothingOfAListThatIsNotReached) {
  const std::string result = "  LegacyUSBC at 1:28: never matched, tested 1, rejected first by ";
  const auto find = [&](const std::string& text) {
    const auto found = Cover({"."}).standardOutput;
    EXPECT_NE(found.find(text), std::string::npos) << found;
  };
  Write("payload/Fernwick/Zed-1/Config.plist", WithAddresses({}));
  find(result + "Port Address 1\n1 recording:");
  Write("payload/Fernwick/Zed-1/Config.plist",
        "<dict><key>LegacyUSBC</key><dict><key>Version</key><integer>1</integer>"
        "<key>Port Address</key><array><integer>1</integer></array></dict></dict>");
  find(result + "Version 1\n1 recording:");
}

TEST_F(CoverageOfPayload, CountsRefusedRecordingsAndFailsForNamedOnes) {
  Write("fleet/b.registry.plist", "<dict/>");
  Write("fleet/c.registry.plist", testing::FaultyRecording());
  const std::string malformed =
      "fernwick-lab: fleet/b.registry.plist: \"Recording Version\" is missing\n";
  const auto inDirectory = Cover({"a.registry.plist", "fleet"});
  EXPECT_EQ(inDirectory.status, "0");
  EXPECT_EQ(inDirectory.standardError, malformed);
  EXPECT_NE(
      inDirectory.standardOutput.find("\n3 recordings: 1 counted, 1 ended abnormally, 1 refused\n"),
      std::string::npos)
      << inDirectory.standardOutput;
  const auto named = Cover({"fleet/b.registry.plist", "none", "--threshold", "100"});
  EXPECT_EQ(named.status, "65");
  EXPECT_EQ(named.standardError, malformed + "fernwick-lab: none: No such file or directory\n");
  EXPECT_EQ(Cover({"none", "fleet/b.registry.plist"}).status, "66");
}

TEST_F(CoverageOfPayload, WithAMalformedConfigurationFails) {
  Write("payload/Fernwick/Zed-0/Config.plist", "<dict>");
  const auto outcome = Cover({".", "--threshold", "100"});
  EXPECT_EQ(outcome.status, "65");
  EXPECT_EQ(outcome.standardError.substr(0, 61),
            "fernwick-lab: payload/Fernwick/Zed-0/Config.plist: line 1, co");
  EXPECT_TRUE(outcome.standardOutput.starts_with("Zed-0: no recording, Config.plist: line 1, co"))
      << outcome.standardOutput;
  std::filesystem::remove(directory_.Path() + "/payload/Fernwick/Zed-0/Config.plist");
  std::filesystem::create_directory(directory_.Path() + "/payload/Fernwick/Zed-0/Config.plist");
  ExpectOutcome(Cover({"a.registry.plist"}),
                {"66", Cover({"a.registry.plist"}).standardOutput,
                 "fernwick-lab: payload/Fernwick/Zed-0/Config.plist: Is a directory\n"});
}

// The recording of a computer with a port and this board identifier, in base64.
std::string OfBoard(const std::string& identifier) {
  return "<dict><key>Recording Version</key><integer>1</integer><key>Planes</key><dict>"
         "<key>IODeviceTree</key><dict><key>Properties</key><dict><key>board-id</key><data>" +
         identifier +
         "</data></dict></dict><key>IOService</key><dict><key>Children</key><array><dict>"
         "<key>Name</key><string>p</string><key>Class</key><string>QuinceHPMDevice</string>"
         "</dict></array></dict></dict></dict>";
}

// Computers that name the directory of their board in another way, or another directory.
class CoverageOfDirectories : public ::testing::Test {
 protected:
  CoverageOfDirectories() {
    for (const auto* path : {"", "Fernwick/", "Fernwick/Zed-9/", "Fernwick/Zed-9/in/"}) {
      directory_.Write("payload/" + std::string(path) + "Config.plist", "{ LegacyUSBC = {}; }");
    }
    directory_.Write("payload/Fernwick/Zed-7/README", "");
  }

  // Covers the recording of that computer.
  Json Of(const std::string& identifier) const {
    directory_.Write("a.registry.plist", OfBoard(identifier));
    return Json::parse(fernwick::Cover({"payload", "a.registry.plist", "--json"}, directory_.Path())
                           .standardOutput);
  }

  // What another verb prints of that computer.
  Json Print(const std::string& verb, const std::string& option) const {
    return Json::parse(
        testing::RunChild({FERNWICK_LAB_PROGRAM, verb, "-p", "payload", option, "--format",
                           verb == "survey" ? "ndjson" : "json", "a.registry.plist"},
                          directory_.Path())
            .standardOutput);
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(CoverageOfDirectories, CountsForTheOneThatIsRead) {
  struct Case {
    std::string identifier;
    std::string board;
  };
  const Case cases[] = {
      {"WmVkLTkA", "Zed-9"},          // "Zed-9"
      {"WmVkLTkvAA==", "Zed-9"},      // "Zed-9/"
      {"L1plZC05AA==", "Zed-9"},      // "/Zed-9"
      {"Li9aZWQtOQA=", "Zed-9"},      // "./Zed-9"
      {"WmVkLTkvaW4vLi4A", "Zed-9"},  // "Zed-9/in/.."
      {"AA==", "."},                  // ""
      {"Li8A", "."},                  // "./"
      {"LwA=", "."},                  // "/"
      {"Li4A", ".."},                 // ".."
      {"WmVkLTkvaW4A", "Zed-9/in"},   // "Zed-9/in"
  };
  for (const auto& [identifier, board] : cases) {
    SCOPED_TRACE(identifier);
    const auto found = Of(identifier);
    EXPECT_EQ(found["recordings"]["counted"], 1);
    for (const auto& each : found["boards"]) {
      EXPECT_EQ(each["recordings"], each["board"] == board ? 1 : 0) << each["board"];
    }
    const auto root = directory_.Path() + "/";
    const auto isRead = Print("explain", "--bypassVersion")["configuration"].get<std::string>();
    EXPECT_TRUE(std::filesystem::equivalent(root + isRead,
                                            root + "payload/Fernwick/" + board + "/Config.plist"))
        << isRead;
  }
}

TEST_F(CoverageOfDirectories, ThatLackAConfigurationOrAreMissingAgreesWithTheSurvey) {
  // "Zed-7/" and "Zed-8/".
  EXPECT_EQ(Of("WmVkLTcvAA==")["recordings"]["noConfiguration"], 1);
  EXPECT_EQ(Print("survey", "--bypassVersion")["class"], "no configuration");
  EXPECT_EQ(Of("WmVkLTgvAA==")["recordings"]["unknownBoard"], 1);
  EXPECT_EQ(Print("survey", "--bypassVersion")["class"], "unknown board");
}

TEST_F(CoverageOfDirectories, MergesThatOfShards) {
  directory_.Write("a.registry.plist", OfBoard("AA=="));
  directory_.Write("b.registry.plist", OfBoard("Li4A"));
  const std::vector<std::string> words = {"payload", "a.registry.plist", "b.registry.plist"};
  std::vector<std::string> merge = {FERNWICK_LAB_PROGRAM, "merge", "-p", "payload"};
  for (const auto* shard : {"1/2", "2/2"}) {
    auto arguments = words;
    arguments.insert(arguments.end(), {"--shard", shard});
    const auto name = std::string(shard, 1) + ".ndjson";
    directory_.Write(name, fernwick::Cover(arguments, directory_.Path()).standardOutput);
    merge.push_back(name);
  }
  ExpectOutcome(testing::RunChild(merge, directory_.Path()),
                fernwick::Cover(words, directory_.Path()));
}

TEST(Coverage, NeedsAPayloadThatTheToolAccepts) {
  ExpectOutcome(Cover({"/nowhere", "recordings"}),
                {"66", "", "fernwick-lab: /nowhere/Fernwick: there is no such directory\n"});
  const testing::TemporaryDirectory directory;
  directory.Write("\xFF/Fernwick/README", "");
  ExpectOutcome(
      Cover({"\xFF", "."}, directory.Path()),
      {"66", "", "fernwick-lab: \\377: the tool accepts no payload whose path is not UTF-8\n"});
  EXPECT_EQ(Cover({"payloads/near-misses"}).status, "64");
  EXPECT_EQ(Cover({"payloads/near-misses", "recordings", "--threshold", "101"}).status, "64");
}

TEST(Coverage, OfNothingIsAnError) {
  ExpectOutcome(Cover({"../examples/payload", "cases"}),
                {"66", "", "fernwick-lab: there is no recording in what is selected\n"});
  const testing::TemporaryDirectory directory;
  directory.Write("Fernwick", "a file");
  ExpectOutcome(Cover({".", "."}, directory.Path()),
                {"66", "", "fernwick-lab: ./Fernwick: there is no such directory\n"});
}

TEST(Coverage, WhoseOutputIsLostFails) {
  for (const char* format : {"text", "json"}) {
    ExpectOutcome(Cover({"payloads/near-misses", "recordings", "--format", format},
                        FERNWICK_GOLDEN_DIRECTORY, OutputTarget::FullDisk),
                  {"74", "",
                   "fernwick-lab: standard output could not be written: No space left on "
                   "device\n"});
  }
}

}  // namespace
}  // namespace fernwick
