// Each rule has a payload that raises it, and it alone, and a twin that raises nothing.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "lab/lint/payload.h"
#include "lab/lint/report.h"
#include "lab/lint/rules.h"
#include "testing/inputs/corruption.h"
#include "testing/named_rows.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Named;

// A payload: files by their path. The place of the finding in a file's contents, or in a path, is
// marked "@", which is taken out.
struct PayloadFile {
  std::string path;
  std::string contents = {};
};
using Payload = std::vector<PayloadFile>;

struct RulePair {
  Payload raises;
  Payload twin;
};

// The parts of a personality. In each the place behind "<key>...</key>" is that of the value.
const std::string Version = "<key>Version</key><integer>200</integer>";
const std::string PortSilicon =
    "<key>Port Silicon Vendor ID</key><integer>1</integer>"
    "<key>Port Silicon Device ID</key><integer>2</integer>"
    "<key>Port Silicon Revision</key><integer>3</integer>";
const std::string RidgeSilicon =
    "<key>Ridge Silicon Vendor ID</key><integer>4</integer>"
    "<key>Ridge Silicon Device ID</key><integer>5</integer>"
    "<key>Ridge Silicon Revision</key><integer>6</integer>";
const std::string Image = "<key>Firmware</key><string>a.bin</string>";
const std::string Priority = "<key>Priority</key><integer>20</integer>";

std::string Dict(const std::string& contents) {
  return "<dict>" + contents + "</dict>";
}

std::string Personality(const std::string& contents) {
  return Dict(Version + PortSilicon + Image + Priority + contents);
}

std::string RidgePersonality(const std::string& contents) {
  return Dict(Version + RidgeSilicon + Image + Priority + contents);
}

std::string Usbc(const std::string& personalities) {
  return Dict("<key>USBC</key><array>" + personalities + "</array>");
}

std::string LegacyThunderbolt(const std::string& personalities) {
  return Dict("<key>LegacyThunderbolt</key><array>" + personalities + "</array>");
}

// A payload with nothing wrong but what is in the configuration: both utilities, and the images
// that it names.
Payload With(const std::string& configuration) {
  Payload payload = {{"Fernwick/RidgeFlash.efi"},
                     {"Fernwick/PortFlash.efi"},
                     {"Fernwick/Zed-42/Config.plist", configuration}};
  for (const std::string image : {"a.bin", "b.bin"}) {
    if (configuration.find(">" + image) == std::string::npos) continue;
    payload.push_back({"Fernwick/Zed-42/" + image});
  }
  return payload;
}

// One personality of "USBC" with these contents besides what it needs.
Payload WithUsbc(const std::string& contents) {
  return With(Usbc(Personality(contents)));
}

Payload WithLegacyThunderbolt(const std::string& contents) {
  return With(LegacyThunderbolt(RidgePersonality(contents)));
}

Payload WithThunderbolt(const std::string& contents) {
  return With(
      Dict("<key>Thunderbolt</key><array>" + Personality(RidgeSilicon + contents) + "</array>"));
}

Payload Without(Payload payload, const std::string& path) {
  std::erase_if(payload, [&](const PayloadFile& file) { return file.path == path; });
  return payload;
}

Payload And(Payload payload, const std::string& path) {
  payload.push_back({path});
  return payload;
}

// So many personalities, each with a greater version than the one before.
std::string EverNewer(int count) {
  std::string personalities;
  for (int i = 1; i <= count; ++i) {
    personalities += Dict("<key>Version</key><integer>" + std::to_string(i) + "</integer>" +
                          PortSilicon + Image + Priority);
  }
  return personalities;
}

// Takes the mark out of the text. Returns where it stood, or npos.
std::size_t TakeMark(std::string& text) {
  const auto mark = text.find('@');
  if (mark != std::string::npos) text.erase(mark, 1);
  return mark;
}

// Writes the payload. Returns "PATH:LINE:COLUMN: " of the mark, or "PATH: " of one in a path. The
// configurations here are all on one line.
std::string WritePayload(const testing::TemporaryDirectory& directory, const Payload& payload) {
  std::string marked;
  for (auto [path, contents] : payload) {
    const auto inPath = TakeMark(path);
    const auto inContents = TakeMark(contents);
    directory.Write(path, contents);
    if (inPath != std::string::npos) marked = path.substr(0, inPath) + ": ";
    if (inContents != std::string::npos) {
      marked = path + ":1:" + std::to_string(inContents + 1) + ": ";
    }
  }
  return marked;
}

