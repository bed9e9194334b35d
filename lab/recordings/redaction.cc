// Two passes over a recording: the first collects the identifiers, the second builds the redacted
// recording in an arena of its own, where each text is searched for them.

#include "lab/recordings/redaction.h"

#include <optional>
#include <utility>
#include <vector>

#include "lab/recordings/identifiers.h"
#include "lab/recordings/rebuilt.h"
#include "lab/recordings/tool_properties.h"

namespace fernwick::lab {
namespace {

bool IsReplaced(std::string_view key, const RedactionRules& rules) {
  return IdentifiesComputer(key) || rules.replaced.contains(key);
}

void CollectFromValue(std::string_view key, const PropertyValue& value, const RedactionRules& rules,
                      Identifiers& identifiers) {
  if (IsReplaced(key, rules)) return identifiers.Add(value);
  if (const auto array = value.AsArray()) {
    for (const auto& element : *array) CollectFromValue(key, element, rules, identifiers);
  } else if (const auto dictionary = value.AsDictionary()) {
    for (const auto& entry : dictionary->Entries()) {
      CollectFromValue(entry.key, entry.value, rules, identifiers);
    }
  }
}

void CollectFromNode(Dictionary node, const RedactionRules& rules, Identifiers& identifiers) {
  if (const auto* properties = node.Find("Properties")) {
    for (const auto& entry : properties->AsDictionary()->Entries()) {
      CollectFromValue(entry.key, entry.value, rules, identifiers);
    }
  }
  const auto* children = node.Find("Children");
  if (children == nullptr) return;
  const auto nodes = *children->AsArray();
  for (const auto& child : nodes) {
    CollectFromNode(*child.AsDictionary(), rules, identifiers);
  }
}

class Redactor {
 public:
  Redactor(const RedactionRules& rules, Pseudonyms& pseudonyms)
      : rules_(rules), pseudonyms_(pseudonyms) {}

  RedactedRecording Redact(Dictionary recording) {
    const auto planes = *recording.Find("Planes")->AsDictionary();
    for (const auto& plane : planes.Entries()) {
      CollectFromNode(*plane.value.AsDictionary(), rules_, identifiers_);
    }
    const auto value =
        Rebuilt(recording, arena_, [&](std::string_view key, const PropertyValue& each) {
          return key == "Planes" ? PropertyValue(RedactPlanes(planes)) : each;
        });
    return {{std::move(arena_), value}, std::move(counts_)};
  }

 private:
  Dictionary RedactPlanes(Dictionary planes) {
    return Rebuilt(planes, arena_, [&](std::string_view, const PropertyValue& root) {
      return RedactNode(*root.AsDictionary());
    });
  }

  PropertyValue RedactNode(Dictionary node) {
    return Rebuilt(node, arena_, [&](std::string_view key, const PropertyValue& value) {
      if (key == "Properties") return PropertyValue(RedactProperties(*value.AsDictionary()));
      if (key == "Class") return value;  // of all computers of a kind
      if (key != "Children") return RedactName(value);
      return Rebuilt(value, arena_, [&](std::string_view, const PropertyValue& child) {
        return RedactNode(*child.AsDictionary());
      });
    });
  }

  // A "Name", an "ID" or a "Link".
  PropertyValue RedactName(const PropertyValue& value) {
    const auto known = identifiers_.Replaced(*value.AsString(), pseudonyms_);
    const auto name = known ? std::string_view(*known) : *value.AsString();
    const auto unknown = ReplaceIdentifierForms(name, pseudonyms_);
    if (!known && !unknown) return value;
    ++counts_.names;
    return arena_.Copy(unknown ? *unknown : *known);
  }

  bool IsKept(std::string_view key) const {
    return rules_.keepsAll || ToolReads(key) || rules_.kept.contains(key) ||
           rules_.replaced.contains(key);
  }

  Dictionary RedactProperties(Dictionary properties) {
    std::vector<DictionaryEntry> entries;
    for (const auto& [key, value] : properties.Entries()) {
      if (!IsKept(key)) {
        ++counts_.dropped[std::string(key)];
        continue;
      }
      const bool isReplaced = IsReplaced(key, rules_) && MayIdentify(value);
      if (!isReplaced) ++counts_.kept[std::string(key)];
      entries.push_back({key, RedactValue(key, value)});
    }
    return arena_.Copy(std::span<const DictionaryEntry>(entries));
  }

  // An array's elements have its key.
  PropertyValue RedactValue(std::string_view key, const PropertyValue& value) {
    if (IsReplaced(key, rules_)) {
      if (MayIdentify(value)) ++counts_.replaced[std::string(key)];
      return pseudonyms_.Of(value, arena_);
    }
    const auto text = value.AsString();
    const auto bytes = value.AsData();
    if (text || bytes) return RedactText(value, text ? *text : *bytes);
    const auto redact = [&](std::string_view inner, const PropertyValue& each) {
      return RedactValue(inner, each);
    };
    return Rebuilt(value, arena_, redact, key);
  }

  PropertyValue RedactText(const PropertyValue& value, std::string_view bytes) {
    const auto replaced = identifiers_.Replaced(bytes, pseudonyms_);
    if (!replaced) return value;
    ++counts_.texts;
    const auto kept = arena_.Copy(*replaced);
    return value.AsData() ? PropertyValue(Data{kept}) : PropertyValue(kept);
  }

  const RedactionRules& rules_;
  Pseudonyms& pseudonyms_;
  Arena arena_;  // of the recording that is built
  Identifiers identifiers_;
  RedactionCounts counts_;
};

}  // namespace

RedactedRecording RedactRecording(const PropertyValue& recording, const RedactionRules& rules,
                                  Pseudonyms& pseudonyms) {
  return Redactor(rules, pseudonyms).Redact(*recording.AsDictionary());
}

}  // namespace fernwick::lab
