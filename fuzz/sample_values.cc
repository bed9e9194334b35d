#include "fuzz/sample_values.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "testing/property_values.h"
#include "value/calendar_date.h"
#include "value/number_text.h"

namespace fernwick::fuzz {
namespace {

using testing::Bytes;
using testing::DateOf;

std::vector<PropertyValue> SampleLeaves() {
  using Limits = std::numeric_limits<double>;
  return {
      true,
      false,
      0,
      -1,
      255,
      65536,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::uint64_t>::max(),
      0.5,
      -0.0,
      41.050000000999994,
      Limits::max(),
      Limits::denorm_min(),
      -Limits::infinity(),
      Limits::quiet_NaN(),
      "",
      "Zed-42",
      "a < b & \"c\" > 'd'\r\n\t",
      "\u00E9\u2026\U0001F600\uFFFD",
      Bytes(""),
      Bytes(std::string_view("\0\x7F\xFF", 3)),
      Bytes("forty-two bytes of data, more than a few.."),
      DateOf("0001-01-01T00:00:00Z"),
      DateOf("2026-11-20T12:34:56Z"),
      DateOf("9999-12-31T23:59:59Z"),
  };
}

// Strings, data and what holds them are all that the old text form knows.
class TextWriter {
 public:
  void Write(const PropertyValue& value) {
    value.Visit([this](const auto& content) { WriteContent(content); });
  }

  const std::string& Text() const { return text_; }

 private:
  void WriteContent(const Dictionary& dictionary) {
    text_ += "{ ";
    for (const auto& [key, value] : dictionary.Entries()) {
      WriteQuoted(key.View());
      text_ += " = ";
      Write(value);
      text_ += ";\n";
    }
    text_ += "}";
  }

  void WriteContent(const Array& array) {
    text_ += "( ";
    for (const auto& element : array) {
      Write(element);
      text_ += ",\n";
    }
    text_ += ")";
  }

  void WriteContent(const Data& data) {
    text_ += '<';
    for (const char byte : data.bytes.View()) {
      constexpr char Digits[] = "0123456789abcdef";
      text_.append({Digits[(byte >> 4) & 0xF], Digits[byte & 0xF]});
    }
    text_ += '>';
  }

  void WriteContent(const String& string) { WriteQuoted(string.text.View()); }
  void WriteContent(const Date& date) { text_ += FormatDate(date); }
  void WriteContent(const Integer& integer) { text_ += FormatInteger(integer); }
  void WriteContent(double real) { WriteQuoted(FormatReal(real)); }
  void WriteContent(bool boolean) { text_ += boolean ? "YES" : "NO"; }

  void WriteQuoted(std::string_view text) {
    text_ += '"';
    for (const char c : text) {
      if (c == '"' || c == '\\') text_ += '\\';
      text_ += c;
    }
    text_ += '"';
  }

  std::string text_;
};

}  // namespace

std::vector<PropertyValue> SampleValues() {
  auto values = SampleLeaves();
  Dictionary dictionary;
  for (const auto& leaf : values) dictionary.Set("Key " + std::to_string(dictionary.Size()), leaf);
  Array array(values.begin(), values.end());
  array.push_back(Array{});
  array.push_back(Dictionary{});
  array.push_back(Dictionary{{"Nested", Array{1, Array{2, Dictionary{{"\u00E9", dictionary}}}}}});
  values.push_back(std::move(dictionary));
  values.push_back(std::move(array));
  return values;
}

PropertyValue SampleRecording() {
  const Dictionary properties{{"UID", 1}, {"Depth", 0}, {"Route String", 0}};
  const Dictionary first{{"Name", "Ridge"}, {"Class", "Left"}, {"ID", "1"}};
  const Dictionary second{{"Name", "Ridge"}, {"Class", "Side"}, {"Properties", properties}};
  const Dictionary services{{"ID", "root"}, {"Children", Array{first, second}}};
  const Dictionary link{{"Link", "root"}, {"Children", Array{Dictionary{{"Link", "1"}}}}};
  const Dictionary tree{{"Name", "tree"}, {"Children", Array{link}}};
  return Dictionary{
      {"Recording Version", 1},
      {"Classes", Dictionary{{"Left", "Side"}, {"Side", "IOThunderboltSwitch"}}},
      {"Planes", Dictionary{{"IOService", services}, {"IODeviceTree", tree}}},
  };
}

std::string WriteTextForm(const PropertyValue& value) {
  TextWriter writer;
  writer.Write(value);
  return writer.Text();
}

}  // namespace fernwick::fuzz
