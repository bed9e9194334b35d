// A recursive-descent reader that builds the value while it parses, in one pass. The elements of
// the open arrays and dictionaries are collected on two stacks; when a container is closed, its
// part of the stack is copied into the arena as one block. Strings are views of the document unless
// they contain a reference. Linear, except for repeated keys (see property_value.cc).
//
// Equal keys mostly share one view: a direct-mapped cache of 256 keys, indexed by hash, returns the
// view of the last equal key. A file repeats a few keys many times, and comparing views of the same
// bytes touches less memory. A collision only loses the sharing.

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

// The elements of a property list.
enum class Element { None, String, Integer, Real, Boolean, Data, Date, Array, Dictionary };

// The most frequent come first.
Element ElementNamed(std::string_view name) {
  if (name == "string") return Element::String;
  if (name == "integer") return Element::Integer;
  if (name == "dict") return Element::Dictionary;
  if (name == "array") return Element::Array;
  if (name == "true" || name == "false") return Element::Boolean;
  if (name == "real") return Element::Real;
  if (name == "data") return Element::Data;
  return name == "date" ? Element::Date : Element::None;
}

bool FailUnknownElement(XmlCursor& cursor, const XmlStartTag& tag) {
  if (tag.name == "key") {
    return cursor.Fail(tag.offset, "<key> found where a value was expected");
  }
  return cursor.Fail(tag.offset, "<" + Excerpt(tag.name) + "> is no property-list element");
}

std::optional<PropertyValue> ParseBoolean(std::string_view name, std::string_view text) {
  if (!text.empty()) return std::nullopt;
  return name == "true";
}

// Reads the elements that contain text alone: keys and leaves.
class XmlLeaves {
 public:
  XmlLeaves(XmlCursor& cursor, Arena& arena) : cursor_(cursor), arena_(arena) {}

  // The text of a <key>, its end tag included.
  bool ReadKey(const XmlStartTag& tag, std::string_view& key) {
    if (!ReadKeptText(tag, key)) return false;
    key = Shared(key);
    return true;
  }

  // The value of a leaf, its end tag included.
  bool ReadLeaf(Element element, const XmlStartTag& tag, PropertyValue& value) {
    std::string_view text;
    if (element == Element::String) {
      if (!ReadKeptText(tag, text)) return false;
      value = text;
      return true;
    }
    if (!ReadText(tag, text)) return false;
    const auto parsed = Parse(element, tag.name, text);
    if (!parsed) {
      return cursor_.Fail(tag.offset,
                          "\"" + Excerpt(text) + "\" is not a valid " + std::string(tag.name));
    }
    value = *parsed;
    return true;
  }

 private:
  std::optional<PropertyValue> Parse(Element element, std::string_view name,
                                     std::string_view text) {
    switch (element) {
      case Element::Integer: return ParseInteger(text);
      case Element::Real: return ParseReal(text);
      case Element::Date: return ParseDate(text);
      case Element::Data: return ParseData(text);
      default: return ParseBoolean(name, text);
    }
  }

  std::optional<PropertyValue> ParseData(std::string_view text) {
    const auto bytes = DecodeBase64(text);
    if (!bytes) return std::nullopt;
    return Data{arena_.Copy(*bytes)};
  }

  // The text of a leaf element, its end tag included. It views the document or scratch_.
  bool ReadText(const XmlStartTag& tag, std::string_view& text) {
    text = {};
    if (tag.isEmptyElement) return true;
    if (!cursor_.ReadCharacters(text, scratch_)) return false;
    if (cursor_.LookingAt("<") && !cursor_.LookingAt("</")) {
      return cursor_.Fail(cursor_.Offset(),
                          "<" + std::string(tag.name) + "> contains something other than text");
    }
    return cursor_.ReadEndTag(tag.name);
  }

  // As ReadText, but the text views the document or the arena.
  bool ReadKeptText(const XmlStartTag& tag, std::string_view& text) {
    if (!ReadText(tag, text)) return false;
    if (text.data() == scratch_.data()) text = arena_.Copy(text);
    return true;
  }

  // The view of an equal key from the cache, which the key replaces where there is none.
  std::string_view Shared(std::string_view key) {
    auto& recent = recentKeys_[std::hash<std::string_view>()(key) % recentKeys_.size()];
    if (recent == key) return recent;
    recent = key;
    return key;
  }

  XmlCursor& cursor_;
  Arena& arena_;
  std::string scratch_;
  std::array<std::string_view, 256> recentKeys_;  // by hash
};

class XmlPropertyListReader {
 public:
  XmlPropertyListReader(std::string_view document, Arena& arena, LocationBuilder* locations)
      : document_(document),
        cursor_(document),
        leaves_(cursor_, arena),
        arena_(arena),
        locations_(locations) {}

  Result<PropertyValue> Read() {
    if (ReadDocument()) return values_.back();
    return ErrorAt(document_, cursor_.Fault().Offset(), cursor_.Fault().Message());
  }

