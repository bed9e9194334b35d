// Samples of random configurations, compared with every controller of a small domain.

#include "lab/draft/sample_search.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "lab/support/configuration_file.h"
#include "lab/support/tool_run.h"
#include "personality/requirements.h"
#include "registry/recording_reader.h"
#include "registry/thunderbolt_inventory.h"
#include "testing/inputs/random_choice.h"
#include "testing/property_values.h"
#include "testing/temporary_directory.h"
#include "testing/test_console.h"
#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

using testing::Dict;
using testing::List;
using testing::RandomChoice;

// A payload of the board "Zed-42" with this configuration.
class SampledPayload {
 public:
  explicit SampledPayload(const PropertyValue& configuration)
      : path_(
            directory_.Write("Fernwick/Zed-42/Config.plist", WriteXmlPropertyList(configuration))),
        file_(LoadConfiguration(path_)),
        subject_(*file_) {}

  const LocatedType& Type() const { return subject_.types.front(); }

  Result<Recording, std::string> Sample(std::size_t index) const {
    return FindSample({subject_, "Zed-42"}, Type(), index);
  }

  // Which personality of the type each controller matches when the tool runs over the computer.
  std::vector<std::size_t> Matched(const Recording& recording) const {
    const auto run = RunTool(recording, ToolOptions(directory_.Path(), false), KeptOutput::Counts);
    if (run.result.fault || run.trace.keys.empty()) return {};
    return run.trace.keys.front().matched;
  }

  std::string WhyNot(std::size_t index) const {
    const auto sample = Sample(index);
    return sample ? "there is one" : sample.Error();
  }

 private:
  testing::TemporaryDirectory directory_;
  std::string path_;
  Result<ConfigurationFile, LabError> file_;
  LintSubject subject_;
};

using AxisValues = std::vector<std::optional<PropertyValue>>;

// The values of a key in the small domain.
struct Axis {
  std::string_view key;  // empty: the board revision
  AxisValues values;
};

constexpr auto Absent = std::nullopt;

const PropertyValue One = ThunderboltFirmwareVersion(1, 0);
const PropertyValue OneAndOne = ThunderboltFirmwareVersion(1, 1);
const PropertyValue Two = ThunderboltFirmwareVersion(2, 0);

std::vector<Axis> AxesOf(TypeSet type) {
  std::vector<Axis> axes;
  if (type == Types::LegacyThunderbolt) {
    axes = {{"Version", {One, OneAndOne, Two}}, {"Ridge UID", {0, 1, 2, 16, 17, 32, "no number"}}};
  } else {
    axes = {{"", {0, 1, 2, 3}},
            {"Version", {0, 1, 2, 3, One, OneAndOne, Two}},
            {"Port Address", {Absent, 0, 1}},
            {"RID", {Absent, 0, 1, 9}},
            {"Port OTP Revision", {Absent, 0, 1}},
            {"Port UUID", {Absent, "a", "b"}},
            {"Port Silicon Vendor ID", {0, 1}}};
  }
  if (type == Types::Thunderbolt) {
    axes[1].values = {1, 2, One, Two};
    axes[4].values = {Absent};
    axes.push_back({"Ridge UID", {1, 2}});
    axes.push_back({"Firmware Mode", {Absent, false, true}});
  }
  return axes;
}

// Whether a controller can have all of these values, which are completed to its record.
bool Complete(TypeSet type, HardwareRecord& record) {
  const bool isPort = type != Types::LegacyThunderbolt;
  const auto* version = record.Find("Version");
  const auto* address = record.Find("Port Address");
  const bool isBelow = type == Types::Thunderbolt || (isPort && version->AsReal());
  if (isBelow && address != nullptr && !NumbersEqual(*address, 0)) return false;
  for (const char* key : {"Port Silicon Device ID", "Port Silicon Revision"}) {
    if (isPort) record.Set(key, 0);
  }
  for (const char* key :
       {"Ridge Silicon Vendor ID", "Ridge Silicon Device ID", "Ridge Silicon Revision"}) {
    if ((type & (Types::LegacyThunderbolt | Types::Thunderbolt)) != 0) record.Set(key, 0);
  }
  const auto* uid = record.Find("Ridge UID");
  const auto number = uid == nullptr ? std::nullopt : uid->AsNumber();
  if (number && record.Find("RID") == nullptr) record.Set("RID", ToUnsigned64(*number) & 0xF);
  return true;
}

