// The reader that detects the serialisation: checks that it detects it by the rule
// and returns what the reader of that serialisation returns.

#include <string>
#include <string_view>

#include "fuzz/input.h"
#include "fuzz/reading_properties.h"
#include "fuzz/require.h"
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

// A second implementation of the detection.
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

Result<PropertyValue> ReadAs(Serialisation serialisation, std::string_view file,
                             const SourceText& source, Arena& arena) {
  switch (serialisation) {
    case Serialisation::None: break;
    case Serialisation::Text: return ParseTextPropertyList(source, arena);
    case Serialisation::Xml: return ParseXmlPropertyList(source, arena);
    case Serialisation::Binary: return ParseBinaryPropertyList(file, arena);
  }
  return Error{"the file is empty"};
}

void TestReader(std::string_view file) {
  Arena arena;
  const auto source = DecodeSource(file, arena);
  const auto reading = ReadPropertyList(std::string(file));
  Require(reading.serialisation == SerialisationOf(file, source.text), "detection is by the rule");
  const auto direct = ReadAs(reading.serialisation, file, source, arena);
  CheckReading(direct);
  if (reading.serialisation == Serialisation::Binary) {
    CheckLocationInFile(direct, file.size());
  } else if (reading.serialisation != Serialisation::None) {
    CheckLocationInText(direct, source.text);
  }
  Require(bool(direct) == bool(reading.list), "both readers return a value or both an error");
  if (!direct) {
    Require(direct.Error() == reading.list.Error(), "both readers return one error");
  } else if (IsSmall(*direct)) {
    Require(SameValue(*direct, reading.list->value), "both readers return one value");
  }
}

}  // namespace
}  // namespace fernwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fernwick::fuzz::TestReader(fernwick::fuzz::InputText(data, size));
  return 0;
}