 private:
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
    if (plist.isEmptyElement) return cursor_.Fail(plist.offset, "<plist> contains no value");
    if (!cursor_.SkipMiscellany()) return false;
    if (cursor_.LookingAt("</")) return cursor_.Fail(cursor_.Offset(), "<plist> contains no value");
    if (!ReadValue() || !cursor_.SkipMiscellany()) return false;
    if (cursor_.LookingAt("<") && !cursor_.LookingAt("</")) {
      return cursor_.Fail(cursor_.Offset(), "<plist> contains more than one value");
    }
    return cursor_.ReadEndTag(plist.name);
  }

  bool ReadStartTag(XmlStartTag& tag) {
    return cursor_.LookingAt("<") ? cursor_.ReadStartTag(tag) : FailWithoutElement();
  }

  // Not inlined: its caller is faster without the error path in it.
  [[gnu::noinline]] bool FailWithoutElement() {
    return cursor_.Fail(cursor_.Offset(), cursor_.AtEnd()
                                              ? "the document ends too early"
                                              : "text found where an element was expected");
  }

  bool ReadValue() {
    XmlStartTag tag;
    return ReadStartTag(tag) && ReadElement(tag);
  }

  bool ReadElement(const XmlStartTag& tag) {
    const auto element = ElementNamed(tag.name);
    if (element == Element::None) return FailUnknownElement(cursor_, tag);
    if (locations_ != nullptr) locations_->BeginValue(tag.offset);
    if (!ReadContent(element, tag)) return false;
    if (locations_ != nullptr) locations_->EndValue();
    return true;
  }

  // Reads the content of an element, its end tag included, and appends its value to values_.
  bool ReadContent(Element element, const XmlStartTag& tag) {
    if (element == Element::Dictionary) return ReadDictionary(tag);
    if (element == Element::Array) return ReadArray(tag);
    return leaves_.ReadLeaf(element, tag, values_.emplace_back());
  }

  bool Open(const XmlStartTag& tag) {
    if (++nesting_ > MaxNesting) return cursor_.Fail(tag.offset, NestedTooDeeply);
    return true;
  }

  bool Close(const XmlStartTag& tag) {
    --nesting_;
    return tag.isEmptyElement || cursor_.ReadEndTag(tag.name);
  }

  // To the next start tag inside a container, or to its end tag, for which `more` is false.
  bool SkipToNextElement(bool& more) {
    if (!cursor_.SkipMiscellany()) return false;
    more = !cursor_.LookingAt("</");
    return true;
  }

  bool ReadArray(const XmlStartTag& tag) {
    const std::size_t first = values_.size();
    if (!ReadContents(tag, [this] { return ReadValue(); })) return false;
    const Array array(MoveToArena(values_, first));
    values_.emplace_back(array);
    return true;
  }

  bool ReadDictionary(const XmlStartTag& tag) {
    const std::size_t first = entries_.size();
    if (!ReadContents(tag, [this] { return ReadEntry(); })) return false;
    const auto unique = WithoutRepeatedKeys(std::span(entries_).subspan(first));
    entries_.resize(first + unique.size());
    values_.emplace_back(Dictionary(MoveToArena(entries_, first)));
    return true;
  }

  // Everything inside a container, each part by `readPart`, and its end tag.
  template <typename ReadPart>
  bool ReadContents(const XmlStartTag& tag, ReadPart readPart) {
    if (!Open(tag)) return false;
    for (bool more = !tag.isEmptyElement; more;) {
      if (!SkipToNextElement(more)) return false;
      if (more && !readPart()) return false;
    }
    return Close(tag);
  }

  // Moves the top of a stack, from `first` on, into the arena.
  template <typename Part>
  std::span<const Part> MoveToArena(std::vector<Part>& collected, std::size_t first) {
    const auto moved = arena_.Copy(std::span<const Part>(collected).subspan(first));
    collected.resize(first);
    return moved;
  }

  bool ReadEntry() {
    XmlStartTag tag;
    std::string_view text;
    if (!ReadStartTag(tag)) return false;
    if (tag.name != "key") {
      return cursor_.Fail(tag.offset, "<" + Excerpt(tag.name) + "> found where <key> was expected");
    }
    if (!leaves_.ReadKey(tag, text) || !cursor_.SkipMiscellany()) return false;
    if (locations_ != nullptr) locations_->Key(text, tag.offset);
    if (cursor_.LookingAt("</")) return cursor_.Fail(tag.offset, "a key has no value");
    if (!ReadValue()) return false;
    entries_.push_back({text, values_.back()});
    values_.pop_back();
    return true;
  }

  std::string_view document_;
  XmlCursor cursor_;
  XmlLeaves leaves_;
  Arena& arena_;
  LocationBuilder* locations_;  // may be null
  std::size_t nesting_ = 0;
  // Stacks of the elements and entries of the arrays and dictionaries that are open, innermost
  // last.
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
