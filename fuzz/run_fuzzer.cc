// A whole run: fuzz/packed_run.h tells how an input holds one.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "driver/options.h"
#include "fuzz/abnormal_end.h"
#include "fuzz/foreseen_fault.h"
#include "fuzz/hold.h"
#include "fuzz/input.h"
#include "fuzz/matching_properties.h"
#include "fuzz/packed_run.h"
#include "fuzz/payload.h"
#include "fuzz/run_properties.h"
#include "fuzz/same_value.h"
#include "fuzz/standard_error.h"
#include "fuzz/value_mutator.h"
#include "personality/configuration.h"
#include "registry/board_identity.h"
#include "registry/recording_reader.h"
#include "testing/command_line.h"
#include "value/property_list_reader.h"

namespace fernwick::fuzz {
namespace {

using Arguments = std::vector<std::string>;

Options OptionsOf(const Arguments& arguments) {
  const testing::CommandLine commandLine(arguments);
  return ParseOptions(commandLine.Count(), commandLine.Vector());
}

// A command line that is rejected loads none.
std::optional<PropertyValue> ConfigurationFor(const Recording& recording, const Options& options) {
  if (!options.accepted) return std::nullopt;
  RecordedRegistry registry(recording);
  return LoadPersonalityConfiguration(ReadBoardIdString(registry), options.personalitiesDirectory);
}

// Runs the tool twice, unless it is foreseen to end abnormally.
std::optional<RunOutcome> TryRun(const Recording& recording, const Arguments& arguments,
                                 const Outlook& outlook) {
  if (!outlook.fault.empty()) {
    HoldAbnormalEnd([&] { RunTool(recording, arguments); }, outlook.fault);
    return std::nullopt;
  }
  auto outcome = RunTool(recording, arguments);
  Hold(RunTool(recording, arguments) == outcome, "a run that is repeated gives the same");
  return outcome;
}

void TestRun(const Recording& recording, const Arguments& arguments) {
  const auto options = OptionsOf(arguments);
  const auto configuration = ConfigurationFor(recording, options);
  RunRequest request{options.accepted, options.verbose,
                     configuration ? configuration->AsDictionary() : nullptr};
  const auto outlook = ForeseeRun(recording, request);
  const auto outcome = TryRun(recording, arguments, outlook);
  if (outcome && !outlook.isBypassed && request.configuration != nullptr) {
    HoldMatching(recording, *options.personalitiesDirectory, *request.configuration);
  }
  request.verbose = true;
  Arguments verboseArguments = arguments;
  verboseArguments.insert(verboseArguments.begin(), "-v");
  const auto verbose = TryRun(recording, verboseArguments, ForeseeRun(recording, request));
  if (outcome && verbose) HoldOutcomes(*outcome, *verbose, outlook.isBypassed);
}

void TestPackedRun(std::string_view input) {
  static Payload payload;
  const auto run = Unpack(input);
  const auto reading = ReadRecording(std::string(run.recording));
  if (!reading.recording) return;
  TakeStandardError();
  payload.Configure(run.configuration);
  RecordedRegistry registry(*reading.recording);
  if (const auto boardId = ReadBoardIdString(registry)) payload.AddBoard(*boardId);
  TestRun(*reading.recording, WordsOf(run.options, payload.Path()));
}

std::string MutateOptions(std::string_view options, ValueMutator& mutator) {
  constexpr std::string_view Words[] = {"-v", "-X", "-s", "-p @", "--payload=@", "--bypassVersion"};
  constexpr std::size_t LongestOptions = 256;
  if (mutator.Pick(2) == 0) return MutatedBytes(options, LongestOptions);
  const auto word = Words[mutator.Pick(std::size(Words))];
  return mutator.Pick(4) == 0 ? std::string(word) : std::string(options).append(" ").append(word);
}

std::string MutateRun(std::string_view input, std::size_t capacity, ValueMutator& mutator) {
  auto run = Unpack(input);
  std::string mutated;
  switch (mutator.Pick(8)) {
    case 0: return MutatedBytes(input, capacity);
    case 1:
      mutated = MutateOptions(run.options, mutator);
      std::ranges::replace(mutated, '\n', ' ');
      run.options = mutated;
      break;
    case 2:
    case 3:
    case 4:
      mutated = MutatePropertyList(run.recording, capacity, mutator);
      run.recording = mutated;
      break;
    default:
      mutated = MutatePropertyList(run.configuration, capacity, mutator);
      run.configuration = mutated;
  }
  auto packed = Pack(run);
  return packed.size() <= capacity ? packed : MutatedBytes(input, capacity);
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fernwick::fuzz::TestPackedRun(fernwick::fuzz::InputText(data, size));
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
  using namespace fernwick::fuzz;
  ValueMutator mutator(seed);
  const auto input = InputText(data, size);
  const auto run = Unpack(input);
  mutator.ShowPropertyList(run.recording);
  mutator.ShowPropertyList(run.configuration);
  const auto mutated = MutateRun(input, capacity, mutator);
  std::memcpy(data, mutated.data(), mutated.size());
  return mutated.size();
}
