// A recorded computer: what is refused, and that the registry of one that is not returns what was
// recorded.

#include <cstring>
#include <string>

#include "fuzz/input.h"
#include "fuzz/recording_properties.h"
#include "fuzz/require.h"
#include "fuzz/same_value.h"
#include "fuzz/value_mutator.h"
#include "registry/recording_reader.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"

namespace fernwick::fuzz {
namespace {

// Whether it is read from XML or from binary makes no difference to a recording.
void CheckSameFromBinary(std::string_view bytes, const Result<Recording>& recording) {
  const auto reading = ReadPropertyList(std::string(bytes));
  if (!reading.list || reading.serialisation == Serialisation::Text ||
      !IsSmall(reading.list->value)) {
    return;
  }
  const auto again = ReadRecording(WriteBinaryPropertyList(reading.list->value));
  Require(bool(again) == bool(recording),
          "both serialisations return a recording or both an error");
  if (!recording) {
    return Require(again.Error() == recording.Error(), "both serialisations return one error");
  }
  Require(again->planes == recording->planes, "both return the same planes");
  Require(again->superclasses == recording->superclasses, "and the same classes");
}

void TestRecording(std::string_view bytes) {
  const auto recording = ReadRecording(std::string(bytes));
  CheckSameFromBinary(bytes, recording);
  if (!recording) return Require(!recording.Error().message.empty(), "an error has a message");
  CheckWellFormed(*recording);
  CheckOperations(*recording);
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
