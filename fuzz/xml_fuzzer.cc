// The XML reader, whatever a file begins with.

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "value/unicode/source_text.h"
#include "value/xml/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick;
  Arena arena;
  const auto source = DecodeSource(fuzz::InputText(data, size), arena);
  const auto reading = ParseXmlPropertyList(source, arena);
  fuzz::CheckReading(reading);
  fuzz::CheckLocationInText(reading, source.text);
  return 0;
}