// Calls `visit` with every controller of the domain and its board revision.
void ForEachController(TypeSet type,
                       const std::function<void(const HardwareRecord&, std::uint8_t)>& visit) {
  const auto axes = AxesOf(type);
  std::vector<std::size_t> chosen(axes.size(), 0);
  for (;;) {
    HardwareRecord record;
    std::uint8_t revision = 0;
    for (std::size_t i = 0; i < axes.size(); ++i) {
      const auto& value = axes[i].values[chosen[i]];
      if (!value) continue;
      if (axes[i].key.empty()) revision = static_cast<std::uint8_t>(value->AsInteger()->Bits());
      if (!axes[i].key.empty()) record.Set(axes[i].key, *value);
    }
    if (Complete(type, record)) visit(record, revision);
    std::size_t i = 0;
    while (i < chosen.size() && ++chosen[i] == axes[i].values.size()) chosen[i++] = 0;
    if (i == chosen.size()) return;
  }
}

// Which personalities are the first to accept some controller of the domain.
std::vector<bool> Reachable(TypeSet type, Array personalities) {
  std::vector<bool> reachable(personalities.size(), false);
  testing::TestConsole console;
  ForEachController(type, [&](const HardwareRecord& record, std::uint8_t revision) {
    const ControllerCheck check(type, {record, revision, false});
    for (std::size_t i = 0; i < personalities.size(); ++i) {
      if (!check.Applies(*personalities[i].AsDictionary(), console)) continue;
      reachable[i] = true;
      return;
    }
  });
  return reachable;
}

PropertyValue SomeOf(const AxisValues& values, RandomChoice& random) {
  std::vector<PropertyValue> some;
  for (const auto& value : values) {
    if (value && !random.OnceIn(2)) some.push_back(*value);
  }
  return List(some);
}

PropertyValue RandomPersonality(TypeSet type, RandomChoice& random) {
  Record personality = {{"Version", 1 + static_cast<int>(random.Below(4))}};
  for (const char* key :
       {"Port Silicon Device ID", "Port Silicon Revision", "Ridge Silicon Vendor ID",
        "Ridge Silicon Device ID", "Ridge Silicon Revision"}) {
    personality.Set(key, 0);
  }
  for (const auto& [key, values] : AxesOf(type)) {
    const bool isRequired = key == "Port Silicon Vendor ID";
    if (key == "Version" || key.empty()) continue;
    if (isRequired || random.OnceIn(3)) personality.Set(key, SomeOf(values, random));
  }
  if (type == Types::LegacyThunderbolt && random.OnceIn(2)) {
    personality.Set("RID", SomeOf({0, 1, 2}, random));
  }
  if (random.OnceIn(3))
    personality.Set("Existing Min Version", random.OneOf(std::vector{1.0, 1.01}));
  if (random.OnceIn(3))
    personality.Set("Existing Max Version", random.OneOf(std::vector{1.0, 1.02}));
  if (random.OnceIn(3)) personality.Set("MinBoardRevision", random.Below(3));
  if (random.OnceIn(3)) personality.Set("MaxBoardRevision", random.Below(3));
  return Dict(personality);
}

// Every property of the entries of the service plane and of the board revision is needed.
void ExpectNothingToLeaveOut(const SampledPayload& payload, const Recording& sample,
                             std::size_t index) {
  for (std::size_t entry = 0; entry < sample.entries.size(); ++entry) {
    for (const auto& property : sample.entries[entry].properties.Entries()) {
      if (property.key == "board-id") continue;
      auto smaller = *InterpretRecording(PropertyList{{}, sample.list.value});
      Record properties(sample.entries[entry].properties);
      properties.SetOrRemove(property.key, nullptr);
      smaller.entries[entry].properties = Dict(properties);
      EXPECT_NE(payload.Matched(smaller), std::vector{index}) << property.key;
    }
  }
}

class Samples : public ::testing::TestWithParam<NamedType> {};

TEST_P(Samples, ExistExactlyWhereAControllerOfTheDomainMatches) {
  const auto& [name, type] = GetParam();
  RandomChoice random(7);
  std::size_t found = 0;
  std::size_t missing = 0;
  for (int round = 0; round < 60; ++round) {
    std::vector<PropertyValue> personalities;
    const std::size_t count = type == Types::LegacyUsbc ? 1 : 1 + random.Below(5);
    for (std::size_t i = 0; i < count; ++i) {
      personalities.push_back(RandomPersonality(type, random));
    }
    const auto value = type == Types::LegacyUsbc ? personalities.front() : List(personalities);
    const SampledPayload payload(Dict({{name, value}}));
    const auto reachable = Reachable(type, List(personalities));
    for (std::size_t i = 0; i < count; ++i) {
      const auto sample = payload.Sample(i);
      ASSERT_FALSE(reachable[i] && !sample) << sample.Error() << ::testing::PrintToString(value);
      if (!sample) {
        ++missing;
        continue;
      }
      ++found;
      EXPECT_EQ(payload.Matched(*sample), std::vector{i});
      ExpectNothingToLeaveOut(payload, *sample, i);
    }
  }
  EXPECT_GT(found, 20u);
  EXPECT_GT(missing, 5u);
}

