// Compares the bypass switches with their plain second implementation.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "driver/bypass_switch.h"
#include "testing/computer.h"
#include "testing/inputs/value_domain.h"
#include "testing/recordings.h"
#include "testing/reference/bypass_switch.h"

namespace fernwick {
namespace {

namespace reference = testing::reference;

constexpr std::string_view Switch = "fernwick_bypass_usbc_updates";

// "set", "unset" or "fault".
std::string ResultOfTool(Dictionary settings) {
  static const testing::Computer computer;
  auto content = testing::ContentOf(computer.Recorded());
  content.entries[computer.Options() - 1].properties = settings;
  const Recording recording = testing::RecordingOf(std::move(content));
  RecordedRegistry registry(recording);
  const auto isSet = ReadBypassSwitch(registry, Switch);
  if (!isSet) return "fault";
  return *isSet ? "set" : "unset";
}

std::string ResultOfReference(std::string_view bootArguments, const PropertyValue* variable) {
  if (reference::HasBareName(bootArguments, Switch)) return "fault";
  return reference::IsSwitchSet(bootArguments, variable, Switch) ? "set" : "unset";
}

// Every text of up to `length` pieces of the grammar of boot arguments.
std::vector<std::string> BootArguments(std::size_t length) {
  const std::string pieces[] = {" ", "=", "0", "1", std::string(Switch)};
  std::vector<std::string> texts = {""};
  std::size_t begin = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const std::size_t end = texts.size();
    for (; begin < end; ++begin) {
      for (const auto& piece : pieces) texts.push_back(texts[begin] + piece);
    }
  }
  return texts;
}

TEST(BypassSwitchReference, AgreesOnBootArguments) {
  for (const auto& text : BootArguments(6)) {
    const Record settings{{"boot-args", text}};
    ASSERT_EQ(ResultOfTool(settings), ResultOfReference(text, nullptr)) << text;
  }
}

TEST(BypassSwitchReference, AgreesOnVariablesOfEveryKind) {
  auto values = testing::ValueDomain();
  for (const std::string_view text : {"", "0", "1", "00", "\xC3\xA4", "\xFF"}) {
    values.emplace_back(text);
    values.emplace_back(Data{text});
  }
  for (const auto& value : values) {
    for (const auto& text : BootArguments(3)) {
      const Record settings{{"boot-args", text}, {Switch, value}};
      ASSERT_EQ(ResultOfTool(settings), ResultOfReference(text, &value))
          << text << ::testing::PrintToString(value);
    }
  }
}

}  // namespace
}  // namespace fernwick
