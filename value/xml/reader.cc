#include "value/xml/reader.h"

#include <array>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "value/calendar_date.h"
#include "value/number_text.h"
#include "value/unicode/text_position.h"
#include "value/xml/base64.h"
#include "value/xml/cursor.h"
#include "value/xml/encoding.h"

namespace fernwick {
namespace {

class XmlPropertyListReader {
 public:
  XmlPropertyListReader(std::string_view document, Arena& arena, LocationBuilder* locations)
      : document_(document), cursor_(document), arena_(arena), locations_(locations) {}

  Result<PropertyValue> Read() {
    if (ReadDocument()) return values_.back();
    return ErrorAt(document_, cursor_.Fault().Offset(), cursor_.Fault().Message());
  }

 private:
  // Reads the content of an element and appends its value to values_.
  using ContentReader = bool (XmlPropertyListReader::*)(const XmlStartTag&);

  // Null for what is no property-list element. The most frequent come first.
  static ContentReader ReaderOf(std::string_view element) {
    using Reader = XmlPropertyListReader;
    if (element == "string") return &Reader::ReadString;
    if (element == "integer") return &Reader::ReadInteger;
    if (element == "dict") return &Reader::ReadDictionary;
    if (element == "array") return &Reader::ReadArray;
    if (element == "true" || element == "false") return &Reader::ReadBoolean;
    if (element == "real") return &Reader::ReadReal;
    if (element == "data") return &Reader::ReadData;
    if (element == "date") return &Reader::ReadDate;
    return nullptr;
  }

  bool ReadDocument() {
    if (!cursor_.SkipProlog()) return false;
    XmlStartTag tag;
    if (!ReadStartTag(tag)) return false;
    const bool read = tag.name == "plist" ? ReadPlistElement(tag) : ReadElement(tag);
    if (!read || !cursor_.SkipMiscellany()) return false;
    if (!cursor_.AtEnd())
      return cursor_.Fail(cursor_.Offset(), "something follows the root element");
    return true;
  }

  bool ReadPlistElement(const XmlStartTag& plist) {
    if (plist.isEmptyElement) return cursor_.Fail(plist.offset, "<plist> holds no value");
    if (!cursor_.SkipMiscellany()) return false;
    if (cursor_.LookingAt("</")) return cursor_.Fail(cursor_.Offset(), "<plist> holds no value");
    if (!ReadValue() || !cursor_.SkipMiscellany()) return false;
    if (cursor_.LookingAt("<") && !cursor_.LookingAt("</")) {
      return cursor_.Fail(cursor_.Offset(), "<plist> holds more than one value");
    }
    return cursor_.ReadEndTag(plist.name);
  }

  bool ReadStartTag(XmlStartTag& tag) {
    return cursor_.LookingAt("<") ? cursor_.ReadStartTag(tag) : FailWithoutElement();
  }

  // Not part of its caller, which would be the slower for it.
  [[gnu::noinline]] bool FailWithoutElement() {
    return cursor_.Fail(cursor_.Offset(), cursor_.AtEnd()
                                              ? "the document ends too early"
                                              : "text stands where an element was expected");
  }

  bool ReadValue() {
    XmlStartTag tag;
    return ReadStartTag(tag) && ReadElement(tag);
  }

  bool ReadElement(const XmlStartTag& tag) {
    const auto read = ReaderOf(tag.name);
    if (read != nullptr) {
      if (locations_ != nullptr) locations_->BeginValue(tag.offset);
      // coverage: 1 of 4 branches: A member function called by pointer may be virtual, which the
      // compiler tests; these are not.
      if (!(this->*read)(tag)) return false;
      if (locations_ != nullptr) locations_->EndValue();
      return true;
    }
    if (tag.name == "key")
      return cursor_.Fail(tag.offset, "<key> stands where a value was expected");
    return cursor_.Fail(tag.offset, "<" + Excerpt(tag.name) + "> is no property-list element");
  }

  bool Open(const XmlStartTag& tag) {
    if (++nesting_ > MaximumNesting) return cursor_.Fail(tag.offset, NestedTooDeeply);
    return true;
  }

  // Moves on to the next thing inside a container: a start tag, or the end of it.
  bool AtNextElement(bool& more) {
    if (!cursor_.SkipMiscellany()) return false;
    more = !cursor_.LookingAt("</");
    return true;
  }

  bool ReadArray(const XmlStartTag& tag) {
    const std::size_t first = values_.size();
    if (!ReadContents(tag, &XmlPropertyListReader::ReadValue)) return false;
    return Produce(Array(TakeFrom(values_, first)));
  }

  bool ReadDictionary(const XmlStartTag& tag) {
    const std::size_t first = entries_.size();
    if (!ReadContents(tag, &XmlPropertyListReader::ReadEntry)) return false;
    const auto unique = WithoutRepeatedKeys(std::span(entries_).subspan(first));
    entries_.resize(first + unique.size());
    return Produce(Dictionary(TakeFrom(entries_, first)));
  }

