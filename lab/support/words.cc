#include "lab/support/words.h"

#include <cinttypes>
#include <cstdio>
#include <type_traits>

#include "lab/support/messages.h"
#include "personality/personality.h"
#include "value/textual_dump.h"

namespace fernwick::lab {
namespace {

constexpr std::size_t MaxListLength = 8;

std::string WithHex(const PropertyValue& value) {
  const auto integer = value.AsInteger();
  auto text = PrintableText(DumpText(value));
  if (!integer || integer->IsNegative() || integer->Bits() < 10) return text;
  char hex[32];
  std::snprintf(hex, sizeof hex, " (0x%" PRIX64 ")", integer->Bits());
  return text + hex;
}

// `element` returns the text of an element that is neither an array nor a dictionary.
template <typename Element>
std::string ListText(const Array& list, Element element) {
  if (list.empty()) return "an empty array";
  if (list.size() > MaxListLength) return "an array of " + std::to_string(list.size());
  std::string text;
  for (const auto& each : list) {
    const bool isDeep = each.AsArray() || each.AsDictionary();
    text += (text.empty() ? "" : ", ") + (isDeep ? std::string(KindOf(each)) : element(each));
  }
  return "[" + text + "]";
}

template <typename Element>
std::string TextOf(const PropertyValue& value, Element element) {
  if (const auto list = value.AsArray()) return ListText(*list, element);
  if (value.AsDictionary()) return "a dictionary";
  return element(value);
}

struct KindVisitor {
  std::string_view operator()(const Dictionary&) const { return "a dictionary"; }
  std::string_view operator()(const Array&) const { return "an array"; }
  std::string_view operator()(std::string_view) const { return "a string"; }
  std::string_view operator()(const Integer&) const { return "an integer"; }
  std::string_view operator()(double) const { return "a real"; }
  std::string_view operator()(bool) const { return "a boolean"; }
  std::string_view operator()(const Data&) const { return "data"; }
  std::string_view operator()(const Date&) const { return "a date"; }
};

}  // namespace

std::vector<std::string_view> NamesOf(TypeSet types) {
  std::vector<std::string_view> names;
  for (const auto name : {PersonalityType::LegacyUsbc, PersonalityType::Usbc,
                          PersonalityType::LegacyThunderbolt, PersonalityType::Thunderbolt}) {
    if ((types & TypeNamed(name)) != 0) names.push_back(name);
  }
  return names;
}

std::string PersonalityName(TypeSet type, std::size_t index) {
  return type == Types::LegacyUsbc ? "the personality" : "personality " + std::to_string(index + 1);
}

std::string InlineText(const PropertyValue& value) {
  return TextOf(value,
                [](const PropertyValue& element) { return PrintableText(DumpText(element)); });
}

std::string InlineTextWithHex(const PropertyValue& value) {
  return TextOf(value, WithHex);
}

std::string_view WordsFor(KeyKind kind) {
  switch (kind) {
    case KeyKind::NotRead: return "nothing";
    case KeyKind::OneNumber: return "a number";
    case KeyKind::NumberOrList: return "a number or an array of numbers";
    case KeyKind::StringOrList: return "a string or an array of strings";
    case KeyKind::ListOfStrings: return "an array of strings";
    case KeyKind::FileName: return "a file name";
    case KeyKind::Priority: return "a number";
    case KeyKind::NvramDictionary: return "a dictionary";
    case KeyKind::NameList: break;
  }
  return "an array of names";
}

std::string_view KindOf(const PropertyValue& value) {
  return value.Visit([](const auto& each) { return KindVisitor()(each); });
}

std::string Counted(std::size_t count, std::string_view singular, std::string_view plural) {
  return std::to_string(count) + " " + std::string(count == 1 ? singular : plural);
}

}  // namespace fernwick::lab
