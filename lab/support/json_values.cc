#include "lab/support/json_values.h"

#include <cmath>
#include <string_view>

#include "value/calendar_date.h"
#include "value/number_text.h"

namespace fernwick::lab {
namespace {

std::string Hexadecimal(std::string_view bytes) {
  constexpr std::string_view Digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text.push_back(Digits[static_cast<unsigned char>(byte) >> 4]);
    text.push_back(Digits[static_cast<unsigned char>(byte) & 0xF]);
  }
  return text;
}

struct ToJsonVisitor {
  Json operator()(const Dictionary& dictionary) const {
    Json::object_t object;  // its own lookup would walk it for every key
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

bool IsControlCharacter(unsigned char byte, bool isTwoBytes) {
  return byte == 0x7F || (isTwoBytes && byte <= 0x9F);
}

// Indents further lines, and escapes U+007F to U+009F: JSON permits them raw, a terminal acts on
// them.
std::string Finished(std::string_view document, std::size_t indentation) {
  std::string text;
  text.reserve(document.size());
  std::size_t copied = 0;
  for (std::size_t i = 0; i < document.size(); ++i) {
    const bool isTwoBytes = document[i] == '\xC2' && i + 1 < document.size();
    const auto last = static_cast<unsigned char>(document[isTwoBytes ? i + 1 : i]);
    const bool isControl = IsControlCharacter(last, isTwoBytes);
    if (!isControl && document[i] != '\n') continue;
    text.append(document, copied, i - copied);
    if (!isControl) text.append("\n").append(indentation, ' ');
    if (isControl) text += last == 0x7F ? "\\u007f" : "\\u00" + Hexadecimal({&document[i + 1], 1});
    if (isControl && isTwoBytes) ++i;
    copied = i + 1;
  }
  return text.append(document, copied);
}

std::string Print(const Json& json, int step, std::size_t indentation = 0) {
  return Finished(json.dump(step, ' ', false, Json::error_handler_t::replace), indentation);
}

}  // namespace

Json ToJson(const PropertyValue& value) {
  return value.Visit(ToJsonVisitor{});
}

Json ToJson(const PropertyValue* value) {
  return value == nullptr ? Json(nullptr) : ToJson(*value);
}

std::string PrintJson(const Json& json) {
  return Print(json, 2) + "\n";
}

std::string PrintJsonInside(const Json& json, std::size_t indentation) {
  return Print(json, 2, indentation);
}

std::string PrintJsonRow(const Json& json) {
  return Print(json, -1) + "\n";
}

}  // namespace fernwick::lab
