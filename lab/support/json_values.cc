// A recursive JSON printer, for documents of Json and for property lists as they are. Text is
// passed on in parts, and the indentation is bounded: memory and output are linear in the value,
// however deep it is nested.

#include "lab/support/json_values.h"

#include <algorithm>
#include <cmath>

#include "lab/support/messages.h"
#include "value/calendar_date.h"
#include "value/number_text.h"
#include "value/unicode/utf8.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t Step = 2;
constexpr std::size_t PartSize = std::size_t{1} << 16;

std::string Hexadecimal(std::string_view bytes) {
  constexpr std::string_view Digits = "0123456789abcdef";
  std::string text;
  text.reserve(2 * bytes.size());
  for (const char byte : bytes) {
    text.push_back(Digits[static_cast<unsigned char>(byte) >> 4]);
    text.push_back(Digits[static_cast<unsigned char>(byte) & 0xF]);
  }
  return text;
}

struct ToJsonVisitor {
  Json operator()(const Dictionary& dictionary) const {
    Json::object_t object;  // its own lookup would walk it for every key
    object.reserve(dictionary.Size());
    for (const auto& [key, value] : dictionary.Entries()) {
      object.emplace_back(std::string(key), ToJson(value));
    }
    return object;
  }

  Json operator()(const Array& array) const {
    auto list = Json::array();
    for (const auto& element : array) list.push_back(ToJson(element));
    return list;
  }

  Json operator()(const Integer& integer) const { return Json::parse(FormatInteger(integer)); }

  Json operator()(double real) const {
    if (!std::isfinite(real)) return {{"real", FormatReal(real)}};
    return real;
  }

  Json operator()(bool boolean) const { return boolean; }
  Json operator()(std::string_view string) const { return std::string(string); }
  Json operator()(const Data& data) const { return {{"data", Hexadecimal(data.bytes)}}; }
  Json operator()(const Date& date) const { return {{"date", FormatDate(date)}}; }
};

// The length of a character that JSON permits raw but a terminal or an editor acts on instead of
// showing it, at the start of the text, which is UTF-8; otherwise 0.
std::size_t ActingLength(std::string_view text) {
  if (text.starts_with('\x7F')) return 1;
  const auto [character, length] = DecodeUtf8(text);
  return length > 1 && ActsOnText(character) ? length : 0;
}

// Whether JSON has the text as it is, between quotes: nearly every text and every key of our own.
bool IsPlain(std::string_view text) {
  return std::ranges::all_of(
      text, [](char byte) { return byte >= ' ' && byte < '\x7F' && byte != '"' && byte != '\\'; });
}

// A number, a text or another value without others inside it.
std::string ScalarText(const Json& value) {
  const auto document = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < document.size(); ++i) {
    const auto byte = static_cast<unsigned char>(document[i]);
    if (byte < 0x7F) continue;
    const auto rest = std::string_view(document).substr(i);
    const auto length = ActingLength(rest);
    if (length == 0) continue;
    text.append(document, copied, i - copied);
    AppendUnicodeEscape(text, DecodeUtf8(rest).character);
    i += length - 1;
    copied = i + 1;
  }
  return text.append(document, copied);
}

class JsonPrinter {
 public:
  // `level` is that of the line on which the value begins; without lines everything is on one.
  JsonPrinter(bool hasLines, std::size_t level, const TextSink& sink)
      : hasLines_(hasLines), level_(level), sink_(sink) {}
  ~JsonPrinter() { sink_(text_); }
  JsonPrinter(const JsonPrinter&) = delete;
  JsonPrinter& operator=(const JsonPrinter&) = delete;

  void Print(const Json& value) {
    if (value.is_object()) {
      const auto& members = value.get_ref<const Json::object_t&>();
      return PrintAll('{', '}', members, [this](const auto& member) {
        PrintKey(member.first);
        Print(member.second);
      });
    }
    if (value.is_string()) return PrintText(value.get_ref<const std::string&>());
    if (!value.is_array()) return Append(ScalarText(value));
    PrintAll('[', ']', value.get_ref<const Json::array_t&>(),
             [this](const Json& element) { Print(element); });
  }

  void Print(const PropertyValue& value) {
    if (const auto dictionary = value.AsDictionary()) {
      return PrintAll('{', '}', dictionary->Entries(), [this](const DictionaryEntry& entry) {
        PrintKey(entry.key);
        Print(entry.value);
      });
    }
    const auto array = value.AsArray();
    if (!array) return Print(ToJson(value));
    PrintAll('[', ']', *array, [this](const PropertyValue& element) { Print(element); });
  }

 private:
  void PrintKey(std::string_view key) {
    PrintText(key);
    Append(hasLines_ ? ": " : ":");
  }

  void PrintText(std::string_view text) {
    if (!IsPlain(text)) return Append(ScalarText(Json(text)));
    text_ += '"';
    text_ += text;
    Append("\"");
  }

  template <typename Range, typename PrintOne>
  void PrintAll(char opening, char closing, const Range& range, PrintOne printOne) {
    text_ += opening;
    ++level_;
    bool isFirst = true;
    for (const auto& each : range) {
      if (!isFirst) text_ += ',';
      isFirst = false;
      BeginLine();
      printOne(each);
    }
    --level_;
    if (!isFirst) BeginLine();
    text_ += closing;
  }

  void BeginLine() {
    if (hasLines_) Append("\n" + JsonIndentation(level_));
  }

  void Append(std::string_view text) {
    text_ += text;
    if (text_.size() < PartSize) return;
    sink_(text_);
    text_.clear();
  }

  bool hasLines_;
  std::size_t level_;
  const TextSink& sink_;
  std::string text_;  // not passed on yet
};

template <typename Value>
std::string Printed(const Value& value, bool hasLines) {
  std::string text;
  const TextSink sink = [&](std::string_view part) { text += part; };
  JsonPrinter(hasLines, 0, sink).Print(value);
  return text + "\n";
}

}  // namespace

Json ToJson(const PropertyValue& value) {
  return value.Visit(ToJsonVisitor{});
}

Json ToJson(const PropertyValue* value) {
  return value == nullptr ? Json(nullptr) : ToJson(*value);
}

std::string JsonIndentation(std::size_t level) {
  constexpr std::size_t MaxLevels = 32;
  return std::string(Step * std::min(level, MaxLevels), ' ');
}

std::string PrintJson(const Json& json) {
  return Printed(json, true);
}

std::string PrintJsonRow(const Json& json) {
  return Printed(json, false);
}

void PrintJsonAt(std::size_t level, const Json& json, const TextSink& sink) {
  JsonPrinter(true, level, sink).Print(json);
}

void PrintJsonAt(std::size_t level, const PropertyValue& value, const TextSink& sink) {
  JsonPrinter(true, level, sink).Print(value);
}

}  // namespace fernwick::lab
