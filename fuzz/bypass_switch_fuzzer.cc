// The bypass switches: the boot arguments are what is before the first zero byte. The byte after it
// is the kind of the NVRAM variable, which the rest is.

#include <optional>
#include <string_view>

#include "driver/bypass_switch.h"
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "testing/computer.h"
#include "testing/recordings.h"
#include "testing/reference/bypass_switch.h"
#include "value/arena.h"

namespace fernwick::fuzz {
namespace {

namespace reference = testing::reference;

// The value views `packed` and `arena`.
std::optional<PropertyValue> VariableOf(std::string_view packed, Arena& arena) {
  if (packed.empty()) return std::nullopt;
  const auto contents = packed.substr(1);
  switch (packed.front()) {
    case 't': return contents;
    case 'd': return Data{contents};
    case 'n': return contents.size();
    case 'b': return true;
    case 'a': {
      const PropertyValue elements[] = {contents};
      return Array(arena.Copy(std::span<const PropertyValue>(elements)));
    }
    default: return std::nullopt;
  }
}

// A computer with these settings, which outlive it.
Recording ComputerWith(Dictionary settings) {
  static const testing::Computer computer;
  auto content = testing::ContentOf(computer.Recorded());
  content.entries[computer.Options() - 1].properties = settings;
  return testing::RecordingOf(std::move(content));
}

void TestSwitch(std::string_view bootArguments, const std::optional<PropertyValue>& variable,
                std::string_view name) {
  Record settings{{"boot-args", bootArguments}};
  settings.SetOrRemove(name, variable ? &*variable : nullptr);
  const Recording recording = ComputerWith(settings);
  RecordedRegistry registry(recording);
  const auto isSet = ReadBypassSwitch(registry, name);
  if (reference::HasBareName(bootArguments, name)) {
    return Require(!isSet && isSet.Error() == Fault::BareSwitch, "a bare name is a fault");
  }
  Require(bool(isSet), "nothing else is a fault");
  Require(*isSet == reference::IsSwitchSet(bootArguments, settings.Find(name), name),
          "a switch is set by the rule");
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick::fuzz;
  fernwick::Arena arena;
  const auto input = InputText(data, size);
  const auto end = input.find('\0');
  const auto variable =
      VariableOf(end == std::string_view::npos ? std::string_view() : input.substr(end + 1), arena);
  for (const std::string_view name :
       {"fernwick_bypass_usbc_updates", "fernwick_bypassversioncheck"}) {
    TestSwitch(input.substr(0, end), variable, name);
  }
  return 0;
}
