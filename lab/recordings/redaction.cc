#include "lab/recordings/redaction.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "lab/recordings/rebuilt.h"
#include "value/unicode/ascii.h"

namespace fernwick::lab {
namespace {

// Shorter ones may occur in a text by chance.
constexpr std::size_t TellingLength = 8;

std::string LettersAndDigits(std::string_view key) {
  std::string plain;
  for (const char c : key) {
    const char lower = ToLowerAscii(c);
    if ((lower >= 'a' && lower <= 'z') || IsDecimalDigit(lower)) plain.push_back(lower);
  }
  return plain;
}

class Redactor {
 public:
  Redactor(const std::set<std::string>& furtherKeys, Pseudonyms& pseudonyms)
      : furtherKeys_(furtherKeys), pseudonyms_(pseudonyms) {}

  RedactedRecording Redact(const PropertyValue& recording) {
    const auto replaced = OverPlanes(*recording.AsDictionary(), &Redactor::ReplaceIdentifiers);
    const auto value = OverPlanes(replaced, &Redactor::ReplaceTexts);
    return {{std::move(arena_), value}, std::move(replaced_), textsElsewhere_};
  }

 private:
  using Step = PropertyValue (Redactor::*)(std::string_view key, const PropertyValue& value);

  Dictionary OverPlanes(Dictionary recording, Step step) {
    return Rebuilt(recording, arena_, [&](std::string_view key, const PropertyValue& value) {
      if (key != "Planes") return value;
      return Rebuilt(value, arena_, [&](std::string_view, const PropertyValue& root) {
        return OverNode(root, step);
      });
    });
  }

  PropertyValue OverNode(const PropertyValue& node, Step step) {
    return Rebuilt(node, arena_, [&](std::string_view key, const PropertyValue& value) {
      if (key != "Children") return OverNodeEntry(key, value, step);
      return Rebuilt(value, arena_, [&](std::string_view, const PropertyValue& child) {
        return OverNode(child, step);
      });
    });
  }

  // What a node says of its entry: "Properties", "Name", "ID" and "Link". Its class identifies no
  // computer among those of its kind.
  PropertyValue OverNodeEntry(std::string_view key, const PropertyValue& value, Step step) {
    if (key == "Properties") return Descend(key, value, step);
    if (key == "Class" || step == &Redactor::ReplaceIdentifiers) return value;
    return ReplaceTexts(key, value);
  }

  PropertyValue ReplaceIdentifiers(std::string_view key, const PropertyValue& value) {
    if (IdentifiesComputer(key) || furtherKeys_.contains(std::string(key))) {
      NoteTexts(value);
      if (MayIdentify(value)) ++replaced_[std::string(key)];
      return pseudonyms_.Of(value, arena_);
    }
    return Descend(key, value, &Redactor::ReplaceIdentifiers);
  }

  // The value with everything inside it replaced by `step`; an array's elements have its key.
  PropertyValue Descend(std::string_view key, const PropertyValue& value, Step step) {
    const auto each = [&](std::string_view inner, const PropertyValue& element) {
      return (this->*step)(inner, element);
    };
    return Rebuilt(value, arena_, each, key);
  }

  // Keeps the texts that are replaced everywhere, the longest first.
  void NoteTexts(const PropertyValue& value) {
    if (const auto array = value.AsArray()) {
      for (const auto& element : *array) NoteTexts(element);
    } else if (const auto dictionary = value.AsDictionary()) {
      for (const auto& entry : dictionary->Entries()) NoteTexts(entry.value);
    } else if (const auto text = value.AsString(); text && text->size() >= TellingLength) {
      const auto longer = [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
      };
      const auto next = std::ranges::lower_bound(texts_, std::string(*text), longer);
      if (next == texts_.end() || *next != *text) texts_.emplace(next, *text);
    }
  }

  PropertyValue ReplaceTexts(std::string_view key, const PropertyValue& value) {
    const auto text = value.AsString();
    const auto bytes = value.AsData();
    if (!text && !bytes) return Descend(key, value, &Redactor::ReplaceTexts);
    const auto replaced = WithPseudonyms(text ? *text : *bytes);
    if (!replaced) return value;
    ++textsElsewhere_;
    const auto kept = arena_.Copy(*replaced);
    return bytes ? PropertyValue(Data{kept}) : PropertyValue(kept);
  }

  // The bytes without the telling texts in them; empty where there are no such.
  std::optional<std::string> WithPseudonyms(std::string_view bytes) {
    auto replaced = std::string(bytes);
    for (const auto& telling : texts_) {
      const auto pseudonym = pseudonyms_.OfText(telling);
      for (auto at = replaced.find(telling); at != std::string::npos;
           at = replaced.find(telling, at + pseudonym.size())) {
        replaced.replace(at, telling.size(), pseudonym);
      }
    }
    if (replaced == bytes) return std::nullopt;
    return replaced;
  }

  const std::set<std::string>& furtherKeys_;
  Pseudonyms& pseudonyms_;
  Arena arena_;  // of the recording that is built
  ReplacedCounts replaced_;
  std::size_t textsElsewhere_ = 0;
  std::vector<std::string> texts_;
};

}  // namespace

bool IdentifiesComputer(std::string_view key) {
  const auto plain = LettersAndDigits(key);
  if (plain == "serial" || plain.ends_with("uid")) return true;  // "uuid" too
  for (const std::string_view part : {"uniqueid", "serialnumber", "macaddress"}) {
    if (plain.find(part) != std::string::npos) return true;
  }
  return false;
}

RedactedRecording RedactRecording(const PropertyValue& recording,
                                  const std::set<std::string>& furtherKeys,
                                  Pseudonyms& pseudonyms) {
  return Redactor(furtherKeys, pseudonyms).Redact(recording);
}

}  // namespace fernwick::lab
