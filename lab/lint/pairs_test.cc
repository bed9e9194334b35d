// Each rule has a payload that raises it, and it alone, and a twin that raises nothing.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "lab/lint/payload.h"
#include "lab/lint/rules/rules.h"
#include "testing/inputs/corruption.h"
#include "testing/named_rows.h"
#include "testing/temporary_directory.h"

namespace fernwick::lab {
namespace {

using testing::Named;

// A payload: files by their path. The location of the finding in a file's contents, or in a path,
// is marked "@", which is removed.
struct PayloadFile {
  std::string path;
  std::string contents = {};
};
using Payload = std::vector<PayloadFile>;

struct RulePair {
  Payload raises;
  Payload twin;
};

// The parts of a personality. In each the offset after "<key>...</key>" is that of the value.
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
  Payload payload = {{"Fernwick/RidgeFlash.efi", "ridge"},
                     {"Fernwick/PortFlash.efi", "port"},
                     {"Fernwick/Zed-42/Config.plist", configuration}};
  for (const std::string image : {"a.bin", "b.bin"}) {
    if (configuration.find(">" + image) == std::string::npos) continue;
    payload.push_back({"Fernwick/Zed-42/" + image, "image " + image});
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

Payload And(Payload payload, const std::string& path, const std::string& contents = "x") {
  payload.push_back({path, contents});
  return payload;
}

// So many personalities, each with a greater minimum than the one after.
std::string EverLower(int count, const std::string& silicon = PortSilicon) {
  std::string personalities;
  for (int i = count; i > 0; --i) {
    personalities +=
        Dict(Version + silicon + Image + Priority + "<key>Existing Min Version</key><real>" +
             std::to_string(i) + "e-1</real>");
  }
  return personalities;
}

// So many of "LegacyThunderbolt", and after them one of "Thunderbolt" for later versions.
std::string WithLaterThunderbolt(int count) {
  const auto later = Dict("<key>Version</key><integer>300</integer>" + PortSilicon + RidgeSilicon +
                          Priority + "<key>Firmware</key><string>b.bin</string>" +
                          "<key>Existing Min Version</key><integer>200</integer>");
  return Dict("<key>LegacyThunderbolt</key><array>" + EverLower(count, RidgeSilicon) + "</array>@" +
              "<key>Thunderbolt</key><array>" + later + "</array>");
}

// Removes the mark from the text. Returns its offset, or npos.
std::size_t RemoveMark(std::string& text) {
  const auto mark = text.find('@');
  if (mark != std::string::npos) text.erase(mark, 1);
  return mark;
}

// Writes the payload. Returns "PATH:LINE:COLUMN: " of the mark, or "PATH: " of one in a path. The
// configurations here are all on one line.
std::string WritePayload(const testing::TemporaryDirectory& directory, const Payload& payload) {
  std::string marked;
  for (auto [path, contents] : payload) {
    const auto inPath = RemoveMark(path);
    const auto inContents = RemoveMark(contents);
    directory.Write(path, contents);
    if (inPath != std::string::npos) marked = path.substr(0, inPath) + ": ";
    if (inContents != std::string::npos) {
      marked = path + ":1:" + std::to_string(inContents + 1) + ": ";
    }
  }
  return marked;
}

// What lint finds, a line "LOCATION: SEVERITY [ID]" each, by paths relative to the payload.
std::string FindingsIn(const testing::TemporaryDirectory& directory) {
  std::string text;
  LintPayload(directory.Path(), {}, [&](const Finding& finding) {
    text += finding.path.substr(std::min(finding.path.size(), directory.Path().size() + 1));
    if (finding.location) text += ":" + Describe(*finding.location);
    text.append(": ").append(NameOf(finding.rule->severity));
    text.append(" [").append(finding.rule->id).append("]\n");
  });
  return text;
}

class LintRulePair : public ::testing::TestWithParam<Named<RulePair>> {};

std::string IdOf(std::string name) {
  std::ranges::replace(name, '_', '-');
  return name;
}

TEST_P(LintRulePair, RaisesItAtItsLocationAndTheTwinNothing) {
  const auto& [name, pair] = GetParam();
  const auto* rule = FindLintRule(IdOf(name));
  ASSERT_NE(rule, nullptr);
  const testing::TemporaryDirectory raising;
  const auto location = WritePayload(raising, pair.raises);
  EXPECT_EQ(FindingsIn(raising),
            location + std::string(NameOf(rule->severity)) + " [" + std::string(rule->id) + "]\n");
  const testing::TemporaryDirectory twin;
  WritePayload(twin, pair.twin);
  EXPECT_EQ(FindingsIn(twin), "");
}

const Payload Good = WithUsbc("");
const std::string Board = "Fernwick/Zed-42/";

const std::string Uuid = "5F1C9A04-7C15-4E0C-9C2F-0A6E3D0B7A00";

const std::string LegacyPort = Dict(Version + Image + Priority);

// Settings of one NVRAM variable.
std::string SettingNvram(const std::string& entry) {
  return "<key>SetNVRAM</key><dict>" + entry + "</dict>";
}

const std::string Staged = "<key>SetNVRAM</key><dict><key>staged</key><string>1</string></dict>";

const Named<RulePair> Pairs[] = {
    // The payload and its files.
    {"no_fernwick_directory", {{{"@Zed-42/Config.plist"}}, Good}},
    {"no_boards", {{{"Fernwick@/PortFlash.efi"}}, Good}},
    {"impossible_board_id",
     {{{"Fernwick/PortFlash.efi", "port"},
       {"Fernwick/Zed-\xFF@/Config.plist", Usbc(Personality(""))},
       {"Fernwick/Zed-\xFF/a.bin", "image"}},
      Good}},
    {"doubtful_board_id",
     {{{"Fernwick/Zed-1AO5@/Config.plist", Dict("")}},
      {{"Fernwick/Zed-1A05/Config.plist", Dict("")}}}},
    {"same_board_twice",
     {{{"Fernwick/Zed-0A05/Config.plist", Dict("")},
       {"Fernwick/Zed-1A05/Config.plist", Dict("")},
       {"Fernwick/Zed-A05@/Config.plist", Dict("")}},
      {{"Fernwick/Zed-0A05/Config.plist", Dict("")},
       {"Fernwick/Zed-1A05/Config.plist", Dict("")}}}},
    {"nested_board",
     {And(Good, Board + "Zed-43@/Config.plist"), And(Good, Board + "images/b.bin")}},
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
    {"similar_key",
     {WithUsbc("@<key>Max Version</key><integer>150</integer>"),
      WithUsbc("<key>Existing Max Version</key><integer>150</integer>")}},
    {"unread_key", {WithUsbc("@<key>Author</key><string>x</string>"), WithUsbc("<!-- x -->")}},
    {"key_not_read_by_type",
     {WithUsbc("@<key>Ridge UID</key><integer>1</integer>"),
      WithLegacyThunderbolt("<key>Ridge UID</key><integer>1</integer>")}},
    {"reserved_key", {WithUsbc("@<key>Personality Type</key><string>USBC</string>"), Good}},
    {"missing_key", {With(Usbc("@" + Dict(PortSilicon + Image + Priority))), Good}},

    // Their values.
    {"wrong_kind",
     {WithUsbc("<key>RID</key>@<string>1</string>"),
      WithUsbc("<key>RID</key><integer>1</integer>")}},
    {"list_not_allowed",
     {WithUsbc("<key>MinBoardRevision</key>@<array><integer>1</integer></array>"),
      WithUsbc("<key>MinBoardRevision</key><integer>1</integer>")}},
    {"single_port_uuid",
     {WithUsbc("<key>Port UUID</key>@<string>" + Uuid + "</string>"),
      WithUsbc("<key>Port UUID</key><array><string>" + Uuid + "</string></array>")}},
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
    {"rid_not_of_uid",
     {WithLegacyThunderbolt("<key>Ridge UID</key><integer>0x5A3</integer>"
                            "<key>RID</key>@<integer>5</integer>"),
      WithLegacyThunderbolt("<key>Ridge UID</key><integer>0x5A3</integer>"
                            "<key>RID</key><integer>3</integer>")}},
    {"doubtful_uuid",
     {WithUsbc("<key>Port UUID</key><array>@<string>5f1c9a04-7c15-4e0c-9c2f-0a6e3d0b7a00</string>"
               "</array>"),
      WithUsbc("<key>Port UUID</key><array><string>" + Uuid + "</string></array>")}},
    {"doubtful_model_name",
     {WithThunderbolt("<key>Device Model Name</key>@<string>Slate 13 </string>"),
      WithThunderbolt("<key>Device Model Name</key><string>Slate 13</string>")}},
    {"real_uid",
     {WithLegacyThunderbolt("<key>Ridge UID</key>@<real>3</real>"),
      WithLegacyThunderbolt("<key>Ridge UID</key><integer>3</integer>")}},
    {"boolean_for_number",
     {WithUsbc("<key>RID</key>@<true/>"), WithThunderbolt("<key>Firmware Mode</key><true/>")}},
    {"repeated_element",
     {WithUsbc("<key>Port Address</key><array><integer>56</integer>@<integer>0x38</integer>"
               "</array>"),
      WithUsbc("<key>Port Address</key><array><integer>56</integer><integer>0x3F</integer>"
               "</array>")}},
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
    {"unreportable_version",
     {With(LegacyThunderbolt(
          Dict("<key>Version</key>@<real>41.7</real>" + RidgeSilicon + Image + Priority))),
      With(LegacyThunderbolt(
          Dict("<key>Version</key><real>41.07</real>" + RidgeSilicon + Image + Priority)))}},
    {"version_gap",
     {With(Usbc(Personality("<key>Existing Max Version</key><integer>150</integer>") +
                Personality("<key>Existing Min Version</key>@<integer>152</integer>"))),
      With(Usbc(Personality("<key>Existing Max Version</key><integer>150</integer>") +
                Personality("<key>Existing Min Version</key><integer>151</integer>")))}},
    {"board_revision_gap",
     {With(Usbc(Personality("<key>MaxBoardRevision</key><integer>3</integer>") + "@" +
                Personality("<key>MinBoardRevision</key><integer>5</integer>"))),
      With(Usbc(Personality("<key>MaxBoardRevision</key><integer>3</integer>") +
                Personality("<key>MinBoardRevision</key><integer>4</integer>")))}},
    {"two_images_for_one_controller",
     {With(Dict("<key>LegacyUSBC</key>" + LegacyPort + "<key>USBC</key><array>@" + Personality("") +
                "</array>")),
      With(Dict("<key>LegacyUSBC</key>" +
                Dict(Version + Image + Priority + "<key>Port Address</key><integer>1</integer>") +
                "<key>USBC</key><array>" +
                Personality("<key>Port Address</key><integer>2</integer>") + "</array>"))}},
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
     {With(Dict("@<key>USBC</key><array>" + EverLower(258) + "</array>")),
      With(Dict("<key>USBC</key><array>" + EverLower(257) + "</array>"))}},
    {"overlap_not_examined", {With(WithLaterThunderbolt(257)), With(WithLaterThunderbolt(256))}},
    {"order_decides_image",
     {With(Usbc(
          Personality("<key>RID</key><array><integer>0</integer><integer>1</integer></array>") +
          Dict(Version + PortSilicon + Priority + "<key>Firmware</key><string>b.bin</string>" +
               "<key>RID</key><array><integer>2</integer>@<integer>1</integer></array>"))),
      With(Usbc(
          Personality("<key>RID</key><array><integer>0</integer><integer>1</integer></array>") +
          Dict(Version + PortSilicon + Priority + "<key>Firmware</key><string>b.bin</string>" +
               "<key>RID</key><integer>2</integer>")))}},

    // What the plan contains.
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
    {"empty_image",
     {And(Without(With(Usbc(Dict(Version + PortSilicon + Priority +
                                 "<key>Firmware</key>@<string>a.bin</string>"))),
                  Board + "a.bin"),
          Board + "a.bin", ""),
      Good}},
    {"pointer_file",
     {And(Without(With(Usbc(Dict(Version + PortSilicon + Priority +
                                 "<key>Firmware</key>@<string>a.bin</string>"))),
                  Board + "a.bin"),
          Board + "a.bin", "version https://git-lfs.github.com/spec/v1\n"),
      Good}},
    {"configuration_as_image",
     {With(Usbc(Dict(Version + PortSilicon + Priority +
                     "<key>Firmware</key>@<string>Config.plist</string>"))),
      Good}},
    {"same_image_twice",
     {And(With(Usbc(Personality("<key>RID</key><integer>1</integer>") +
                    Dict(Version + PortSilicon + Priority +
                         "<key>Firmware</key>@<string>c.bin</string>"))),
          Board + "c.bin", "image a.bin"),
      And(With(Usbc(Personality("<key>RID</key><integer>1</integer>") +
                    Dict(Version + PortSilicon + Priority +
                         "<key>Firmware</key><string>c.bin</string>"))),
          Board + "c.bin", "image c.bin")}},
    {"image_versions_differ",
     {With(
          Usbc(Personality("<key>RID</key><integer>1</integer>") +
               Dict("<key>Version</key>@<integer>190</integer>" + PortSilicon + Image + Priority))),
      With(Usbc(Personality("<key>RID</key><integer>1</integer>") + Personality("")))}},
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
    {"nvram_empty_name",
     {WithUsbc("<key>ClearNVRAM</key><array>@<string> </string></array>"),
      WithUsbc("<key>ClearNVRAM</key><array><string>a b</string></array>")}},
    {"nvram_payload_variable",
     {WithUsbc(SettingNvram("@<key>efi-quince-payload0-data</key><string>1</string>")),
      WithUsbc(SettingNvram("<key>efi-quince-payload-data</key><string>1</string>"))}},
    {"nvram_bypass_switch",
     {WithUsbc(SettingNvram("<key>fernwick_bypassversioncheck</key>@<string>1</string>")),
      WithUsbc(SettingNvram("<key>fernwick_bypassversionchecks</key><string>1</string>"))}},
    {"nvram_idle_bypass_switch",
     {WithUsbc(
          "<key>ClearNVRAM</key><array>@<string>fernwick_bypass_usbc_updates</string></array>"),
      WithUsbc("<key>ClearNVRAM</key><array><string>fernwick_bypass</string></array>")}},
    {"nvram_boot_args",
     {WithUsbc(SettingNvram("@<key>boot-args</key><string>-v</string>")),
      WithUsbc(SettingNvram("<key>boot-arg</key><string>-v</string>"))}},
};

INSTANTIATE_TEST_SUITE_P(Each, LintRulePair, ::testing::ValuesIn(Pairs), testing::RowName);

TEST(LintRulePairs, ThereAreOfEveryRule) {
  std::set<std::string> paired;
  for (const auto& pair : Pairs) paired.insert(IdOf(pair.name));
  // Those without a pair: "boot-args" itself is reported as well, and a payload here has no links.
  paired.insert({"nvram-bare-switch", "image-linked-outside"});
  std::set<std::string> known;
  for (const auto* rule : LintRules()) known.emplace(rule->id);
  EXPECT_EQ(paired, known);
  EXPECT_EQ(std::size(Pairs) + 2, known.size());
}

}  // namespace
}  // namespace fernwick::lab
