// Three passes over the planes, each up to the first error. The nodes of all planes are read in the
// order of the file into one table, and their entries into the recording; then the links between
// planes are resolved by the IDs of the entries; then the entries are put into the planes at their
// positions, which finds an entry that a plane has twice. The chains of classes are checked before,
// by marked walks (see CheckClassChains). O(n log n) for n nodes and classes; recursive, to the
// depth of the property list.

#include "registry/recording_reader.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "value/property_list_reader.h"
#include "value/unicode/text_position.h"

namespace fernwick {
namespace {

std::string Quoted(std::string_view text) {
  return "\"" + Excerpt(text) + "\"";
}

// The message about the first key of a dictionary that is not among those known; empty (nullopt)
// when there is none.
std::optional<std::string> DescribeUnknownKey(Dictionary dictionary,
                                              std::initializer_list<std::string_view> known) {
  for (const auto& entry : dictionary.Entries()) {
    if (std::ranges::find(known, entry.key) != known.end()) continue;
    return "the key " + Quoted(entry.key) + " is not known";
  }
  return std::nullopt;
}

constexpr std::size_t NoNode = ~std::size_t{0};

// A node of a plane's tree. Nodes are numbered in the order of the file.
struct Node {
  std::size_t plane;    // index in planeNames
  std::size_t parent;   // NoNode at a plane's root
  std::size_t ordinal;  // among its parent's children
  RegistryEntry entry;  // 0: a link that is not resolved yet
};

struct Link {
  std::size_t node;
  std::string_view target;  // the ID of the entry
};

// An entry that links can refer to.
struct IdentifiedEntry {
  RegistryEntry entry;
  std::size_t plane;  // the one that defines it
};

// All nodes of all planes, as the file has them.
struct NodeTable {
  std::vector<std::string_view> planeNames = {};  // the last one is being read
  std::vector<Node> nodes = {};
  std::vector<Link> links = {};
  std::map<std::string_view, IdentifiedEntry> entriesById = {};

  // Computed only for a message: a recording may have millions of nodes.
  std::string PathOf(std::size_t number) const {
    const auto& node = nodes[number];
    if (node.parent == NoNode) return "Planes/" + Excerpt(planeNames[node.plane]);
    return PathOf(node.parent) + "/Children[" + std::to_string(node.ordinal) + "]";
  }

  Error ErrorAt(std::size_t node, std::string_view message) const {
    return {PathOf(node) + ": " + std::string(message)};
  }
};

// The first error of a pass or a part of one; empty (nullopt) when there is none.
using MaybeError = std::optional<Error>;

// Called first, so that a recording of another version is refused for its version.
MaybeError CheckVersion(Dictionary top) {
  const auto* version = top.Find("Recording Version");
  if (version == nullptr) return Error{"\"Recording Version\" is missing"};
  if (version->AsInteger() == Integer(1)) return std::nullopt;
  return Error{"\"Recording Version\" is not the integer 1"};
}

// Finds a cycle by walking up from every class and marking each class with the start of the walk
// that reached it: a class with the mark of the current walk closes a cycle, one with the mark of
// an earlier walk ends this one. Every class is visited once, so this costs n log n for n classes.
MaybeError CheckClassChains(const Recording& recording) {
  std::map<std::string_view, std::string_view>
      walks;  // the start of the walk that reached the class
  for (const auto& [start, ignored] : recording.superclasses) {
    std::string_view name = start;
    for (;;) {
      const auto [walk, isNew] = walks.emplace(name, start);
      if (!isNew && walk->second == start) {
        return Error{"Classes: the class " + Quoted(name) + " derives from itself"};
      }
      const auto superclass = recording.superclasses.find(name);
      if (!isNew || superclass == recording.superclasses.end()) break;
      name = superclass->second;
    }
  }
  return std::nullopt;
}

MaybeError ReadClasses(Dictionary top, Recording& recording) {
  const auto* value = top.Find("Classes");
  if (value == nullptr) return std::nullopt;
  const auto classes = value->AsDictionary();
  if (!classes) return Error{"Classes: not a dictionary"};
  for (const auto& [key, superclass] : classes->Entries()) {
    const auto name = superclass.AsString();
    if (key.empty()) return Error{"Classes: the name of a class is empty"};
    if (!name) return Error{"Classes: the superclass of " + Quoted(key) + " is not a string"};
    if (name->empty()) {
      return Error{"Classes: the name of the superclass of " + Quoted(key) + " is empty"};
    }
    recording.superclasses.emplace(key, *name);
  }
  return CheckClassChains(recording);
}

// Reads the nodes of one plane into the table and their entries into the recording.
class NodeReader {
 public:
  NodeReader(NodeTable& table, std::vector<RecordedEntry>& entries)
      : table_(table), entries_(entries) {}

