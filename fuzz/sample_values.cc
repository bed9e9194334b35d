#include "fuzz/sample_values.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "testing/property_values.h"

namespace fernwick::fuzz {
namespace {

using testing::Bytes;
using testing::DateOf;
using testing::Dict;
using testing::Kept;
using testing::List;

std::vector<PropertyValue> SampleLeaves() {
  using Limits = std::numeric_limits<double>;
  return {
      true,
      false,
      0,
      -1,
      255,
      65536,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::uint64_t>::max(),
      0.5,
      -0.0,
      41.050000000999994,
      Limits::max(),
      Limits::denorm_min(),
      -Limits::infinity(),
      Limits::quiet_NaN(),
      "",
      "Zed-42",
      "a < b & \"c\" > 'd'\r\n\t",
      "\u00E9\u2026\U0001F600\uFFFD",
      Bytes(""),
      Bytes(std::string_view("\0\x7F\xFF", 3)),
      Bytes("forty-two bytes of data, more than a few.."),
      DateOf("0001-01-01T00:00:00Z"),
      DateOf("2026-11-20T12:34:56Z"),
      DateOf("9999-12-31T23:59:59Z"),
  };
}

std::vector<PropertyValue> MakeSampleValues() {
  auto values = SampleLeaves();
  Record entries;
  for (const auto& leaf : values) {
    entries.Set(Kept("Key " + std::to_string(entries.Size())), leaf);
  }
  const Dictionary dictionary = Dict(entries);
  auto elements = values;
  elements.push_back(Array());
  elements.push_back(Dictionary());
  elements.push_back(Dict({{"Nested", List({1, List({2, Dict({{"\u00E9", dictionary}})})})}}));
  values.push_back(dictionary);
  values.push_back(List(elements));
  return values;
}

}  // namespace

const std::vector<PropertyValue>& SampleValues() {
  static const auto values = MakeSampleValues();
  return values;
}

PropertyValue SampleRecording() {
  const Dictionary properties = Dict({{"UID", 1}, {"Depth", 0}, {"Route String", 0}});
  const Dictionary first = Dict({{"Name", "Ridge"}, {"Class", "Left"}, {"ID", "1"}});
  const Dictionary second =
      Dict({{"Name", "Ridge"}, {"Class", "Side"}, {"Properties", properties}});
  const Dictionary services = Dict({{"ID", "root"}, {"Children", List({first, second})}});
  const Dictionary link = Dict({{"Link", "root"}, {"Children", List({Dict({{"Link", "1"}})})}});
  const Dictionary tree = Dict({{"Name", "tree"}, {"Children", List({link})}});
  return Dict({
      {"Recording Version", 1},
      {"Classes", Dict({{"Left", "Side"}, {"Side", "IOThunderboltSwitch"}})},
      {"Planes", Dict({{"IOService", services}, {"IODeviceTree", tree}})},
  });
}

}  // namespace fernwick::fuzz
