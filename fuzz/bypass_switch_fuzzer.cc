// The bypass switches: the boot arguments are what stands before the first zero byte. The byte
// behind it tells the kind of the NVRAM variable, which the rest is.

#include <optional>
#include <string_view>

#include "driver/bypass_switch.h"
#include "fuzz/abnormal_end.h"
#include "fuzz/hold.h"
#include "fuzz/input.h"
#include "fuzz/switch_rule.h"
#include "testing/computer.h"
#include "testing/property_values.h"

namespace fernwick::fuzz {
namespace {

std::optional<PropertyValue> VariableOf(std::string_view packed) {
  if (packed.empty()) return std::nullopt;
  const auto contents = packed.substr(1);
  switch (packed.front()) {
    case 't': return PropertyValue(contents);
    case 'd': return PropertyValue(testing::Bytes(contents));
    case 'n': return PropertyValue(contents.size());
    case 'b': return PropertyValue(true);
    case 'a': return PropertyValue(Array{contents});
    default: return std::nullopt;
  }
}

void TestSwitch(std::string_view bootArguments, const std::optional<PropertyValue>& variable,
                std::string_view name) {
  testing::Computer computer;
  computer.Set(computer.Options(), "boot-args", bootArguments);
  if (variable) computer.Set(computer.Options(), name, *variable);
  RecordedRegistry registry(computer.Recorded());
  if (HoldsBareName(bootArguments, name)) {
    HoldAbnormalEnd([&] { ReadBypassSwitch(registry, name); },
                    "a boot argument is a switch name without a value");
    return;
  }
  const bool isSet = ReadBypassSwitch(registry, name);
  Hold(isSet == IsSwitchSet(bootArguments, variable ? &*variable : nullptr, name),
       "a switch is set by the rule");
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick::fuzz;
  const auto input = InputText(data, size);
  const auto end = input.find('\0');
  const auto variable =
      VariableOf(end == std::string_view::npos ? std::string_view() : input.substr(end + 1));
  for (const std::string_view name :
       {"fernwick_bypass_usbc_updates", "fernwick_bypassversioncheck"}) {
    TestSwitch(input.substr(0, end), variable, name);
  }
  return 0;
}
