// Two passes over the dumps, each a depth-first traversal. The first checks every entry and counts
// the planes of each identity in a hash table; the second builds the nodes, and knows by then which
// entries need an ID. Both are linear in the size of the dumps.

#include "lab/recordings/registry_dumps.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "value/arena.h"
#include "value/parse_fault.h"
#include "value/textual_dump.h"
#include "value/unicode/text_position.h"

namespace fernwick::lab {
namespace {

std::string Quoted(std::string_view text) {
  return "\"" + Excerpt(text) + "\"";
}

// How many arrays and dictionaries are in each other.
std::size_t NestingOf(const PropertyValue& value) {
  std::size_t inner = 0;
  if (const auto array = value.AsArray()) {
    for (const auto& element : *array) inner = std::max(inner, NestingOf(element));
    return inner + 1;
  }
  const auto dictionary = value.AsDictionary();
  if (!dictionary) return 0;
  for (const auto& entry : dictionary->Entries()) {
    inner = std::max(inner, NestingOf(entry.value));
  }
  return inner + 1;
}

// Where an entry was found.
struct Identity {
  std::size_t definedIn;  // the first plane that has it
  std::size_t lastFoundIn;
  bool isLinked = false;
};

// Whether the key of a node is a property of its entry.
bool IsProperty(std::string_view key, const DumpKeys& keys) {
  return key != keys.name && key != keys.children && key != keys.className && key != keys.id;
}

// Adds what a recording has of an entry.
void AddEntry(Dictionary node, const DumpKeys& keys, Arena& arena,
              std::vector<DictionaryEntry>& built) {
  if (const auto* name = node.Find(keys.name)) built.push_back({"Name", *name});
  const auto* className = keys.className ? node.Find(*keys.className) : nullptr;
  if (className != nullptr) built.push_back({"Class", *className});
  std::vector<DictionaryEntry> properties;
  for (const auto& entry : node.Entries()) {
    if (IsProperty(entry.key, keys)) properties.push_back(entry);
  }
  if (properties.empty()) return;
  built.push_back(
      {"Properties", Dictionary(arena.Copy(std::span<const DictionaryEntry>(properties)))});
}

class DumpRecorder {
 public:
  DumpRecorder(const DumpKeys& keys) : keys_(keys) {}

  // What is wrong with the next plane; empty when nothing is.
  std::string Check(const PropertyValue& root, std::size_t plane) {
    path_.clear();
    return CheckNode(root, plane);
  }

  // REQUIRES: every plane is checked.
  Dictionary Build(const PropertyValue& root, std::size_t plane) {
    return BuildNode(*root.AsDictionary(), plane);
  }

  // In the memory of the recording.
  std::string_view Copy(std::string_view text) { return arena_.Copy(text); }
  Dictionary Copy(std::span<const DictionaryEntry> entries) { return arena_.Copy(entries); }

  Arena TakeMemory() { return std::move(arena_); }

 private:
  std::string FaultHere(const std::string& message) const {
    std::string text;
    for (const auto ordinal : path_) {
      text += Excerpt(keys_.children) + "[" + std::to_string(ordinal) + "]/";
    }
    if (text.empty()) return message;
    text.pop_back();
    return text + ": " + message;
  }

  std::string CheckNode(const PropertyValue& value, std::size_t plane) {
    const auto node = value.AsDictionary();
    if (!node) return FaultHere("not a dictionary");
    bool isLink = false;
    auto fault = CheckIdentity(*node, plane, isLink);
    if (fault.empty() && !isLink) fault = CheckEntry(*node);
    return fault.empty() ? CheckChildren(*node, plane) : fault;
  }

  std::string CheckIdentity(Dictionary node, std::size_t plane, bool& isLink) {
    const auto* value = keys_.id ? node.Find(*keys_.id) : nullptr;
    if (value == nullptr) return {};
    const auto text = IdentityText(*value);
    if (!text) return FaultHere(Quoted(*keys_.id) + " is neither a string nor an integer");
    if (text->empty()) return FaultHere(Quoted(*keys_.id) + " is empty");
    const auto [found, isNew] = identities_.try_emplace(*text, Identity{plane, plane});
    if (isNew) return {};
    auto& identity = found->second;
    if (std::exchange(identity.lastFoundIn, plane) == plane) {
      return FaultHere("the entry with the identity " + Quoted(*text) + " is in this plane twice");
    }
    identity.isLinked = true;
    isLink = true;
    return {};
  }

  std::optional<std::string_view> IdentityText(const PropertyValue& value) {
    const auto number = value.AsInteger();
    return number ? arena_.Copy(DumpText(value)) : value.AsString();
  }

