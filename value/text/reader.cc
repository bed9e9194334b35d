// Recursive descent, in one pass. The elements of an open array or dictionary are collected in a
// vector and copied into the arena when it is closed; strings are views of the text unless they
// have an escape. Linear, except for repeated keys (see property_value.cc).

#include "value/text/reader.h"

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "value/text/cursor.h"
#include "value/unicode/text_position.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

// Reads strings, quoted or not, and data. They view the text or the arena.
class TextLeaves {
 public:
  TextLeaves(TextCursor& cursor, Arena& arena) : cursor_(cursor), arena_(arena) {}

  bool ReadLeaf(PropertyValue& value) {
    std::string_view string;
    if (!cursor_.LookingAt('<')) {
      if (!ReadString(string, "a value")) return false;
      value = string;
      return true;
    }
    std::string bytes;
    if (!cursor_.ReadData(bytes)) return false;
    value = Data{arena_.Copy(bytes)};
    return true;
  }

  // `what` names in a message what was expected.
  bool ReadString(std::string_view& kept, const char* what) {
    if (!cursor_.LookingAtQuote()) {
      kept = cursor_.ReadUnquoted();
      if (!kept.empty()) return true;
      return cursor_.Fail(cursor_.Offset(), std::string(what) + " was expected");
    }
    std::string_view string;
    if (!cursor_.ReadQuoted(string, scratch_)) return false;
    kept = string.data() == scratch_.data() ? arena_.Copy(string) : string;
    return true;
  }

 private:
  TextCursor& cursor_;
  Arena& arena_;
  std::string scratch_;
};

Dictionary MakeDictionary(std::vector<DictionaryEntry>& entries, Arena& arena) {
  return arena.Copy(std::span<const DictionaryEntry>(WithoutRepeatedKeys(entries)));
}

using MaybeValue = std::optional<PropertyValue>;  // empty: the cursor has the fault

class TextPropertyListReader {
 public:
  TextPropertyListReader(std::string_view text, Arena& arena, LocationBuilder* locations)
      : text_(text), cursor_(text), leaves_(cursor_, arena), arena_(arena), locations_(locations) {}

  Result<PropertyValue> Read() {
    const auto value = ReadTopLevel();
    if (value) return *value;
    return ErrorAt(text_, cursor_.Fault().Offset(), cursor_.Fault().Message());
  }

 private:
  MaybeValue Fail(std::size_t offset, const char* message) {
    cursor_.Fail(offset, message);
    return std::nullopt;
  }

  MaybeValue ReadTopLevel() {
    if (!cursor_.SkipBlanks()) return std::nullopt;
    const std::size_t start = cursor_.Offset();
    if (cursor_.AtEnd()) return Fail(start, "nothing but white space and comments");
    if (cursor_.LookingAt('{') || cursor_.LookingAt('(') || cursor_.LookingAt('<')) {
      return ExpectEnd(ReadValue());
    }
    const bool isQuoted = cursor_.LookingAtQuote();
    std::string_view string;
    if (!leaves_.ReadString(string, "a value") || !cursor_.SkipBlanks()) return std::nullopt;
    BeginValue(start);
    if (cursor_.LookingAt('=')) return ReadBarePairs(start, string);
    EndValue();
    if (!isQuoted) {
      return cursor_.AtEnd() ? Fail(start, "one unquoted string is not a property list")
                             : Fail(cursor_.Offset(), "\"=\" was expected");
    }
    return ExpectEnd(string);
  }

  MaybeValue ExpectEnd(MaybeValue value) {
    if (!value || !cursor_.SkipBlanks()) return std::nullopt;
    if (!cursor_.AtEnd()) return Fail(cursor_.Offset(), "something follows the value");
    return value;
  }

  // "key = value;" pairs up to the end of the text, after their first key.
  MaybeValue ReadBarePairs(std::size_t start, std::string_view firstKey) {
    std::vector<DictionaryEntry> entries;
    nesting_ = 1;
    LocateKey(start, firstKey);
    if (!ReadPairs(firstKey, entries)) return std::nullopt;
    EndValue();
    return ExpectEnd(MakeDictionary(entries, arena_));
  }

  void BeginValue(std::size_t offset) {
    if (locations_ != nullptr) locations_->BeginValue(offset);
  }

