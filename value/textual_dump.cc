#include "value/textual_dump.h"

#include <algorithm>
#include <string_view>

#include "value/calendar_date.h"
#include "value/number_text.h"
#include "value/unicode/printable.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char HexDigits[] = "0123456789abcdef";

// Text is passed on when there is so much of it.
constexpr std::size_t PartSize = std::size_t{1} << 16;

class Dumper {
 public:
  Dumper(const DumpLayout& layout, const TextSink& sink) : layout_(layout), sink_(sink) {}

  void Dump(const PropertyValue& value) {
    value.Visit([this](const auto& content) { DumpContent(content); });
  }

  void Finish() { sink_(text_); }

 private:
  void DumpContent(Dictionary dictionary) {
    if (dictionary.Size() == 0) {
      text_ += "{}";
      return;
    }
    text_ += "{\n";
    ++level_;
    for (const auto& [key, value] : dictionary.Entries()) {
      Indent();
      Quote(key);
      text_ += " = ";
      Dump(value);
      text_ += ";\n";
    }
    CloseWith('}');
  }

  void DumpContent(Array array) {
    if (array.empty()) {
      text_ += "()";
      return;
    }
    text_ += "(\n";
    ++level_;
    for (const auto& element : array) {
      Indent();
      Dump(element);
      text_ += &element + 1 == array.end() ? "\n" : ",\n";
    }
    CloseWith(')');
  }

  void DumpContent(std::string_view string) { Quote(string); }
  void DumpContent(const Integer& integer) { text_ += FormatInteger(integer); }
  void DumpContent(double real) { text_ += FormatReal(real); }
  void DumpContent(bool boolean) { text_ += boolean ? "true" : "false"; }
  void DumpContent(const Date& date) { text_ += FormatDate(date); }

  void DumpContent(const Data& data) {
    const auto bytes = data.bytes;
    text_ += '<';
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      if (i > 0 && i % 4 == 0) text_ += ' ';
      const auto byte = static_cast<unsigned char>(bytes[i]);
      text_ += HexDigits[byte >> 4];
      text_ += HexDigits[byte & 0xF];
    }
    text_ += '>';
  }

  void CloseWith(char bracket) {
    --level_;
    Indent();
    text_ += bracket;
  }

  // Begins a line.
  void Indent() {
    if (text_.size() >= PartSize) {
      sink_(text_);
      text_.clear();
    }
    text_.append(layout_.indentation + 4 * std::min(level_, layout_.maxLevels), ' ');
  }

  void Quote(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
      const auto [character, length] = DecodeUtf8(text);
      AppendEscaped(length == 0 ? ReplacementCharacter : character);
      text.remove_prefix(length == 0 ? 1 : length);
    }
    text_ += '"';
  }

  void AppendEscaped(char32_t character) {
    switch (character) {
      case '"': text_ += "\\\""; break;
      case '\\': text_ += "\\\\"; break;
      case '\n': text_ += "\\n"; break;
      case '\t': text_ += "\\t"; break;
      case '\r': text_ += "\\r"; break;
      default:
        IsControlCharacter(character) ? AppendOctalEscape(text_, character)
                                      : AppendUtf8(text_, character);
    }
  }

  const DumpLayout layout_;
  const TextSink& sink_;
  std::string text_;  // not passed on yet
  std::size_t level_ = 0;
};

}  // namespace

std::string DumpText(const PropertyValue& value) {
  std::string text;
  DumpText(value, {}, [&](std::string_view part) { text += part; });
  return text;
}

void DumpText(const PropertyValue& value, const DumpLayout& layout, const TextSink& sink) {
  Dumper dumper(layout, sink);
  dumper.Dump(value);
  dumper.Finish();
}

}  // namespace fernwick
