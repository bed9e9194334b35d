#include "testing/golden_case.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fernwick::testing {

std::vector<std::string> GoldenCase::ToolArguments() const {
  auto arguments = options;
  if (!payload.empty()) arguments.insert(arguments.end(), {"-p", payload});
  return arguments;
}

GoldenCase ReadGoldenCase(const std::filesystem::path& file) {
  GoldenCase described{.name = file.stem().string(), .recording = {}, .options = {}, .payload = {}};
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') continue;
    const auto colon = line.find(": ");
    const auto key = line.substr(0, colon);
    const auto value = colon == std::string::npos ? "" : line.substr(colon + 2);
    if (key == "recording") {
      described.recording = value;
    } else if (key == "payload") {
      described.payload = value;
    } else if (key == "argument") {
      described.options.push_back(value);
    } else if (key == "options") {
      std::istringstream words(value);
      described.options.insert(described.options.end(), std::istream_iterator<std::string>(words),
                               {});
    } else {
      ADD_FAILURE() << file << ": what is \"" << line << "\"?";
    }
  }
  return described;
}

std::vector<GoldenCase> ReadGoldenCases(const std::filesystem::path& directory) {
  std::vector<GoldenCase> cases;
  for (const auto& file : std::filesystem::directory_iterator(directory)) {
    if (file.path().extension() == ".case") cases.push_back(ReadGoldenCase(file.path()));
  }
  std::ranges::sort(cases, {}, &GoldenCase::name);
  return cases;
}

}  // namespace fernwick::testing
