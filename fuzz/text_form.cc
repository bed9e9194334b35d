#include "fuzz/text_form.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "value/calendar_date.h"
#include "value/number_text.h"
#include "value/unicode/utf8.h"

namespace fernwick::fuzz {
namespace {

class TextWriter {
 public:
  void Write(const PropertyValue& value) {
    value.Visit([this](const auto& content) { WriteContent(content); });
  }

  const std::string& Text() const { return text_; }

 private:
  void WriteContent(Dictionary dictionary) {
    text_ += "{ ";
    for (const auto& [key, value] : dictionary.Entries()) {
      WriteQuoted(key);
      text_ += " = ";
      Write(value);
      text_ += ";\n";
    }
    text_ += "}";
  }

  void WriteContent(Array array) {
    text_ += "( ";
    for (const auto& element : array) {
      Write(element);
      text_ += ",\n";
    }
    text_ += ")";
  }

  void WriteContent(const Data& data) {
    text_ += '<';
    for (const char byte : data.bytes) Append("%02x", byte & 0xFF);
    text_ += '>';
  }

  void WriteContent(std::string_view string) { WriteQuoted(string); }
  void WriteContent(const Date& date) { WriteQuoted(FormatDate(date)); }
  void WriteContent(const Integer& integer) { WriteQuoted(FormatInteger(integer)); }
  void WriteContent(double real) { WriteQuoted(FormatReal(real)); }
  void WriteContent(bool boolean) { text_ += boolean ? "YES" : "NO"; }

  void WriteQuoted(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
      const auto [character, length] = DecodeUtf8(text);
      WriteCharacter(character);
      text.remove_prefix(length);
    }
    text_ += '"';
  }

  void WriteCharacter(char32_t character) {
    if (character > 0xFFFF) {
      Append("\\U%04x", 0xD800 + ((character - 0x10000) >> 10));
      Append("\\U%04x", 0xDC00 + ((character - 0x10000) & 0x3FF));
    } else if (character > 0xFF) {
      Append("\\U%04x", character);
    } else if (character < ' ' || character > '~' || character == '"' || character == '\\') {
      Append("\\%03o", character);
    } else {
      text_ += static_cast<char>(character);
    }
  }

  void Append(const char* format, unsigned number) {
    char code[16];
    std::snprintf(code, sizeof code, format, number);
    text_ += code;
  }

  std::string text_;
};

bool EntryFits(const DictionaryEntry& entry) {
  return FitsTextForm(entry.value);
}

}  // namespace

bool FitsTextForm(const PropertyValue& value) {
  if (const auto array = value.AsArray()) return std::ranges::all_of(*array, FitsTextForm);
  if (const auto dictionary = value.AsDictionary()) {
    return std::ranges::all_of(dictionary->Entries(), EntryFits);
  }
  return value.AsString() || value.AsData();
}

std::string WriteTextForm(const PropertyValue& value) {
  TextWriter writer;
  writer.Write(value);
  return writer.Text();
}

}  // namespace fernwick::fuzz
