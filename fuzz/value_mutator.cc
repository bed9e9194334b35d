#include "fuzz/value_mutator.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <utility>

#include "fuzz/same_value.h"
#include "fuzz/sample_values.h"
#include "value/binary/writer.h"
#include "value/property_list_reader.h"
#include "value/xml/writer.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

namespace fernwick::fuzz {
namespace {

constexpr std::size_t MaxTextSize = 256;

// Calls `visit` with the value and everything in it.
template <typename Visit>
void ForEachPart(const PropertyValue& value, Visit visit) {
  visit(value);
  if (const auto array = value.AsArray()) {
    for (const auto& element : *array) ForEachPart(element, visit);
  }
  if (const auto dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) ForEachPart(entry.value, visit);
  }
}

// Converting from XML replaces what a property list cannot contain in a mutated text. A value that
// is nested too deeply results in an empty text.
std::string AsBinary(std::string xml) {
  const auto reading = ReadPropertyList(std::move(xml));
  return reading.list ? WriteBinaryPropertyList(reading.list->value) : std::string();
}

}  // namespace

ValueMutator::ValueMutator(unsigned seed)
    : random_(seed), values_(SampleValues()), keys_{"", "Key"} {}

void ValueMutator::ShowPropertyList(std::string_view bytes) {
  auto reading = ReadPropertyList(std::string(bytes));
  if (!reading.list || !IsSmall(reading.list->value)) return;
  shown_.push_back(*std::move(reading.list));
  ForEachPart(shown_.back().value, [this](const PropertyValue& part) {
    values_.push_back(part);
    const auto dictionary = part.AsDictionary();
    if (!dictionary) return;
    for (const auto& entry : dictionary->Entries()) keys_.push_back(entry.key);
  });
}

PropertyValue ValueMutator::Mutate(PropertyValue value) {
  for (std::size_t rounds = 1 + Pick(3); rounds > 0; --rounds) value = MutateOne(value);
  return value;
}

PropertyValue ValueMutator::MutateOne(const PropertyValue& value) {
  std::vector<const PropertyValue*> parts;
  ForEachPart(value, [&](const PropertyValue& part) { parts.push_back(&part); });
  return Replaced(value, parts[Pick(parts.size())]);
}

// A copy in which the part at `target` is another.
PropertyValue ValueMutator::Replaced(const PropertyValue& value, const PropertyValue* target) {
  if (&value == target) return Pick(4) == 0 ? AnyValue() : Changed(value);
  if (const auto array = value.AsArray()) {
    std::vector<PropertyValue> copy;
    for (const auto& element : *array) copy.push_back(Replaced(element, target));
    return ArrayOf(copy);
  }
  if (const auto dictionary = value.AsDictionary()) {
    std::vector<DictionaryEntry> copy;
    for (const auto& entry : dictionary->Entries()) {
      copy.push_back({entry.key, Replaced(entry.value, target)});
    }
    return DictionaryOf(copy);
  }
  return value;
}

PropertyValue ValueMutator::Changed(const PropertyValue& value) {
  if (const auto dictionary = value.AsDictionary()) return ChangedDictionary(*dictionary);
  if (const auto array = value.AsArray()) return ChangedArray(*array);
  if (const auto text = value.AsString()) return ChangedText(*text);
  if (const auto bytes = value.AsData()) return Data{ChangedText(*bytes)};
  if (const auto integer = value.AsInteger()) {
    const auto bits = static_cast<std::int64_t>(integer->Bits());
    const std::int64_t numbers[] = {bits ^ (std::int64_t{1} << Pick(63)), bits >> 1, -1, 0, 1};
    return numbers[Pick(std::size(numbers))];
  }
  if (const auto real = value.AsReal()) return *real + (Pick(2) == 0 ? 0.01 : -1.0);
  if (const auto boolean = value.AsBoolean()) return !*boolean;
  return AnyValue();
}

PropertyValue ValueMutator::ChangedDictionary(Dictionary dictionary) {
  const auto entries = dictionary.Entries();
  std::vector<DictionaryEntry> copy(entries.begin(), entries.end());
  if (entries.empty() || Pick(2) == 0) {
    copy.push_back({AnyKey(), AnyValue()});
    return DictionaryOf(copy);
  }
  const auto chosen = Pick(copy.size());
  switch (Pick(3)) {
    case 0: copy[chosen].key = AnyKey(); break;
    case 1: std::swap(copy[chosen], copy[Pick(copy.size())]); break;
    default: copy.erase(copy.begin() + static_cast<std::ptrdiff_t>(chosen));
  }
  return DictionaryOf(copy);
}

PropertyValue ValueMutator::ChangedArray(Array array) {
  std::vector<PropertyValue> copy(array.begin(), array.end());
  if (copy.empty() || Pick(3) == 0) {
    copy.push_back(AnyValue());
    return ArrayOf(copy);
  }
  const auto chosen = Pick(copy.size());
  switch (Pick(3)) {
    case 0: copy.push_back(PropertyValue(copy[chosen])); break;
    case 1: std::swap(copy[chosen], copy[Pick(copy.size())]); break;
    default: copy.erase(copy.begin() + static_cast<std::ptrdiff_t>(chosen));
  }
  return ArrayOf(copy);
}

Array ValueMutator::ArrayOf(const std::vector<PropertyValue>& elements) {
  return arena_.Copy(std::span(elements));
}

Dictionary ValueMutator::DictionaryOf(std::vector<DictionaryEntry>& entries) {
  return arena_.Copy(std::span<const DictionaryEntry>(WithoutRepeatedKeys(entries)));
}

std::string_view ValueMutator::ChangedText(std::string_view text) {
  if (Pick(3) == 0) return AnyKey();
  return arena_.Copy(MutatedBytes(text, MaxTextSize));
}

std::string MutatedBytes(std::string_view bytes, std::size_t capacity) {
  std::string buffer(bytes.substr(0, capacity));
  const std::size_t size = buffer.size();
  buffer.resize(capacity);
  buffer.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(buffer.data()), size, capacity));
  return buffer;
}

std::string MutatePropertyList(std::string_view bytes, std::size_t capacity,
                               ValueMutator& mutator) {
  if (mutator.Pick(8) == 0) return MutatedBytes(bytes, capacity);
  const auto reading = ReadPropertyList(std::string(bytes));
  if (!reading.list || !IsSmall(reading.list->value)) return MutatedBytes(bytes, capacity);
  auto written = WriteXmlPropertyList(mutator.Mutate(reading.list->value));
  if (reading.serialisation == Serialisation::Binary) written = AsBinary(std::move(written));
  return written.size() <= capacity ? written : MutatedBytes(bytes, capacity);
}

}  // namespace fernwick::fuzz
