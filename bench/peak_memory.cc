#include "bench/peak_memory.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "bench/readers.h"
#include "platform/file_system.h"
#include "testing/child_process.h"

namespace fernwick::bench {
namespace {

// The most that this process has had in memory so far, in bytes.
double HighWaterMark() {
  constexpr std::string_view Label = "VmHWM:";
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(Label)) return std::strtod(line.c_str() + Label.size(), nullptr) * 1024;
  }
  return 0;
}

}  // namespace

std::optional<double> PeakMemory(const std::string& program, std::string_view reader,
                                 const std::string& path) {
  const auto outcome = testing::RunChild({program, "--peak", std::string(reader), path}, "/");
  if (outcome.status != "0") return std::nullopt;
  return std::strtod(outcome.standardOutput.c_str(), nullptr);
}

int PrintPeakMemory(std::string_view name, const std::string& path) {
  const auto reader = std::ranges::find(Readers(), name, &Reader::name);
  auto file = ReadWholeFile(path);
  if (reader == Readers().end() || !file.bytes) return EXIT_FAILURE;
  const double before = HighWaterMark();
  reader->secondsToRead(std::move(*file.bytes));
  std::cout << HighWaterMark() - before << "\n";
  return EXIT_SUCCESS;
}

}  // namespace fernwick::bench
