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

}  // namespace

std::vector<PropertyValue> SampleValues() {
  auto values = SampleLeaves();
  Dictionary dictionary;
  for (const auto& leaf : values) dictionary.Set("Key " + std::to_string(dictionary.Size()), leaf);
  Array array(values.begin(), values.end());
  array.push_back(Array{});
  array.push_back(Dictionary{});
  array.push_back(Dictionary{{"Nested", Array{1, Array{2, Dictionary{{"\u00E9", dictionary}}}}}});
  values.push_back(std::move(dictionary));
  values.push_back(std::move(array));
  return values;
}

PropertyValue SampleRecording() {
  const Dictionary properties{{"UID", 1}, {"Depth", 0}, {"Route String", 0}};
  const Dictionary first{{"Name", "Ridge"}, {"Class", "Left"}, {"ID", "1"}};
  const Dictionary second{{"Name", "Ridge"}, {"Class", "Side"}, {"Properties", properties}};
  const Dictionary services{{"ID", "root"}, {"Children", Array{first, second}}};
  const Dictionary link{{"Link", "root"}, {"Children", Array{Dictionary{{"Link", "1"}}}}};
  const Dictionary tree{{"Name", "tree"}, {"Children", Array{link}}};
  return Dictionary{
      {"Recording Version", 1},
      {"Classes", Dictionary{{"Left", "Side"}, {"Side", "IOThunderboltSwitch"}}},
      {"Planes", Dictionary{{"IOService", services}, {"IODeviceTree", tree}}},
  };
}

}  // namespace fernwick::fuzz
