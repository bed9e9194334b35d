// The reader of binary property lists.

#include <string>

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "value/binary/layout.h"
#include "value/binary/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick;
  const auto file = fuzz::InputText(data, size);
  if (!file.starts_with(BinarySignature)) return 0;
  Arena arena;
  const auto reading = ParseBinaryPropertyList(file, arena);
  fuzz::CheckReading(reading);
  fuzz::CheckLocationInFile(reading, size);
  return 0;
}
