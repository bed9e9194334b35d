#include "lab/recordings/tool_properties.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "driver/run.h"
#include "testing/computer.h"
#include "testing/logging_registry.h"

namespace fernwick::lab {
namespace {

// The property of a call of the registry that reads one; empty for any other call.
std::string PropertyOf(const std::string& call, const std::vector<std::string>& names) {
  for (const auto& name : names) {
    for (const auto* beginning : {"GetProperty ", "SearchProperty "}) {
      const auto start = beginning + name + " ";
      if (call.starts_with(start)) return call.substr(start.size());
    }
  }
  return {};
}

TEST(ToolReads, EveryPropertyThatARunReads) {
  testing::Computer computer;
  computer.SetBoard("Zed-1", 2);
  const auto ridge = computer.AddThunderbolt(
      "ridge", {{"UID", 1}, {"Depth", 0}, {"Route String", 0}, {"ROM Version", 5}});
  computer.AddService(ridge, "below", "QuinceHPMDevice", {});
  computer.AddPort("port", {{"UUID", "x"}});
  testing::LoggingRegistry registry(computer.Recorded());
  StringConsole console;
  Options options;
  options.verbose = true;
  fernwick::Run(options, registry, console);
  std::set<std::string> properties;
  for (const auto& call : registry.Calls()) {
    auto property = PropertyOf(call, {"ridge", "below", "port", "options"});
    if (!property.empty()) properties.insert(std::move(property));
  }
  EXPECT_GE(properties.size(), 15u);
  for (const auto& property : properties) EXPECT_TRUE(ToolReads(property)) << property;
}

TEST(ToolReads, BoardAndNothingElse) {
  EXPECT_TRUE(ToolReads("board-id"));
  EXPECT_TRUE(ToolReads("board-rev"));
  for (const auto* property : {"", "uuid", "Port UUID", "serial-number", "Name", "boot-arg"}) {
    EXPECT_FALSE(ToolReads(property)) << property;
  }
}

}  // namespace
}  // namespace fernwick::lab
