// The reader of the old text form, whatever a file begins with.

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "value/text/reader.h"
#include "value/unicode/source_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick;
  Arena arena;
  const auto source = DecodeSource(fuzz::InputText(data, size), arena);
  const auto reading = ParseTextPropertyList(source, arena);
  fuzz::CheckReading(reading);
  fuzz::CheckLocationInText(reading, source.text);
  return 0;
}
