// The one reader of property lists, which detects what it reads: that it detects it by the rule,
// and gives what the reader of that serialisation gives.

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "fuzz/hold.h"
#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "fuzz/same_value.h"
#include "value/binary/reader.h"
#include "value/property_list_reader.h"
#include "value/text/reader.h"
#include "value/unicode/source_text.h"
#include "value/xml/reader.h"

namespace fernwick::fuzz {
namespace {

// The name of the element that `text` opens or would open; empty when it opens none.
std::string_view OpenedElement(std::string_view text) {
  if (!text.starts_with('<')) return {};
  text.remove_prefix(1);
  return text.substr(0, text.find_first_of(" \t\r\n>/"));
}

// The rule of detection, spelled anew.
Serialisation SerialisationOf(std::string_view file, std::string_view text) {
  if (file.empty()) return Serialisation::None;
  if (file.substr(0, 7) == "bplist0") return Serialisation::Binary;
  while (!text.empty() && std::string_view(" \t\r\n").find(text.front()) != text.npos) {
    text.remove_prefix(1);
  }
  for (const std::string_view opening : {"<?xml", "<!DOCTYPE", "<!--", "<plist"}) {
    if (text.substr(0, opening.size()) == opening) return Serialisation::Xml;
  }
  const auto element = OpenedElement(text);
  for (const std::string_view name :
       {"dict", "key", "array", "string", "integer", "real", "true", "false", "data", "date"}) {
    if (element == name) return Serialisation::Xml;
  }
  return Serialisation::Text;
}

ParseOutcome ReadAs(Serialisation serialisation, const SourceBuffer& file,
                    const SourceText& source) {
  switch (serialisation) {
    case Serialisation::None: return {{}, "the file is empty"};
    case Serialisation::Text: return ParseTextPropertyList(source);
    case Serialisation::Xml: return ParseXmlPropertyList(source);
    case Serialisation::Binary: return ParseBinaryPropertyList(file);
  }
  return {};
}

void HoldPlace(const PropertyListReading& reading, std::size_t size, std::string_view text) {
  switch (reading.serialisation) {
    case Serialisation::None: return Hold(size == 0, "only an empty file has no serialisation");
    case Serialisation::Binary: return HoldPlaceInFile(reading.error, size);
    case Serialisation::Text:
    case Serialisation::Xml: return HoldPlaceInText(reading.error, text);
  }
}

void TestReader(std::string_view bytes) {
  const auto file = SourceBuffer(std::string(bytes));
  const auto source = DecodeSource(file);
  const auto reading = ReadPropertyList(std::string(bytes));
  Hold(reading.serialisation == SerialisationOf(bytes, source.text), "detection is by the rule");
  HoldReading(reading.value, reading.error);
  HoldPlace(reading, bytes.size(), source.text);
  const auto direct = ReadAs(reading.serialisation, file, source);
  Hold(direct.error == reading.error, "both readers give one error");
  if (reading.value && IsSmall(*reading.value)) {
    Hold(SameValue(*direct.value, *reading.value), "both readers give one value");
  }
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fernwick::fuzz::TestReader(fernwick::fuzz::InputText(data, size));
  return 0;
}
