#include "value/text/reader.h"

#include <string>
#include <utility>
#include <vector>

#include "value/key_interner.h"
#include "value/text/cursor.h"
#include "value/unicode/text_position.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

class TextPropertyListReader {
 public:
  TextPropertyListReader(const SourceText& source, PlaceRecorder* places)
      : source_(source), cursor_(source.text), places_(places) {}

  ParseOutcome Read() {
    auto value = ReadTopLevel();
    if (cursor_.Fault().IsSet()) {
      return {{}, DescribeAt(source_.text, cursor_.Fault().Offset(), cursor_.Fault().Message())};
    }
    return {std::move(value), {}};
  }

 private:
  using MaybeValue = std::optional<PropertyValue>;  // nothing: the fault is set

  MaybeValue Fail(std::size_t offset, std::string message) {
    cursor_.Fail(offset, std::move(message));
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
    SharedBytes string;
    if (!ReadString(string, "a value") || !cursor_.SkipBlanks()) return std::nullopt;
    BeginValue(start);
    if (cursor_.LookingAt('=')) return ReadBarePairs(start, std::move(string));
    EndValue();
    if (!isQuoted) {
      return cursor_.AtEnd() ? Fail(start, "one unquoted string is not a property list")
                             : Fail(cursor_.Offset(), "\"=\" was expected");
    }
    return ExpectEnd(String{std::move(string)});
  }

  MaybeValue ExpectEnd(MaybeValue value) {
    if (!value || !cursor_.SkipBlanks()) return std::nullopt;
    if (!cursor_.AtEnd()) return Fail(cursor_.Offset(), "something follows the value");
    return value;
  }

  // "key = value;" pairs up to the end of the text, behind their first key.
  MaybeValue ReadBarePairs(std::size_t start, SharedBytes firstKey) {
    std::vector<DictionaryEntry> entries;
    nesting_ = 1;
    PlaceKey(start, firstKey);
    if (!ReadPairs(std::move(firstKey), entries)) return std::nullopt;
    EndValue();
    return ExpectEnd(Dictionary(std::move(entries)));
  }

  void BeginValue(std::size_t offset) {
    if (places_ != nullptr) places_->BeginValue(offset);
  }

  void EndValue() {
    if (places_ != nullptr) places_->EndValue();
  }

  void PlaceKey(std::size_t offset, const SharedBytes& key) {
    if (places_ != nullptr) places_->Key(key, offset);
  }

  MaybeValue ReadValue() {
    BeginValue(cursor_.Offset());
    auto value = ReadContents();
    if (value) EndValue();
    return value;
  }

  MaybeValue ReadContents() {
    if (cursor_.LookingAt('{')) return ReadNested(&TextPropertyListReader::ReadDictionary);
    if (cursor_.LookingAt('(')) return ReadNested(&TextPropertyListReader::ReadArray);
    if (cursor_.LookingAt('<')) {
      std::string bytes;
      if (!cursor_.ReadData(bytes)) return std::nullopt;
      return Data{SharedBytes(std::move(bytes))};
    }
    SharedBytes string;
    if (!ReadString(string, "a value")) return std::nullopt;
    return String{std::move(string)};
  }

  MaybeValue ReadNested(MaybeValue (TextPropertyListReader::*read)()) {
    if (nesting_ == MaximumNesting) return Fail(cursor_.Offset(), NestedTooDeeply);
    ++nesting_;
    auto value = (this->*read)();
    --nesting_;
    return value;
  }

  MaybeValue ReadArray() {
    const std::size_t start = cursor_.Offset();
    cursor_.Take('(');
    Array array;
    for (;;) {
      if (!cursor_.SkipBlanks()) return std::nullopt;
      if (cursor_.Take(')')) return array;
      if (cursor_.AtEnd()) return Fail(start, "an array does not end");
      auto value = ReadValue();
      if (!value || !cursor_.SkipBlanks()) return std::nullopt;
      array.push_back(*std::move(value));
      if (!cursor_.Take(',') && !cursor_.LookingAt(')') && !cursor_.AtEnd()) {
        return Fail(cursor_.Offset(), "\",\" or \")\" was expected");
      }
    }
  }

  MaybeValue ReadDictionary() {
    const std::size_t start = cursor_.Offset();
    cursor_.Take('{');
    std::vector<DictionaryEntry> entries;
    if (!cursor_.SkipBlanks()) return std::nullopt;
    if (!AtEndOfPairs()) {
      SharedBytes key;
      if (!ReadKey(key)) return std::nullopt;
      if (!ReadPairs(std::move(key), entries)) return std::nullopt;
    }
    if (!cursor_.Take('}')) return Fail(start, "a dictionary does not end");
    return Dictionary(std::move(entries));
  }

  bool AtEndOfPairs() const { return cursor_.AtEnd() || cursor_.LookingAt('}'); }

  // "= value;" and every further pair, up to "}" or the end of the text. The last semicolon may be
  // missing.
  bool ReadPairs(SharedBytes key, std::vector<DictionaryEntry>& entries) {
    for (;;) {
      if (!cursor_.Take('=')) return cursor_.Fail(cursor_.Offset(), "\"=\" was expected");
      if (!cursor_.SkipBlanks()) return false;
      auto value = ReadValue();
      if (!value || !cursor_.SkipBlanks()) return false;
      entries.emplace_back(keys_.Intern(key), *std::move(value));
      const bool closed = cursor_.Take(';');
      if (closed && !cursor_.SkipBlanks()) return false;
      if (AtEndOfPairs()) return true;
      if (!closed) return cursor_.Fail(cursor_.Offset(), "\";\" was expected");
      if (!ReadKey(key)) return false;
    }
  }

  bool ReadKey(SharedBytes& key) {
    const std::size_t start = cursor_.Offset();
    if (!ReadString(key, "a key") || !cursor_.SkipBlanks()) return false;
    PlaceKey(start, key);
    return true;
  }

  bool ReadString(SharedBytes& shared, const char* what) {
    if (!cursor_.LookingAtQuote()) {
      const auto string = cursor_.ReadUnquoted();
      if (string.empty())
        return cursor_.Fail(cursor_.Offset(), std::string(what) + " was expected");
      shared = SharedBytes(source_.buffer, string);
      return true;
    }
    std::string_view string;
    if (!cursor_.ReadQuoted(string, scratch_)) return false;
    shared = SharedOrCopied(source_, scratch_, string);
    return true;
  }

  const SourceText& source_;
  TextCursor cursor_;
  PlaceRecorder* places_;  // null: nobody wants to know
  std::size_t nesting_ = 0;
  std::string scratch_;
  KeyInterner keys_;
};

}  // namespace

ParseOutcome ParseTextPropertyList(const SourceText& source, PlaceRecorder* places) {
  const std::size_t invalid = FindInvalidUtf8(source.text);
  if (invalid != NoPlace) return {{}, DescribeAt(source.text, invalid, "the text is not UTF-8")};
  if (source.endsInInvalidUtf16) {
    return {{}, DescribeAt(source.text, source.text.size(), "the text is not UTF-16")};
  }
  if (places != nullptr) places->SetText(source);
  return TextPropertyListReader(source, places).Read();
}

}  // namespace fernwick
