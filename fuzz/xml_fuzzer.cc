// The XML reader, whatever a file begins with.

#include <string>

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "value/unicode/source_text.h"
#include "value/xml/reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace fernwick;
  const auto source = DecodeSource(SourceBuffer(std::string(fuzz::InputText(data, size))));
  const auto outcome = ParseXmlPropertyList(source);
  fuzz::HoldReading(outcome.value, outcome.error);
  fuzz::HoldPlaceInText(outcome.error, source.text);
  return 0;
}