// What lint finds, a line "PLACE: SEVERITY [ID]" each, by paths relative to the payload.
std::string FindingsIn(const testing::TemporaryDirectory& directory) {
  std::string text;
  for (const auto& finding : LintPayload(directory.Path(), {}).findings) {
    const auto path =
        finding.path.substr(std::min(finding.path.size(), directory.Path().size() + 1));
    text += path + (finding.place ? ":" + Describe(*finding.place) : "") + ": ";
    text.append(NameOf(finding.rule->severity)).append(" [").append(finding.rule->id).append("]\n");
  }
  return text;
}

class LintRulePair : public ::testing::TestWithParam<Named<RulePair>> {};

std::string IdOf(std::string name) {
  std::ranges::replace(name, '_', '-');
  return name;
}

TEST_P(LintRulePair, RaisesItAtItsPlaceAndTheTwinNothing) {
  const auto& [name, pair] = GetParam();
  const auto* rule = FindLintRule(IdOf(name));
  ASSERT_NE(rule, nullptr);
  const testing::TemporaryDirectory raising;
  const auto place = WritePayload(raising, pair.raises);
  EXPECT_EQ(FindingsIn(raising),
            place + std::string(NameOf(rule->severity)) + " [" + std::string(rule->id) + "]\n");
  const testing::TemporaryDirectory twin;
  WritePayload(twin, pair.twin);
  EXPECT_EQ(FindingsIn(twin), "");
}

const Payload Good = WithUsbc("");
const std::string Board = "Fernwick/Zed-42/";

const std::string Staged = "<key>SetNVRAM</key><dict><key>staged</key><string>1</string></dict>";

