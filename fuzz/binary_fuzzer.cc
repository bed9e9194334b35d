// The reader of binary property lists.

#include <string>

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "value/binary/layout.h"
#include "value/binary/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick;
  const auto bytes = fuzz::InputText(data, size);
  if (!bytes.starts_with(BinarySignature)) return 0;
  const auto outcome = ParseBinaryPropertyList(SourceBuffer(std::string(bytes)));
  fuzz::HoldReading(outcome.value, outcome.error);
  fuzz::HoldPlaceInFile(outcome.error, size);
  return 0;
}
