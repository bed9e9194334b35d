// A whole run: fuzz/packed_run.h says how an input contains one.

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/matching_properties.h"
#include "fuzz/packed_run.h"
#include "fuzz/payload.h"
#include "fuzz/require.h"
#include "fuzz/run_properties.h"
#include "fuzz/value_mutator.h"
#include "registry/board_identity.h"
#include "registry/recording_reader.h"

namespace fernwick::fuzz {
namespace {

using Arguments = std::vector<std::string>;

void TestRun(const Recording& recording, const Arguments& arguments) {
  const auto options = OptionsOf(arguments);
  RecordedRegistry registry(recording);
  StringConsole console;
  const auto result = Run(options, registry, console);
  const auto outcome = OutcomeOf(result, console);
  RunTrace trace;
  Require(RunTool(registry, options, &trace) == outcome, "a run that is traced ends the same");

  Arguments verboseArguments = arguments;
  verboseArguments.insert(verboseArguments.begin(), "-v");
  const auto verbose = RunTool(registry, OptionsOf(verboseArguments));
  CheckOutcomes(outcome, verbose, result.bypassesUpdates);

  const auto configuration =
      result.configuration ? result.configuration->value.AsDictionary() : std::nullopt;
  if (configuration) CheckMatching(recording, *options.personalitiesDirectory, *configuration);
}

void TestPackedRun(std::string_view input) {
  static Payload payload;
  const auto run = Unpack(input);
  const auto recording = ReadRecording(std::string(run.recording));
  if (!recording) return;
  payload.Configure(run.configuration);
  RecordedRegistry registry(*recording);
  if (const auto boardId = ReadBoardIdString(registry)) payload.AddBoard(*boardId);
  TestRun(*recording, WordsOf(run.options, payload.Path()));
}

std::string MutateOptions(std::string_view options, ValueMutator& mutator) {
  constexpr std::string_view Words[] = {"-v", "-X", "-s", "-p @", "--payload=@", "--bypassVersion"};
  constexpr std::size_t MaxOptionsSize = 256;
  if (mutator.Pick(2) == 0) return MutatedBytes(options, MaxOptionsSize);
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