  MaybeError ReadNode(const PropertyValue& value, std::size_t parent, std::size_t ordinal) {
    const std::size_t number = table_.nodes.size();
    table_.nodes.push_back({table_.planeNames.size() - 1, parent, ordinal, 0});
    const auto node = value.AsDictionary();
    if (!node) return table_.ErrorAt(number, "not a dictionary");
    const bool isLink = node->Find("Link") != nullptr;
    auto error = isLink ? ReadLink(number, *node) : ReadEntry(number, *node);
    return error ? error : ReadChildren(number, *node);
  }

 private:
  MaybeError ReadLink(std::size_t number, Dictionary node) {
    for (const std::string_view key : {"Name", "Class", "Properties", "ID"}) {
      if (node.Find(key) != nullptr) {
        return table_.ErrorAt(number, "a link must not have " + Quoted(key));
      }
    }
    std::string_view target;
    auto error = CheckKeys(number, node, {"Link", "Children"});
    if (!error) error = ReadText(number, node, "Link", target);
    if (!error) table_.links.push_back({number, target});
    return error;
  }

  MaybeError ReadEntry(std::size_t number, Dictionary node) {
    RecordedEntry entry;
    auto error = CheckKeys(number, node, {"Name", "Class", "Properties", "ID", "Children"});
    if (!error) error = ReadName(number, node, entry.name);
    if (!error) error = ReadClass(number, node, entry.className);
    if (!error) error = ReadProperties(number, node, entry.properties);
    if (error) return error;
    entries_.push_back(entry);
    table_.nodes[number].entry = static_cast<RegistryEntry>(entries_.size());
    return ReadId(number, node);
  }

  MaybeError CheckKeys(std::size_t number, Dictionary node,
                       std::initializer_list<std::string_view> known) const {
    const auto unknown = DescribeUnknownKey(node, known);
    if (!unknown) return std::nullopt;
    return table_.ErrorAt(number, *unknown);
  }

  // The string under `key`; `text` is left as it was when the key is absent.
  MaybeError ReadText(std::size_t number, Dictionary node, std::string_view key,
                      std::string_view& text) const {
    const auto* value = node.Find(key);
    if (value == nullptr) return std::nullopt;
    const auto string = value->AsString();
    if (!string) return table_.ErrorAt(number, Quoted(key) + " is not a string");
    text = *string;
    return std::nullopt;
  }

  MaybeError ReadName(std::size_t number, Dictionary node, std::string_view& name) const {
    if (node.Find("Name") == nullptr) {
      if (table_.nodes[number].parent == NoNode) return std::nullopt;
      return table_.ErrorAt(number, "\"Name\" is missing");
    }
    auto error = ReadText(number, node, "Name", name);
    if (error) return error;
    if (name.empty()) return table_.ErrorAt(number, "\"Name\" is empty");
    if (name.find('/') == std::string_view::npos) return std::nullopt;
    return table_.ErrorAt(number, "\"Name\" contains a \"/\"");
  }

  MaybeError ReadClass(std::size_t number, Dictionary node, std::string_view& name) const {
    auto error = ReadText(number, node, "Class", name);
    if (error || !name.empty() || node.Find("Class") == nullptr) return error;
    return table_.ErrorAt(number, "\"Class\" is empty");
  }

  MaybeError ReadProperties(std::size_t number, Dictionary node, Dictionary& properties) const {
    const auto* value = node.Find("Properties");
    if (value == nullptr) return std::nullopt;
    const auto dictionary = value->AsDictionary();
    if (!dictionary) return table_.ErrorAt(number, "\"Properties\" is not a dictionary");
    properties = *dictionary;
    return std::nullopt;
  }

  MaybeError ReadId(std::size_t number, Dictionary node) {
    if (node.Find("ID") == nullptr) return std::nullopt;
    std::string_view id;
    auto error = ReadText(number, node, "ID", id);
    if (error) return error;
    if (id.empty()) return table_.ErrorAt(number, "\"ID\" is empty");
    const auto& [plane, parent, ordinal, entry] = table_.nodes[number];
    if (table_.entriesById.emplace(id, IdentifiedEntry{entry, plane}).second) return std::nullopt;
    return table_.ErrorAt(number, "the ID " + Quoted(id) + " belongs to an earlier node");
  }

