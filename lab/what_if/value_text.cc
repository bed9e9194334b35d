// The first characters decide the form; each is then parsed by the readers of property lists, so
// that the same values are valid as in files. Linear.

#include "lab/what_if/value_text.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "value/xml/writer.h"

namespace fernwick::lab {
namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view Digits = "0123456789";

std::string_view Trimmed(std::string_view text) {
  const auto begin = text.find_first_not_of(Blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(Blanks) - begin + 1);
}

// Removes the longest prefix of such characters and returns its length.
std::size_t Skip(std::string_view& text, std::string_view characters) {
  const auto length = std::min(text.find_first_not_of(characters), text.size());
  text.remove_prefix(length);
  return length;
}

void SkipSign(std::string_view& text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
}

bool IsInteger(std::string_view text) {
  SkipSign(text);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  return Skip(text, isHexadecimal ? "0123456789abcdefABCDEF" : Digits) > 0 && text.empty();
}

// As files have hexadecimal integers.
std::string WithSmallX(std::string_view integer) {
  std::string text(integer);
  std::ranges::replace(text, 'X', 'x');
  return text;
}

// Not "nan" and "infinity", which are texts like any other.
bool IsReal(std::string_view text) {
  SkipSign(text);
  std::size_t digits = Skip(text, Digits);
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    digits += Skip(text, Digits);
  }
  if (digits == 0) return false;
  if (!text.starts_with('e') && !text.starts_with('E')) return text.empty();
  text.remove_prefix(1);
  SkipSign(text);
  return Skip(text, Digits) > 0 && text.empty();
}

std::string Element(const char* name, std::string_view content) {
  return "<" + std::string(name) + ">" + std::string(content) + "</" + name + ">";
}

// As the old text form has it.
std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

// The location in a text of this command's own making is of no use.
Result<PropertyList> Read(std::string bytes, std::string_view written) {
  auto reading = ReadPropertyList(std::move(bytes));
  if (reading.list) return *std::move(reading.list);
  return Error{.message = std::string(written) + ": " + reading.list.Error().message};
}

Result<PropertyList> ReadScalar(std::string_view text) {
  if (text == "true" || text == "false") return Read("<" + std::string(text) + "/>", text);
  if (IsInteger(text)) return Read(Element("integer", WithSmallX(text)), text);
  if (IsReal(text)) return Read(Element("real", text), text);
  if (text.starts_with('"') || text.starts_with('<')) {
    auto list = Read(std::string(text), text);
    const bool isText = text.starts_with('"');
    if (list && isText && !list->value.AsString()) {
      return Error{.message = std::string(text) + ": there is more after the text in quotes"};
    }
    return list;
  }
  return Read(Quoted(text), text);
}

// The index after the element that begins at `begin`: of a comma outside quotes, or the end.
std::size_t EndOfElement(std::string_view text, std::size_t begin) {
  bool isQuoted = false;
  for (std::size_t i = begin; i < text.size(); ++i) {
    if (isQuoted && text[i] == '\\') {
      ++i;
    } else if (text[i] == '"') {
      isQuoted = !isQuoted;
    } else if (text[i] == ',' && !isQuoted) {
      return i;
    }
  }
  return text.size();
}

// The same value in an arena of its own.
PropertyList OfOneOwner(const PropertyValue& value) {
  std::string bytes;
  WriteXmlPropertyList(value, 0, [&](std::string_view text) { bytes += text; });
  return *std::move(ReadPropertyList(std::move(bytes)).list);
}

// `text` is what is between the parentheses.
Result<PropertyList> ReadArray(std::string_view text) {
  std::vector<PropertyList> owners;
  std::vector<PropertyValue> elements;
  std::size_t begin = Trimmed(text).empty() ? text.size() + 1 : 0;
  while (begin <= text.size()) {
    const auto end = EndOfElement(text, begin);
    const auto written = Trimmed(text.substr(begin, end - begin));
    if (written.empty()) return Error{.message = "an element of the list is missing"};
    if (written.starts_with('(')) {
      return Error{.message = "a list in a list can only be written in XML"};
    }
    auto element = ReadScalar(written);
    if (!element) return element.Error();
    elements.push_back(element->value);
    owners.push_back(*std::move(element));
    begin = end + 1;
  }
  return OfOneOwner(Array(elements));
}

}  // namespace

Result<PropertyList> ParseValueText(std::string_view text) {
  if (text.starts_with('(') && text.ends_with(')')) {
    return ReadArray(text.substr(1, text.size() - 2));
  }
  return ReadScalar(text);
}

std::optional<Error> TextFault(std::string_view text) {
  auto read = Read(Quoted(text), text);
  return read ? std::nullopt : std::optional(read.Error());
}

}  // namespace fernwick::lab