  std::string CheckEntry(Dictionary node) const {
    auto fault = CheckName(node);
    if (fault.empty()) fault = CheckClass(node);
    return fault.empty() ? CheckNesting(node) : fault;
  }

  std::string CheckName(Dictionary node) const {
    const auto* value = node.Find(keys_.name);
    if (value == nullptr) {
      return path_.empty() ? std::string() : FaultHere(Quoted(keys_.name) + " is missing");
    }
    const auto name = value->AsString();
    if (!name) return FaultHere(Quoted(keys_.name) + " is not a string");
    if (name->empty()) return FaultHere(Quoted(keys_.name) + " is empty");
    if (name->find('/') == std::string_view::npos) return {};
    return FaultHere(Quoted(keys_.name) + " is " + Quoted(*name) + ", with a \"/\"");
  }

  std::string CheckClass(Dictionary node) const {
    const auto* value = keys_.className ? node.Find(*keys_.className) : nullptr;
    if (value == nullptr) return {};
    const auto name = value->AsString();
    if (!name) return FaultHere(Quoted(*keys_.className) + " is not a string");
    return name->empty() ? FaultHere(Quoted(*keys_.className) + " is empty") : std::string();
  }

  // In a recording the properties are a dictionary of their own, below the top level and the
  // planes.
  std::string CheckNesting(Dictionary node) const {
    const std::size_t above = 4 + 2 * path_.size();
    for (const auto& [key, value] : node.Entries()) {
      if (!IsProperty(key, keys_) || above + NestingOf(value) <= MaxNesting) continue;
      return FaultHere("in a recording " + Quoted(key) + " would be nested too deeply");
    }
    if (above <= MaxNesting) return {};
    return FaultHere("in a recording the entry would be nested too deeply");
  }

  std::string CheckChildren(Dictionary node, std::size_t plane) {
    const auto* value = node.Find(keys_.children);
    if (value == nullptr) return {};
    const auto children = value->AsArray();
    if (!children) return FaultHere(Quoted(keys_.children) + " is not an array");
    for (std::size_t i = 0; i < children->size(); ++i) {
      path_.push_back(i);
      auto fault = CheckNode((*children)[i], plane);
      if (!fault.empty()) return fault;
      path_.pop_back();
    }
    return {};
  }

  Dictionary BuildNode(Dictionary node, std::size_t plane) {
    std::vector<DictionaryEntry> built;
    const auto* id = keys_.id ? node.Find(*keys_.id) : nullptr;
    const auto text = id != nullptr ? *IdentityText(*id) : std::string_view();
    const auto identity = identities_.find(text);
    const bool isLinked = identity != identities_.end() && identity->second.isLinked;
    if (isLinked && identity->second.definedIn != plane) {
      built.push_back({"Link", text});
    } else {
      AddEntry(node, keys_, arena_, built);
      if (isLinked) built.push_back({"ID", text});
    }
    if (const auto* children = node.Find(keys_.children)) {
      built.push_back({"Children", BuildChildren(*children->AsArray(), plane)});
    }
    return Copy(built);
  }

  Array BuildChildren(Array children, std::size_t plane) {
    std::vector<PropertyValue> nodes;
    nodes.reserve(children.size());
    for (const auto& child : children) nodes.emplace_back(BuildNode(*child.AsDictionary(), plane));
    return arena_.Copy(std::span<const PropertyValue>(nodes));
  }

  const DumpKeys& keys_;
  Arena arena_;
  std::vector<std::size_t> path_;  // the ordinals of the children on the way to the node
  std::unordered_map<std::string_view, Identity> identities_;
};

}  // namespace

Result<PropertyList, DumpError> RecordDumps(std::span<const DumpedPlane> planes,
                                            const DumpKeys& keys,
                                            const std::optional<PropertyValue>& classes) {
  DumpRecorder recorder(keys);
  for (std::size_t i = 0; i < planes.size(); ++i) {
    auto fault = recorder.Check(planes[i].list.value, i);
    if (!fault.empty()) return DumpError{i, std::move(fault)};
  }
  std::vector<DictionaryEntry> roots;
  for (std::size_t i = 0; i < planes.size(); ++i) {
    roots.push_back({recorder.Copy(planes[i].name), recorder.Build(planes[i].list.value, i)});
  }
  std::vector<DictionaryEntry> top = {{"Recording Version", 1}};
  if (classes) top.push_back({"Classes", *classes});
  top.push_back({"Planes", recorder.Copy(roots)});
  const auto recording = recorder.Copy(top);
  return PropertyList{recorder.TakeMemory(), recording};
}

}  // namespace fernwick::lab