  MaybeError ReadChildren(std::size_t number, Dictionary node) {
    const auto* value = node.Find("Children");
    if (value == nullptr) return std::nullopt;
    const auto children = value->AsArray();
    if (!children) return table_.ErrorAt(number, "\"Children\" is not an array");
    for (std::size_t i = 0; i < children->size(); ++i) {
      auto error = ReadNode((*children)[i], number, i);
      if (error) return error;
    }
    return std::nullopt;
  }

  NodeTable& table_;
  std::vector<RecordedEntry>& entries_;
};

MaybeError ReadPlanes(Dictionary top, NodeTable& table, std::vector<RecordedEntry>& entries) {
  const auto* value = top.Find("Planes");
  if (value == nullptr) return Error{"\"Planes\" is missing"};
  const auto planes = value->AsDictionary();
  if (!planes) return Error{"Planes: not a dictionary"};
  NodeReader reader(table, entries);
  for (const auto& [name, root] : planes->Entries()) {
    if (name.empty()) return Error{"Planes: the name of a plane is empty"};
    if (name.find(':') != std::string_view::npos) {
      return Error{"Planes: the name " + Quoted(name) + " contains a \":\""};
    }
    table.planeNames.push_back(name);
    auto error = reader.ReadNode(root, NoNode, 0);
    if (error) return error;
  }
  return std::nullopt;
}

constexpr char TwiceInPlane[] = "the entry is already in this plane";

MaybeError ResolveLinks(NodeTable& table) {
  for (const auto& [number, id] : table.links) {
    const auto target = table.entriesById.find(id);
    if (target == table.entriesById.end()) {
      return table.ErrorAt(number, "no entry has the ID " + Quoted(id));
    }
    auto& node = table.nodes[number];
    if (target->second.plane == node.plane) return table.ErrorAt(number, TwiceInPlane);
    node.entry = target->second.entry;
  }
  return std::nullopt;
}

MaybeError AddToPlanes(const NodeTable& table, Recording& recording) {
  for (std::size_t number = 0; number < table.nodes.size(); ++number) {
    const auto& node = table.nodes[number];
    auto& plane = recording.planes[table.planeNames[node.plane]];
    const bool isRoot = node.parent == NoNode;
    const RegistryEntry parent = isRoot ? 0 : table.nodes[node.parent].entry;
    if (!plane.placements.try_emplace(node.entry, RecordedPlane::Placement{parent, {}}).second) {
      return table.ErrorAt(number, TwiceInPlane);
    }
    if (isRoot) {
      plane.root = node.entry;
    } else {
      plane.placements[parent].children.push_back(node.entry);
    }
  }
  return std::nullopt;
}

MaybeError CheckTopLevelKeys(Dictionary top) {
  auto unknown = DescribeUnknownKey(top, {"Recording Version", "Classes", "Planes"});
  if (!unknown) return std::nullopt;
  return Error{*std::move(unknown)};
}

MaybeError ReadTopLevel(const PropertyValue& value, Recording& recording) {
  const auto top = value.AsDictionary();
  if (!top) return Error{"a recording is a dictionary"};
  NodeTable table;
  auto error = CheckVersion(*top);
  if (!error) error = CheckTopLevelKeys(*top);
  if (!error) error = ReadClasses(*top, recording);
  if (!error) error = ReadPlanes(*top, table, recording.entries);
  if (!error) error = ResolveLinks(table);
  if (!error) error = AddToPlanes(table, recording);
  return error;
}

}  // namespace

Result<Recording> ReadRecording(std::string bytes) {
  return InterpretRecording(ReadPropertyList(std::move(bytes)));
}

Result<Recording> InterpretRecording(PropertyListReading reading) {
  if (!reading.list) return reading.list.Error();
  if (reading.serialisation == Serialisation::Text) {
    return Error{"a recording is an XML or binary property list, not the old text form"};
  }
  return InterpretRecording(*std::move(reading.list));
}

Result<Recording> InterpretRecording(PropertyList list) {
  Recording recording;
  auto error = ReadTopLevel(list.value, recording);
  if (error) return *std::move(error);
  recording.list = std::move(list);
  return recording;
}

}  // namespace fernwick