const Named<RulePair> Pairs[] = {
    // The payload and its files.
    {"no_fernwick_directory", {{{"@Zed-42/Config.plist"}}, Good}},
    {"no_boards", {{{"Fernwick@/PortFlash.efi"}}, Good}},
    {"impossible_board_id",
     {{{"Fernwick/PortFlash.efi"},
       {"Fernwick/Zed-\xFF@/Config.plist", Usbc(Personality(""))},
       {"Fernwick/Zed-\xFF/a.bin"}},
      {{"Fernwick/PortFlash.efi"},
       {"Fernwick/Zed-\u00FF/Config.plist", Usbc(Personality(""))},
       {"Fernwick/Zed-\u00FF/a.bin"}}}},
    {"no_configuration",
     {{{"Fernwick/Zed-42@/config.plist", Dict("")}}, {{Board + "Config.plist", Dict("")}}}},
    {"unreadable_file", {{{Board + "Config.plist@/Config.plist", Dict("")}}, With(Dict(""))}},
    {"malformed_property_list",
     {With("<dict><key>USBC</key><array>@</dict>"), With("<dict></dict>")}},

    // The shape of a configuration, and its keys.
    {"not_a_dictionary", {With("@<array></array>"), With("<dict></dict>")}},
    {"duplicate_key",
     {WithUsbc("<key>RID</key><integer>0</integer>@<key>RID</key><integer>1</integer>"),
      WithUsbc(
          "<key>RID</key><integer>0</integer><key>Port OTP Revision</key><integer>1</integer>")}},
    {"unknown_type",
     {With(Dict("@<key>Comment</key><string>x</string>")), With("<!-- x --><dict></dict>")}},
    {"misspelt_type",
     {With(Dict("@<key>LegacyUsbC</key><string>x</string>")),
      With(Dict("<key>LegacyUSBC</key>" + Dict(Version + Image + Priority)))}},
    {"wrong_type_shape",
     {With(Dict("<key>LegacyUSBC</key>@<array>" + Dict(Version + Priority) + "</array>")),
      With(Dict("<key>LegacyUSBC</key>" + Dict(Version + Image + Priority)))}},
    {"empty_type", {With(Dict("@<key>USBC</key><array/>")), With(Dict(""))}},
    {"personality_not_a_dictionary",
     {With(Usbc(Personality("") + "@<string>b</string>")), With(Usbc(Personality("")))}},
    {"misspelt_key",
     {WithUsbc("@<key>Existing Max Versoin</key><integer>150</integer>"),
      WithUsbc("<key>Existing Max Version</key><integer>150</integer>")}},
    {"unread_key", {WithUsbc("@<key>Author</key><string>x</string>"), WithUsbc("<!-- x -->")}},
    {"key_not_read_by_type",
     {WithUsbc("@<key>Ridge UID</key><integer>1</integer>"),
      WithLegacyThunderbolt("<key>Ridge UID</key><integer>1</integer>")}},
    {"reserved_key", {WithUsbc("@<key>Personality Type</key><string>USBC</string>"), Good}},
    {"missing_key", {With(Usbc("@" + Dict(PortSilicon + Image + Priority))), Good}},

    // What stands under them.
    {"wrong_kind",
     {WithUsbc("<key>RID</key>@<string>1</string>"),
      WithUsbc("<key>RID</key><integer>1</integer>")}},
    {"list_not_allowed",
     {WithUsbc("<key>MinBoardRevision</key>@<array><integer>1</integer></array>"),
      WithUsbc("<key>MinBoardRevision</key><integer>1</integer>")}},
    {"single_port_uuid",
     {WithUsbc("<key>Port UUID</key>@<string>6E1B</string>"),
      WithUsbc("<key>Port UUID</key><array><string>6E1B</string></array>")}},
    {"empty_list",
     {WithUsbc("<key>RID</key>@<array/>"),
      WithUsbc("<key>RID</key><array><integer>1</integer></array>")}},
    {"dead_list",
     {WithUsbc("<key>RID</key>@<array><string>1</string><real>1.5</real></array>"),
      WithUsbc("<key>RID</key><array><integer>1</integer><real>2.0</real></array>")}},
    {"dead_list_element",
     {WithUsbc("<key>RID</key><array><integer>1</integer>@<string>2</string></array>"),
      WithUsbc("<key>RID</key><array><integer>1</integer><integer>2</integer></array>")}},
    {"unreachable_number",
     {WithUsbc("<key>RID</key>@<integer>0x80000000</integer>"),
      WithUsbc("<key>RID</key><integer>0x7FFFFFFF</integer>")}},
    {"rid_out_of_range",
     {WithLegacyThunderbolt("<key>RID</key>@<integer>16</integer>"),
      WithLegacyThunderbolt("<key>RID</key><integer>15</integer>")}},
    {"doubtful_rid",
     {WithThunderbolt("<key>RID</key>@<integer>16</integer>"),
      WithThunderbolt("<key>RID</key><integer>15</integer>")}},
    {"nan_bound",
     {WithUsbc("<key>Existing Max Version</key>@<real>nan</real>"),
      WithUsbc("<key>Existing Max Version</key><integer>150</integer>")}},

    // What can match, and what is reached.
    {"version_bounds_crossed",
     {WithUsbc("<key>Existing Min Version</key><integer>151</integer>"
               "<key>Existing Max Version</key>@<integer>150</integer>"),
      WithUsbc("<key>Existing Min Version</key><integer>150</integer>"
               "<key>Existing Max Version</key><integer>150</integer>")}},
    {"version_not_above_minimum",
     {With(Usbc(Dict("<key>Version</key>@<integer>200</integer>" + PortSilicon + Image + Priority +
                     "<key>Existing Min Version</key><integer>200</integer>"))),
      WithUsbc("<key>Existing Min Version</key><integer>199</integer>")}},
    {"empty_version_window",
     {WithLegacyThunderbolt("<key>Existing Min Version</key><real>41.05</real>"
                            "<key>Existing Max Version</key>@<real>41.05</real>"),
      WithLegacyThunderbolt("<key>Existing Min Version</key><real>41.05</real>"
                            "<key>Existing Max Version</key><real>41.051</real>")}},
    {"maximum_just_missed",
     {WithLegacyThunderbolt("<key>Existing Max Version</key>@<real>41.05</real>"),
      WithLegacyThunderbolt("<key>Existing Max Version</key><real>41.051</real>")}},
    {"empty_board_revision_range",
     {WithUsbc("<key>MinBoardRevision</key><integer>4</integer>"
               "<key>MaxBoardRevision</key>@<integer>3</integer>"),
      WithUsbc("<key>MinBoardRevision</key><integer>4</integer>"
               "<key>MaxBoardRevision</key><integer>4</integer>")}},
    {"board_revision_out_of_range",
     {WithUsbc("<key>MaxBoardRevision</key>@<integer>256</integer>"),
      WithUsbc("<key>MaxBoardRevision</key><integer>255</integer>")}},
    {"shadowed_personality",
     {With(Usbc(Personality("") + "@" + Personality("<key>RID</key><integer>1</integer>"))),
      With(Usbc(Personality("<key>RID</key><integer>1</integer>") + Personality("")))}},
    {"shadowing_not_examined",
     {With(Dict("@<key>USBC</key><array>" + EverNewer(258) + "</array>")),
      With(Dict("<key>USBC</key><array>" + EverNewer(257) + "</array>"))}},

    // What the plan takes.
    {"no_firmware",
     {With(Usbc(Dict(Version + PortSilicon + Priority + "<key>Firmware</key>@<string></string>"))),
      Good}},
    {"missing_image",
     {Without(With(Usbc(Dict(Version + PortSilicon + Priority +
                             "<key>Firmware</key>@<string>a.bin</string>"))),
              Board + "a.bin"),
      Good}},
    {"image_not_a_file",
     {And(Without(With(Usbc(Dict(Version + PortSilicon + Priority +
                                 "<key>Firmware</key>@<string>a.bin</string>"))),
                  Board + "a.bin"),
          Board + "a.bin/a.bin"),
      Good}},
    {"image_outside_board_directory",
     {And(With(Usbc(Dict(Version + PortSilicon + Priority +
                         "<key>Firmware</key>@<string>../a.bin</string>"))),
          "Fernwick/a.bin"),
      Good}},
    {"image_not_a_plain_name",
     {And(With(Usbc(Dict(Version + PortSilicon + Priority +
                         "<key>Firmware</key>@<string>images/a.bin</string>"))),
          Board + "images/a.bin"),
      Good}},
    {"unused_file", {And(Good, Board + "old.bin@"), And(Good, Board + ".hidden")}},
    {"missing_utility",
     {Without(With(Dict("@<key>USBC</key><array>" + Personality("") + "</array>")),
              "Fernwick/PortFlash.efi"),
      Without(Good, "Fernwick/RidgeFlash.efi")}},
    {"no_priority", {With(Usbc("@" + Dict(Version + PortSilicon + Image))), Good}},
    {"altered_priority",
     {With(Usbc(Dict(Version + PortSilicon + Image + "<key>Priority</key>@<string>20</string>"))),
      Good}},
    {"altered_firmware_mode",
     {WithLegacyThunderbolt("<key>Firmware Mode</key>@<array><integer>1</integer></array>"),
      WithLegacyThunderbolt("<key>Firmware Mode</key><integer>1</integer>")}},
    {"priority_without_effect",
     {With(Usbc(Dict(Version + PortSilicon + Image +
                     "<key>Priority</key>@<integer>0x7FFFFFFF</integer>"))),
      With(Usbc(Dict(Version + PortSilicon + Image +
                     "<key>Priority</key><integer>0x7FFFFFFE</integer>")))}},
    {"nvram_wrong_shape",
     {WithUsbc("<key>SetNVRAM</key>@<array/>"), WithUsbc("<key>SetNVRAM</key><dict/>")}},
    {"cleared_name_not_text",
     {WithUsbc("<key>ClearNVRAM</key><array>@<integer>1</integer></array>"),
      WithUsbc("<key>ClearNVRAM</key><array><string>1</string></array>")}},
    {"nvram_set_and_cleared",
     {WithUsbc(Staged + "<key>ClearNVRAM</key><array>@<string>staged</string></array>"),
      WithUsbc(Staged + "<key>ClearNVRAM</key><array><string>Staged</string></array>")}},
    {"nvram_conflict",
     {With(Usbc(Personality("<key>RID</key><integer>0</integer>" + Staged) +
                Personality("<key>RID</key><integer>1</integer><key>SetNVRAM</key><dict>"
                            "@<key>staged</key><integer>1</integer></dict>"))),
      With(Usbc(Personality("<key>RID</key><integer>0</integer>" + Staged) +
                Personality("<key>RID</key><integer>1</integer>" + Staged)))}},
};

INSTANTIATE_TEST_SUITE_P(Each, LintRulePair, ::testing::ValuesIn(Pairs), testing::RowName);

TEST(LintRulePairs, ThereAreOfEveryRule) {
  std::set<std::string> paired;
  for (const auto& pair : Pairs) paired.insert(IdOf(pair.name));
  std::set<std::string> known;
  for (const auto* rule : LintRules()) known.emplace(rule->id);
  EXPECT_EQ(paired, known);
  EXPECT_EQ(std::size(Pairs), known.size());
}

}  // namespace
}  // namespace fernwick::lab
