#include "lab/survey/diff/payload_diff.h"

#include <gtest/gtest.h>

#include "testing/computer.h"
#include "testing/dictionaries.h"
#include "testing/temporary_directory.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;
using testing::With;
using testing::Without;

using Texts = std::vector<std::string>;

const Record Personality = {{"Version", 9},
                            {"Firmware", "a.bin"},
                            {"Priority", 20},
                            {"Port Silicon Vendor ID", 1},
                            {"Port Silicon Device ID", 2},
                            {"Port Silicon Revision", 3}};

Record Usbc(const Record& personality) {
  return {{"USBC", List({Dict(personality)})}};
}

// The changes between two configurations of a computer with one port, in JSON.
class PayloadDiff : public ::testing::Test {
 protected:
  PayloadDiff() {
    computer_.SetBoard("Zed-42", 3);
    computer_.AddPort(
        "hpm0",
        {{"Vendor ID", 1}, {"Device ID", 2}, {"Revision ID", 3}, {"Version", 5}, {"Address", 56}});
  }

  static ToolRun RunOf(const testing::Computer& computer, const Record& configuration) {
    const testing::TemporaryDirectory payload;
    payload.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(Dict(configuration)));
    return RunTool(computer.Recorded(), ToolOptions(payload.Path(), false));
  }

  ToolRun RunWith(const Record& configuration) { return RunOf(computer_, configuration); }

  std::string Changes(const Record& before, const Record& after) {
    const auto changes = FindChanges(RunWith(before), RunWith(after));
    return PrintJsonRow(ToJson(DiffRow{.file = "f", .changes = changes})["changes"]);
  }

  std::string ChangesOf(std::string_view key, PropertyValue before, PropertyValue after) {
    return Changes(Usbc(With(Personality, {{key, before}})),
                   Usbc(With(Personality, {{key, after}})));
  }

  testing::Computer computer_;
};

const std::string Port = "\"USBC, controller 1 (RID -, port 56, version 5)\"";

std::string PlanChange(const std::string& kind, const std::string& before,
                       const std::string& after) {
  return "[{\"kind\":\"" + kind + "\",\"match\":null,\"before\":" + before + ",\"after\":" + after +
         ",\"reasons\":[]}]\n";
}

std::string MatchChange(const std::string& kind, const std::string& before,
                        const std::string& after) {
  return "[{\"kind\":\"" + kind + "\",\"match\":" + Port + ",\"before\":" + before +
         ",\"after\":" + after + ",\"reasons\":[]}]\n";
}

TEST_F(PayloadDiff, OfTheSamePayloadIsNone) {
  EXPECT_EQ(Changes(Usbc(Personality), Usbc(Personality)), "[]\n");
  EXPECT_EQ(Changes({}, {}), "[]\n");
}

TEST_F(PayloadDiff, FindsAnImage) {
  EXPECT_EQ(ChangesOf("Firmware", "a.bin", "b.bin"),
            MatchChange("image", "\"a.bin\"", "\"b.bin\""));
}

TEST_F(PayloadDiff, FindsAVersion) {
  EXPECT_EQ(ChangesOf("Version", 9, 10), MatchChange("version", "9", "10"));
}

TEST_F(PayloadDiff, FindsAPriority) {
  EXPECT_EQ(ChangesOf("Priority", 20, 30), PlanChange("priority", "20", "30"));
}

TEST_F(PayloadDiff, FindsVariablesToSet) {
  EXPECT_EQ(ChangesOf("SetNVRAM", Dict({{"a", 1}}), Dict({{"a", 2}})),
            PlanChange("NVRAM to set", "{\"a\":1}", "{\"a\":2}"));
}

TEST_F(PayloadDiff, FindsVariablesToClear) {
  EXPECT_EQ(ChangesOf("ClearNVRAM", List({"a"}), List({"a", "b"})),
            PlanChange("NVRAM to clear", "[\"a\"]", "[\"a\",\"b\"]"));
}

TEST_F(PayloadDiff, FindsAnOrder) {
  const DictionaryEntry usbc = {"USBC", List({Dict(Personality)})};
  const DictionaryEntry legacy = {"LegacyUSBC", Dict(Personality)};
  EXPECT_EQ(Changes({usbc, legacy}, {legacy, usbc}),
            PlanChange("order", "[\"USBC 1\",\"LegacyUSBC 1\"]", "[\"LegacyUSBC 1\",\"USBC 1\"]"));
}

TEST_F(PayloadDiff, FindsOptions) {
  computer_.AddThunderbolt("ridge0", {{"UID", 1},
                                      {"Vendor ID", 1},
                                      {"Device ID", 2},
                                      {"Revision ID", 3},
                                      {"Depth", 0},
                                      {"Route String", 0},
                                      {"ROM Version", 0x41},
                                      {"EEPROM Revision", 5}});
  const Record personality = {{"Version", 50},
                              {"Firmware", "r.bin"},
                              {"Ridge Silicon Vendor ID", 1},
                              {"Ridge Silicon Device ID", 2},
                              {"Ridge Silicon Revision", 3}};
  EXPECT_EQ(
      Changes({{"LegacyThunderbolt", List({Dict(personality)})}},
              {{"LegacyThunderbolt", List({Dict(With(personality, {{"Firmware Mode", 1}}))})}}),
      PlanChange("options", "\"-g -o -sr 1 0 -ee efi-quince-payload0-data -noreset\"",
                 "\"-g -o -sr 1 0 -fs efi-quince-payload0-data -noreset\""));
}

