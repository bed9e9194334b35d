#include "value/xml/writer.h"

#include <algorithm>
#include <string_view>

#include "value/calendar_date.h"
#include "value/number_text.h"
#include "value/unicode/utf8.h"
#include "value/xml/base64.h"

namespace fernwick {
namespace {

// Text is passed on when there is so much of it.
constexpr std::size_t PartSize = std::size_t{1} << 16;

// Whether the byte is a character that is written as it is.
bool IsPlain(char byte) {
  return (byte >= ' ' && byte <= '~' && byte != '&' && byte != '<' && byte != '>') ||
         byte == '\n' || byte == '\t';
}

class XmlWriter {
 public:
  XmlWriter(std::size_t maxIndentation, const TextSink& sink)
      : maxIndentation_(maxIndentation), sink_(sink) {}

  void WriteDocument(const PropertyValue& value) {
    text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
    Write(value);
    text_ += "</plist>";
    sink_(text_);
  }

 private:
  void Write(const PropertyValue& value) {
    value.Visit([this](const auto& content) { WriteContent(content); });
  }

  void WriteContent(Dictionary dictionary) {
    if (dictionary.Size() == 0) return Line("<dict/>");
    Line("<dict>");
    ++indentation_;
    for (const auto& [key, value] : dictionary.Entries()) {
      Leaf("key", Escaped(key));
      Write(value);
    }
    --indentation_;
    Line("</dict>");
  }

  void WriteContent(Array array) {
    if (array.empty()) return Line("<array/>");
    Line("<array>");
    ++indentation_;
    for (const auto& element : array) Write(element);
    --indentation_;
    Line("</array>");
  }

  void WriteContent(std::string_view string) { Leaf("string", Escaped(string)); }
  void WriteContent(const Data& data) { Leaf("data", EncodeBase64(data.bytes)); }
  void WriteContent(const Date& date) { Leaf("date", FormatDate(date)); }
  void WriteContent(const Integer& integer) { Leaf("integer", FormatInteger(integer)); }
  void WriteContent(double real) { Leaf("real", FormatReal(real)); }
  void WriteContent(bool boolean) { Line(boolean ? "<true/>" : "<false/>"); }

  void Leaf(std::string_view name, std::string_view content) {
    Indent();
    text_.append("<").append(name).append(">").append(content);
    text_.append("</").append(name).append(">\n");
  }

  void Line(std::string_view content) {
    Indent();
    text_.append(content).append("\n");
  }

  // Begins a line.
  void Indent() {
    if (text_.size() >= PartSize) {
      sink_(text_);
      text_.clear();
    }
    text_.append(std::min(indentation_, maxIndentation_), '\t');
  }

  static std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (;;) {
      const auto* const special = std::ranges::find_if_not(text, IsPlain);
      const auto plain = static_cast<std::size_t>(special - text.begin());
      escaped.append(text.substr(0, plain));
      text.remove_prefix(plain);
      if (text.empty()) break;
      const auto [character, length] = DecodeUtf8(text);
      AppendEscaped(escaped, length == 0 ? ReplacementCharacter : character);
      text.remove_prefix(length == 0 ? 1 : length);
    }
    return escaped;
  }

  static void AppendEscaped(std::string& escaped, char32_t character) {
    switch (character) {
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      case '\r': escaped += "&#13;"; break;  // a bare one would be read as a line feed
      default: AppendUtf8(escaped, IsTextCharacter(character) ? character : ReplacementCharacter);
    }
  }

  const std::size_t maxIndentation_;
  const TextSink& sink_;
  std::string text_;  // not passed on yet
  std::size_t indentation_ = 0;
};

}  // namespace

std::string WriteXmlPropertyList(const PropertyValue& value) {
  std::string text;
  WriteXmlPropertyList(value, std::string::npos, [&](std::string_view part) { text += part; });
  return text;
}

void WriteXmlPropertyList(const PropertyValue& value, std::size_t maxIndentation,
                          const TextSink& sink) {
  XmlWriter(maxIndentation, sink).WriteDocument(value);
}

}  // namespace fernwick
