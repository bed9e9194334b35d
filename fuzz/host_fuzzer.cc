// A run on a computer: its files below a root directory, and a run over its recording, which must
// end the same. An input is that of fuzz/packed_run.h, with the files of the computer in place of
// the recording, as testing/host_tree.h describes them.

#include <cstring>
#include <string>
#include <vector>

#include "fuzz/host_lines.h"
#include "fuzz/input.h"
#include "fuzz/packed_run.h"
#include "fuzz/payload.h"
#include "fuzz/recording_properties.h"
#include "fuzz/require.h"
#include "fuzz/run_properties.h"
#include "lab/recordings/host_recording.h"
#include "registry/board_identity.h"
#include "registry/recording_reader.h"
#include "testing/host_tree.h"
#include "value/binary/writer.h"
#include "value/xml/writer.h"

namespace fernwick::fuzz {
namespace {

using lab::RecordedProperties;

RunOutcome RunOnHost(const std::string& root, const Options& options) {
  HostRegistry registry(root);
  return RunTool(registry, options);
}

void CheckRecording(std::string bytes, const std::string& root, const Options& options) {
  const auto recording = ReadRecording(std::move(bytes));
  Require(bool(recording), "what is recorded can be read");
  CheckWellFormed(*recording);
  RecordedRegistry registry(*recording);
  const auto outcome = RunTool(registry, options);
  Require(outcome == RunOnHost(root, options), "a run over the recording ends as on the computer");
}

void TestHost(std::string_view input) {
  static Payload payload;
  const auto run = Unpack(input);
  const testing::TemporaryDirectory directory;
  testing::UnfoldTree(run.recording, directory.Path());
  testing::UnfoldTree("proc/\nsys/\n", directory.Path());
  HostRegistry registry(directory.Path());
  if (!registry.RootError().empty()) return;  // both are files
  payload.Configure(run.configuration);
  if (const auto board = ReadBoardIdString(registry)) payload.AddBoard(*board);
  const auto options = OptionsOf(WordsOf(run.options, payload.Path()));
  for (const auto recorded : {RecordedProperties::ThoseOfTheTool, RecordedProperties::All}) {
    const auto list = RecordHost(registry, recorded);
    CheckRecording(WriteXmlPropertyList(list.value), directory.Path(), options);
    CheckRecording(WriteBinaryPropertyList(list.value), directory.Path(), options);
  }
  const auto outcome = RunOnHost(directory.Path(), options);
  Require(outcome.fault != Fault::MissingUid, "every controller has a unique id");
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fernwick::fuzz::TestHost(fernwick::fuzz::InputText(data, size));
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
  using namespace fernwick::fuzz;
  ValueMutator mutator(seed);
  const auto input = InputText(data, size);
  auto run = Unpack(input);
  const auto files = MutateHostLines(run.recording, capacity, mutator);
  run.recording = files;
  auto mutated = Pack(run);
  if (mutated.size() > capacity) mutated = MutatedBytes(input, capacity);
  std::memcpy(data, mutated.data(), mutated.size());
  return mutated.size();
}
