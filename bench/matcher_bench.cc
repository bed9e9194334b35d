// Times the requirement checks as the matcher runs them: every personality against every
// controller, each pair rejected. Accepts the flags of Google Benchmark; "items" are pairs.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "personality/requirements.h"
#include "value/property_list_reader.h"
#include "value/xml/writer.h"

namespace fernwick::bench {
namespace {

constexpr std::uint8_t BoardRevision = 3;

// The keys that a personality names, and in which the controllers of a computer differ from what it
// wants: one personality after the other is rejected by another of them.
constexpr std::string_view Deciding[] = {
    "Version",           "Port Address", "RID", "Port Silicon Device ID", "Ridge Silicon Device ID",
    "Device Model Name",
};

PropertyValue Differing(std::string_view key) {
  if (key == "Version") return 40;  // older than any that is installed
  if (key == "Device Model Name") return "Another Model";
  return 99;
}

// One that fits every controller but for the key.
Record PersonalityOf(std::size_t index, std::string_view deciding) {
  static const PropertyValue rids[] = {0, 1, 2, 3};
  static const PropertyValue revisions[] = {1, 2, 3};
  Record personality = {
      {"Version", 44},
      {"Priority", static_cast<std::int64_t>(index % 100)},
      {"Firmware", "ridge-44.00.bin"},
      {"Port Address", 0},
      {"RID", Array(rids)},
      {"Port Silicon Vendor ID", 0x4D1},
      {"Port Silicon Device ID", 18},
      {"Port Silicon Revision", Array(revisions)},
      {"Ridge Silicon Vendor ID", 0x5A86},
      {"Ridge Silicon Device ID", 0x1D3},
      {"Ridge Silicon Revision", 4},
      {"Existing Min Version", 20},
      {"Device Model Name", "Model"},
  };
  personality.Set(deciding, Differing(deciding));
  return personality;
}

HardwareRecord ControllerOf(std::size_t index) {
  return {
      {"Ridge Silicon Vendor ID", 0x5A86},
      {"Ridge Silicon Device ID", 0x1D3},
      {"Ridge Silicon Revision", 4},
      {"Ridge UID", 0x5A3},
      {"RID", static_cast<std::int64_t>(index % 4)},
      {"Port Silicon Vendor ID", 0x4D1},
      {"Port Silicon Device ID", 18},
      {"Port Silicon Revision", 2},
      {"Port OTP Revision", 1},
      {"Port Address", 0},
      {"Port UUID", "8D1F"},
      {"Device Model Name", "Model"},
      {"Device Model ID", 7},
      {"Device Model Revision", 1},
      {"Firmware Mode", 1},
      {"Engineering Version", 0},
      {"Version", 41.050000000999994},
  };
}

// As they come from a file, whose text they view.
PropertyList AsRead(const std::vector<Record>& personalities) {
  const std::vector<PropertyValue> values(personalities.begin(), personalities.end());
  auto reading = ReadPropertyList(WriteXmlPropertyList(Array(values)));
  if (!reading.list) std::abort();
  return *std::move(reading.list);
}

std::vector<HardwareRecord> Controllers(std::size_t count) {
  std::vector<HardwareRecord> controllers;
  for (std::size_t i = 0; i < count; ++i) controllers.push_back(ControllerOf(i));
  return controllers;
}

// One controller an iteration, so that a measurement is not longer for
// many of them and is disturbed no more by what else the computer does.
void RejectAll(benchmark::State& state, Array personalities,
               const std::vector<HardwareRecord>& controllers) {
  StringConsole console;
  static std::size_t next = 0;  // each measurement goes on with another
  for (auto _ : state) {
    const ControllerCheck check(
        Types::Thunderbolt,
        {.hardware = controllers[next++ % controllers.size()], .boardRevision = BoardRevision});
    for (const auto& personality : personalities) {
      if (check.Applies(*personality.AsDictionary(), console)) std::abort();
    }
  }
  if (!console.Error().empty()) std::abort();  // a diagnostic would be what is measured
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(personalities.size()));
}

void RejectBy(benchmark::State& state, std::string_view key) {
  std::vector<Record> personalities;
  for (std::size_t i = 0; i < 10; ++i) personalities.push_back(PersonalityOf(i, key));
  const auto list = AsRead(personalities);
  RejectAll(state, *list.value.AsArray(), Controllers(10));
}

// Cached: the largest need seconds to build, and repetitions are interleaved.
Array PersonalitiesByAll(std::size_t count) {
  static std::map<std::size_t, PropertyList> made;
  const auto known = made.find(count);
  if (known != made.end()) return *known->second.value.AsArray();
  std::vector<Record> personalities;
  for (std::size_t i = 0; i < count; ++i) {
    personalities.push_back(PersonalityOf(i, Deciding[i % std::size(Deciding)]));
  }
  return *made.emplace(count, AsRead(personalities)).first->second.value.AsArray();
}

void RejectByAll(benchmark::State& state) {
  const auto personalities = PersonalitiesByAll(static_cast<std::size_t>(state.range(0)));
  RejectAll(state, personalities, Controllers(static_cast<std::size_t>(state.range(1))));
}

void RegisterAll() {
  for (const auto key : Deciding) {
    const auto name = "Rejected/by " + std::string(key);
    benchmark::RegisterBenchmark(name.c_str(), RejectBy, key);
  }
  benchmark::RegisterBenchmark("Rejected/by all", RejectByAll)
      ->ArgNames({"personalities", "controllers"})
      ->ArgsProduct({{10, 100, 1'000, 10'000, 100'000}, {1, 10, 100, 1'000}});
}

}  // namespace
}  // namespace fernwick::bench

int main(int argc, char** argv) {
  fernwick::bench::RegisterAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