  void EndValue() {
    if (locations_ != nullptr) locations_->EndValue();
  }

  void LocateKey(std::size_t offset, std::string_view key) {
    if (locations_ != nullptr) locations_->Key(key, offset);
  }

  MaybeValue ReadValue() {
    BeginValue(cursor_.Offset());
    auto value = ReadContents();
    if (value) EndValue();
    return value;
  }

  MaybeValue ReadContents() {
    const bool isDictionary = cursor_.LookingAt('{');
    if (isDictionary || cursor_.LookingAt('(')) {
      if (nesting_ == MaxNesting) return Fail(cursor_.Offset(), NestedTooDeeply);
      ++nesting_;
      const auto container = isDictionary ? ReadDictionary() : ReadArray();
      --nesting_;
      return container;
    }
    PropertyValue value;
    if (!leaves_.ReadLeaf(value)) return std::nullopt;
    return value;
  }

  MaybeValue ReadArray() {
    const std::size_t start = cursor_.Offset();
    cursor_.Consume('(');
    std::vector<PropertyValue> elements;
    for (;;) {
      if (!cursor_.SkipBlanks()) return std::nullopt;
      if (cursor_.Consume(')')) return Array(arena_.Copy(std::span<const PropertyValue>(elements)));
      if (cursor_.AtEnd()) return Fail(start, "an array does not end");
      auto value = ReadValue();
      if (!value || !cursor_.SkipBlanks()) return std::nullopt;
      elements.push_back(*value);
      if (!cursor_.Consume(',') && !cursor_.LookingAt(')') && !cursor_.AtEnd()) {
        return Fail(cursor_.Offset(), "\",\" or \")\" was expected");
      }
    }
  }

  MaybeValue ReadDictionary() {
    const std::size_t start = cursor_.Offset();
    cursor_.Consume('{');
    std::vector<DictionaryEntry> entries;
    if (!cursor_.SkipBlanks()) return std::nullopt;
    if (!AtEndOfPairs()) {
      std::string_view key;
      if (!ReadKey(key) || !ReadPairs(key, entries)) return std::nullopt;
    }
    if (!cursor_.Consume('}')) return Fail(start, "a dictionary does not end");
    return MakeDictionary(entries, arena_);
  }

  bool AtEndOfPairs() const { return cursor_.AtEnd() || cursor_.LookingAt('}'); }

  // "= value;" and every further pair, up to "}" or the end of the text. The last semicolon may be
  // missing.
  bool ReadPairs(std::string_view key, std::vector<DictionaryEntry>& entries) {
    for (;;) {
      if (!cursor_.Consume('=')) return cursor_.Fail(cursor_.Offset(), "\"=\" was expected");
      if (!cursor_.SkipBlanks()) return false;
      auto value = ReadValue();
      if (!value || !cursor_.SkipBlanks()) return false;
      entries.push_back({key, *value});
      const bool closed = cursor_.Consume(';');
      if (closed && !cursor_.SkipBlanks()) return false;
      if (AtEndOfPairs()) return true;
      if (!closed) return cursor_.Fail(cursor_.Offset(), "\";\" was expected");
      if (!ReadKey(key)) return false;
    }
  }

  bool ReadKey(std::string_view& key) {
    const std::size_t start = cursor_.Offset();
    if (!leaves_.ReadString(key, "a key") || !cursor_.SkipBlanks()) return false;
    LocateKey(start, key);
    return true;
  }

  std::string_view text_;
  TextCursor cursor_;
  TextLeaves leaves_;
  Arena& arena_;
  LocationBuilder* locations_;  // may be null
  std::size_t nesting_ = 0;
};

}  // namespace

Result<PropertyValue> ParseTextPropertyList(const SourceText& source, Arena& arena,
                                            LocationBuilder* locations) {
  const std::size_t invalid = FindInvalidUtf8(source.text);
  if (invalid != npos) return ErrorAt(source.text, invalid, "the text is not UTF-8");
  if (source.endsInInvalidUtf16) {
    return ErrorAt(source.text, source.text.size(), "the text is not UTF-16");
  }
  if (locations != nullptr) locations->SetText(source.text);
  return TextPropertyListReader(source.text, arena, locations).Read();
}

}  // namespace fernwick