  // Everything inside a container, each part by `readPart`, and its end tag.
  bool ReadContents(const XmlStartTag& tag, bool (XmlPropertyListReader::*readPart)()) {
    if (!Open(tag)) return false;
    for (bool more = !tag.isEmptyElement; more;) {
      if (!AtNextElement(more)) return false;
      // coverage: 1 of 8 branches: A member function called by pointer may be virtual, which the
      // compiler tests; these are not.
      if (more && !(this->*readPart)()) return false;
    }
    --nesting_;
    return tag.isEmptyElement || cursor_.ReadEndTag(tag.name);
  }

  // Moves what has been collected from `first` on into the arena.
  template <typename Part>
  std::span<const Part> TakeFrom(std::vector<Part>& collected, std::size_t first) {
    const auto taken = arena_.Copy(std::span<const Part>(collected).subspan(first));
    collected.resize(first);
    return taken;
  }

  bool ReadEntry() {
    XmlStartTag tag;
    std::string_view text;
    if (!ReadStartTag(tag)) return false;
    if (tag.name != "key") {
      return cursor_.Fail(tag.offset,
                          "<" + Excerpt(tag.name) + "> stands where <key> was expected");
    }
    if (!ReadKeptText(tag, text) || !cursor_.SkipMiscellany()) return false;
    text = Shared(text);
    if (locations_ != nullptr) locations_->Key(text, tag.offset);
    if (cursor_.LookingAt("</")) return cursor_.Fail(tag.offset, "a key has no value");
    if (!ReadValue()) return false;
    entries_.push_back({text, values_.back()});
    values_.pop_back();
    return true;
  }

  // The text of a leaf element, its end tag included. It views the document or scratch_.
  bool ReadText(const XmlStartTag& tag, std::string_view& text) {
    text = {};
    if (tag.isEmptyElement) return true;
    if (!cursor_.ReadCharacters(text, scratch_)) return false;
    if (cursor_.LookingAt("<") && !cursor_.LookingAt("</")) {
      return cursor_.Fail(cursor_.Offset(),
                          "<" + std::string(tag.name) + "> holds something other than text");
    }
    return cursor_.ReadEndTag(tag.name);
  }

  // As ReadText, but the text views the document or the arena.
  bool ReadKeptText(const XmlStartTag& tag, std::string_view& text) {
    if (!ReadText(tag, text)) return false;
    if (text.data() == scratch_.data()) text = arena_.Copy(text);
    return true;
  }

  // Mostly the same view for equal keys: a file repeats its keys, and what compares many of them
  // finds them in the processor's cache.
  std::string_view Shared(std::string_view key) {
    auto& recent = recentKeys_[std::hash<std::string_view>()(key) % recentKeys_.size()];
    if (recent != key) recent = key;
    return recent;
  }

  bool ReadString(const XmlStartTag& tag) {
    std::string_view text;
    return ReadKeptText(tag, text) && Produce(text);
  }

  // A leaf whose text `parse` turns into a value or refuses.
  template <typename Parse>
  bool ReadParsed(const XmlStartTag& tag, Parse parse) {
    std::string_view text;
    if (!ReadText(tag, text)) return false;
    auto value = parse(text);
    if (value) return Produce(*value);
    return cursor_.Fail(tag.offset,
                        "\"" + Excerpt(text) + "\" is not a valid " + std::string(tag.name));
  }

  bool ReadInteger(const XmlStartTag& tag) { return ReadParsed(tag, ParseInteger); }
  bool ReadReal(const XmlStartTag& tag) { return ReadParsed(tag, ParseReal); }
  bool ReadDate(const XmlStartTag& tag) { return ReadParsed(tag, ParseDate); }

  bool ReadData(const XmlStartTag& tag) {
    return ReadParsed(tag, [&](std::string_view text) -> std::optional<PropertyValue> {
      const auto bytes = DecodeBase64(text);
      if (!bytes) return std::nullopt;
      return Data{arena_.Copy(*bytes)};
    });
  }

  bool ReadBoolean(const XmlStartTag& tag) {
    return ReadParsed(tag, [&](std::string_view text) -> std::optional<PropertyValue> {
      if (!text.empty()) return std::nullopt;
      return tag.name == "true";
    });
  }

  bool Produce(PropertyValue value) {
    values_.push_back(value);
    return true;
  }

  std::string_view document_;
  XmlCursor cursor_;
  Arena& arena_;
  LocationBuilder* locations_;  // may be null
  std::size_t nesting_ = 0;
  std::string scratch_;
  std::array<std::string_view, 256> recentKeys_;  // by hash
  // Stacks of what has been read of the arrays and dictionaries that are still open, innermost
  // last: each goes into the arena in one piece when it is closed.
  std::vector<PropertyValue> values_;
  std::vector<DictionaryEntry> entries_;
};

}  // namespace

Result<PropertyValue> ParseXmlPropertyList(const SourceText& source, Arena& arena,
                                           LocationBuilder* locations) {
  const auto document = DecodeXmlDocument(source, arena);
  if (!document) return document.Error();
  if (locations != nullptr) locations->SetText(*document);
  return XmlPropertyListReader(*document, arena, locations).Read();
}

}  // namespace fernwick