// The plan comes and goes with its one match.
std::string Gained(const std::string& reasons) {
  return R"([{"kind":"gains plan","match":null,"before":null,"after":null,"reasons":[]},)"
         R"({"kind":"gains match","match":)" +
         Port + R"(,"before":null,"after":"9, a.bin","reasons":[)" + reasons + "]}]\n";
}

std::string Lost(const std::string& reasons) {
  return R"([{"kind":"loses plan","match":null,"before":null,"after":null,"reasons":[]},)"
         R"({"kind":"loses match","match":)" +
         Port + R"(,"before":"9, a.bin","after":null,"reasons":[)" + reasons + "]}]\n";
}

TEST_F(PayloadDiff, NamesTheRequirementsForWhichAMatchIsGainedOrLost) {
  const auto other = Usbc(With(Personality, {{"Version", 5}, {"Port Silicon Revision", 4}}));
  const std::string reasons =
      R"("personality 1 (a.bin): \"Version\" 5 is not newer than the installed 5",)"
      R"("personality 1 (a.bin): \"Port Silicon Revision\" wants 4, finds 3")";
  EXPECT_EQ(Changes(other, Usbc(Personality)), Gained(reasons));
  EXPECT_EQ(Changes(Usbc(Personality), other), Lost(reasons));
}

TEST_F(PayloadDiff, ReportsThatThereIsNoSuchPersonality) {
  EXPECT_EQ(Changes({{"Other", 1}}, Usbc(Personality)),
            Gained(R"("the old payload has no key \"USBC\"")"));
  EXPECT_EQ(Changes({}, Usbc(Personality)), Gained(R"("the old payload has no key \"USBC\"")"));
  EXPECT_EQ(Changes({{"USBC", Dict(Personality)}}, Usbc(Personality)),
            Gained(R"("\"USBC\" of the old payload is a dictionary, which matches nothing")"));
  EXPECT_EQ(Changes({{"USBC", List({})}}, Usbc(Personality)),
            Gained("\"the old payload has no such personality\""));
  EXPECT_EQ(Changes({{"USBC", List({1})}}, Usbc(Personality)),
            Gained("\"the old payload has no such personality\""));
}

// Of personalities with the same purpose, the counterpart is the one with the same image.
TEST_F(PayloadDiff, FindsThePersonalityOfTheSamePurposeAndImage) {
  const auto never = Without(With(Personality, {{"Firmware", "b.bin"}}), "Version");
  const auto old = With(Personality, {{"Version", 4}});
  EXPECT_EQ(Changes({{"USBC", List({Dict(never), Dict(old)})}}, Usbc(Personality)),
            Gained(R"("personality 2 (a.bin): \"Version\" 4 is not newer than the installed 5")"));
}

// A release that renames every image, adds a personality and raises a minimum.
TEST_F(PayloadDiff, NamesThePersonalityOfTheSamePurpose) {
  const auto at = [](int address, const char* image, const Record& more = {}) {
    auto record = With(Personality, {{"Port Address", address}, {"Firmware", image}});
    record.Merge(Dictionary(more));
    return Dict(record);
  };
  const auto pilot =
      Dict(With(Personality, {{"Port UUID", List({"5F1C"})}, {"Firmware", "pilot-11.bin"}}));
  const Record before = {{"USBC", List({at(1, "left-10.bin"), at(56, "right-10.bin")})}};
  const Record after = {{"USBC", List({pilot, at(1, "left-11.bin"),
                                       at(56, "right-11.bin", {{"Existing Min Version", 6}})})}};
  const auto changes = Changes(before, after);
  EXPECT_NE(changes.find(R"("reasons":["personality 3 (right-11.bin): \"Existing Min Version\" )"
                         R"(6 is above the installed 5"])"),
            std::string::npos)
      << changes;
  // In either direction, for a port that only the pilot matches.
  testing::Computer other;
  other.SetBoard("Zed-42", 3);
  other.AddPort("hpm0", {{"Vendor ID", 1},
                         {"Device ID", 2},
                         {"Revision ID", 3},
                         {"Version", 5},
                         {"Address", 2},
                         {"UUID", "5F1C"}});
  const auto reasons = [&](const Record& from, const Record& to) {
    return FindChanges(RunOf(other, from), RunOf(other, to)).at(1).reasons;
  };
  EXPECT_EQ(reasons(before, after), Texts{"the old payload has no such personality"});
  EXPECT_EQ(reasons(after, before), Texts{"the new payload has no such personality"});
}

TEST_F(PayloadDiff, HasTheReasonWhyThereIsNoPlan) {
  EXPECT_EQ(Changes(Usbc(Personality), Usbc(Without(Personality, "Firmware"))),
            R"([{"kind":"loses plan","match":null,"before":null,"after":null,"reasons":)"
            R"(["fernwick: Error in personality: no firmware image to flash for type USBC"]},)"
            R"({"kind":"image","match":)" +
                Port +
                R"(,"before":"a.bin","after":null,"reasons":[]}])"
                "\n");
}

}  // namespace
}  // namespace fernwick::lab