INSTANTIATE_TEST_SUITE_P(OfEachType, Samples, ::testing::ValuesIn(NamedTypes),
                         [](const auto& type) { return std::string(type.param.name); });

// A personality of a type with all that it requires.
Record Required(const Record& others) {
  Record personality = {{"Version", 5}};
  for (const char* key :
       {"Port Silicon Vendor ID", "Port Silicon Device ID", "Port Silicon Revision",
        "Ridge Silicon Vendor ID", "Ridge Silicon Device ID", "Ridge Silicon Revision"}) {
    personality.Set(key, 1);
  }
  personality.Merge(others);
  return personality;
}

std::string WhyNot(std::string_view type, const std::vector<PropertyValue>& personalities) {
  const SampledPayload payload(Dict({{type, List(personalities)}}));
  return payload.WhyNot(personalities.size() - 1);
}

TEST(Sample, HasAReasonWhereThereIsNone) {
  EXPECT_EQ(WhyNot("USBC", {5}), "it is an integer, not a dictionary");
  EXPECT_EQ(WhyNot("LegacyThunderbolt", {Dict(Required({{"RID", 3}, {"Ridge UID", 0x10}}))}),
            "it can never match: \"RID\" is not the low 4 bits of any \"Ridge UID\" of this "
            "personality");
  EXPECT_EQ(WhyNot("Thunderbolt",
                   {Dict(Required({{"Port Address", List({1, 2})}, {"MinBoardRevision", 256}}))}),
            "it can never match: no element of \"Port Address\" can match; of the first, 1: "
            "controllers have 0 alone there; no board revision, 0 to 255, is within the bounds of "
            "this personality");
  EXPECT_EQ(WhyNot("USBC", {"no personality", Dict(Required({})), Dict(Required({{"RID", 1}}))}),
            "it is never reached: personality 2 accepts everything that it accepts");
}

TEST(Sample, NamesTheEarlierPersonalitiesThatAcceptEverything) {
  EXPECT_EQ(WhyNot("USBC", {Dict(Required({{"RID", 4}})),
                            Dict(Required({{"Existing Max Version", 3}, {"RID", 1}})),
                            Dict(Required({{"Port Address", 1}})),
                            Dict(Required({{"Existing Min Version", 3}, {"RID", List({1, 2})}})),
                            Dict(Required({{"RID", 1}}))}),
            "it is never reached: each controller that it accepts is accepted by one of the "
            "personalities 2, 4");
}

constexpr char NotFoundText[] =
    "no sample was found within the limits of the search: too many earlier personalities accept "
    "much of what it accepts";

// Each earlier personality accepts one of the addresses.
TEST(Sample, IsNotSearchedForAmongMorePersonalitiesThanTheLimit) {
  std::vector<PropertyValue> personalities;
  std::vector<PropertyValue> addresses;
  for (int address = 0; address < 150; ++address) {
    addresses.emplace_back(address);
    personalities.emplace_back(Dict(Required({{"Port Address", address}})));
  }
  personalities.emplace_back(Dict(Required({{"Port Address", List(addresses)}})));
  EXPECT_EQ(WhyNot("USBC", personalities), NotFoundText);
}

// The pigeonhole principle: the values of seven keys are to be six values, all different.
TEST(Sample, IsNotSearchedForWithoutEnd) {
  const std::vector<std::string_view> keys = {"Port Silicon Vendor ID",
                                              "Port Silicon Device ID",
                                              "Port Silicon Revision",
                                              "Port OTP Revision",
                                              "Port Address",
                                              "RID",
                                              "Port UUID"};
  const std::vector<PropertyValue> texts = {"0", "1", "2", "3", "4", "5"};
  const auto value = [&](std::size_t key, int number) {
    return keys[key] == "Port UUID" ? texts[static_cast<std::size_t>(number)]
                                    : PropertyValue(number);
  };
  Record all = Required({});
  for (const auto key : keys) all.Set(key, List({0, 1, 2, 3, 4, 5}));
  all.Set("Port UUID", List(texts));
  std::vector<PropertyValue> personalities;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      for (int number = 0; number < 6; ++number) {
        Record equal = all;
        equal.Set(keys[i], List({value(i, number)}));
        equal.Set(keys[j], List({value(j, number)}));
        personalities.emplace_back(Dict(equal));
      }
    }
  }
  personalities.emplace_back(Dict(all));
  EXPECT_EQ(WhyNot("USBC", personalities), NotFoundText);
}

}  // namespace
}  // namespace fernwick::lab
