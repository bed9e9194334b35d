// A recorded computer: what is refused, and that the registry of one that is not gives what was
// recorded.

#include <cstring>
#include <string>

#include "fuzz/hold.h"
#include "fuzz/input.h"
#include "fuzz/recording_properties.h"
#include "fuzz/same_value.h"
#include "fuzz/value_mutator.h"
#include "registry/recording_reader.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"

namespace fernwick::fuzz {
namespace {

// Whether it is read from XML or from binary makes no difference to a recording.
void HoldSameFromBinary(std::string_view bytes, const RecordingReading& recording) {
  const auto reading = ReadPropertyList(std::string(bytes));
  if (!reading.value || reading.serialisation == Serialisation::Text || !IsSmall(*reading.value)) {
    return;
  }
  const auto again = ReadRecording(WriteBinaryPropertyList(*reading.value));
  Hold(again.error == recording.error, "both serialisations give one error");
  if (!recording.recording) return;
  Hold(again.recording->planes == recording.recording->planes, "both give the same planes");
  Hold(again.recording->superclasses == recording.recording->superclasses, "and the same classes");
}

void TestRecording(std::string_view bytes) {
  const auto reading = ReadRecording(std::string(bytes));
  Hold(reading.recording.has_value() == reading.error.empty(), "there is a recording or an error");
  HoldSameFromBinary(bytes, reading);
  if (!reading.recording) return;
  HoldWellFormed(*reading.recording);
  HoldOperations(*reading.recording);
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fernwick::fuzz::TestRecording(fernwick::fuzz::InputText(data, size));
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
  using namespace fernwick::fuzz;
  ValueMutator mutator(seed);
  const auto bytes = InputText(data, size);
  mutator.ShowPropertyList(bytes);
  const auto mutated = MutatePropertyList(bytes, capacity, mutator);
  std::memcpy(data, mutated.data(), mutated.size());
  return mutated.size();
}
