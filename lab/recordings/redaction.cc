#include "lab/recordings/redaction.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "value/unicode/ascii.h"

namespace fernwick::lab {
namespace {

// Shorter ones may stand in a text by chance.
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
    auto replaced = OverPlanes(recording, &Redactor::ReplaceIdentifiers);
    auto value = OverPlanes(replaced, &Redactor::ReplaceTexts);
    return {std::move(value), std::move(replaced_), textsElsewhere_};
  }

 private:
  using Step = PropertyValue (Redactor::*)(std::string_view key, const PropertyValue& value);

  // The dictionary with each value as `step` gives it.
  PropertyValue OverEntries(const Dictionary& dictionary, Step step) {
    std::vector<DictionaryEntry> entries;
    for (const auto& [key, value] : dictionary.Entries()) {
      entries.emplace_back(key, (this->*step)(key.View(), value));
    }
    return Dictionary(std::move(entries));
  }

  PropertyValue OverPlanes(const PropertyValue& recording, Step step) {
    auto top = *recording.AsDictionary();
    Dictionary planes;
    for (const auto& [name, root] : top.Find("Planes")->AsDictionary()->Entries()) {
      planes.Set(name.View(), OverNodes(root, step));
    }
    top.Set("Planes", std::move(planes));
    return top;
  }

  PropertyValue OverNodes(const PropertyValue& node, Step step) {
    std::vector<DictionaryEntry> entries;
    for (const auto& [key, value] : node.AsDictionary()->Entries()) {
      if (key.View() == "Children") {
        Array children;
        for (const auto& child : *value.AsArray()) children.push_back(OverNodes(child, step));
        entries.emplace_back(key, std::move(children));
      } else {
        entries.emplace_back(key, OverNodeEntry(key.View(), value, step));
      }
    }
    return Dictionary(std::move(entries));
  }

  // What a node says of its entry: "Properties", "Name", "ID" and "Link". Its class is no more
  // telling than that of any other computer of its kind.
  PropertyValue OverNodeEntry(std::string_view key, const PropertyValue& value, Step step) {
    if (key == "Properties") return OverEntries(*value.AsDictionary(), step);
    if (key == "Class" || step == &Redactor::ReplaceIdentifiers) return value;
    return ReplaceTexts(key, value);
  }

  PropertyValue ReplaceIdentifiers(std::string_view key, const PropertyValue& value) {
    if (IdentifiesComputer(key) || furtherKeys_.contains(std::string(key))) {
      NoteTexts(value);
      if (MayIdentify(value)) ++replaced_[std::string(key)];
      return pseudonyms_.Of(value);
    }
    return Descend(key, value, &Redactor::ReplaceIdentifiers);
  }

  // The value with everything inside it as `step` gives it; an array's elements go by its key.
  PropertyValue Descend(std::string_view key, const PropertyValue& value, Step step) {
    if (const auto* dictionary = value.AsDictionary()) return OverEntries(*dictionary, step);
    const auto* array = value.AsArray();
    if (array == nullptr) return value;
    Array elements;
    for (const auto& element : *array) elements.push_back((this->*step)(key, element));
    return elements;
  }

  // Keeps the texts that are to give way everywhere, the longest first.
  void NoteTexts(const PropertyValue& value) {
    if (const auto* array = value.AsArray()) {
      for (const auto& element : *array) NoteTexts(element);
    } else if (const auto* dictionary = value.AsDictionary()) {
      for (const auto& entry : dictionary->Entries()) NoteTexts(entry.value);
    } else if (const auto text = value.AsString(); text && text->size() >= TellingLength) {
      const auto longer = [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
      };
      const auto place = std::ranges::lower_bound(texts_, std::string(*text), longer);
      if (place == texts_.end() || *place != *text) texts_.emplace(place, *text);
    }
  }

  PropertyValue ReplaceTexts(std::string_view key, const PropertyValue& value) {
    const auto text = value.AsString();
    const auto bytes = value.AsData();
    if (!text && !bytes) return Descend(key, value, &Redactor::ReplaceTexts);
    auto replaced = WithPseudonyms(text ? *text : *bytes);
    if (!replaced) return value;
    ++textsElsewhere_;
    if (bytes) return Data{SharedBytes(*std::move(replaced))};
    return *std::move(replaced);
  }

  // The bytes without the telling texts in them; none where there are no such.
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
