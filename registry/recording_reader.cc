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

// The error of a dictionary with a key that is not among those known; empty when there is none.
std::string DescribeUnknownKey(Dictionary dictionary,
                               std::initializer_list<std::string_view> known) {
  for (const auto& entry : dictionary.Entries()) {
    if (std::ranges::find(known, entry.key) != known.end()) continue;
    return "the key " + Quoted(entry.key) + " is not known";
  }
  return {};
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

  std::string FaultAt(std::size_t node, std::string_view message) const {
    return PathOf(node) + ": " + std::string(message);
  }
};

// Each function from here on returns an error message, or an empty text.

// Called first, so that a recording of another version is refused for its version.
std::string CheckVersion(Dictionary top) {
  const auto* version = top.Find("Recording Version");
  if (version == nullptr) return "\"Recording Version\" is missing";
  if (version->AsInteger() == Integer(1)) return {};
  return "\"Recording Version\" is not the integer 1";
}

// Finds a cycle by walking up from every class and marking each class with the start of the walk
// that reached it: a class with the mark of the current walk closes a cycle, one with the mark of
// an earlier walk ends this one. Every class is visited once, so this costs n log n for n classes.
std::string CheckClassChains(const Recording& recording) {
  std::map<std::string_view, std::string_view>
      walks;  // the start of the walk that reached the class
  for (const auto& [start, ignored] : recording.superclasses) {
    std::string_view name = start;
    for (;;) {
      const auto [walk, isNew] = walks.emplace(name, start);
      if (!isNew && walk->second == start) {
        return "Classes: the class " + Quoted(name) + " derives from itself";
      }
      const auto superclass = recording.superclasses.find(name);
      if (!isNew || superclass == recording.superclasses.end()) break;
      name = superclass->second;
    }
  }
  return {};
}

std::string ReadClasses(Dictionary top, Recording& recording) {
  const auto* value = top.Find("Classes");
  if (value == nullptr) return {};
  const auto classes = value->AsDictionary();
  if (!classes) return "Classes: not a dictionary";
  for (const auto& [key, superclass] : classes->Entries()) {
    const auto name = superclass.AsString();
    if (key.empty()) return "Classes: the name of a class is empty";
    if (!name) return "Classes: the superclass of " + Quoted(key) + " is not a string";
    if (name->empty()) {
      return "Classes: the name of the superclass of " + Quoted(key) + " is empty";
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

  std::string ReadNode(const PropertyValue& value, std::size_t parent, std::size_t ordinal) {
    const std::size_t number = table_.nodes.size();
    table_.nodes.push_back({table_.planeNames.size() - 1, parent, ordinal, 0});
    const auto node = value.AsDictionary();
    if (!node) return table_.FaultAt(number, "not a dictionary");
    const bool isLink = node->Find("Link") != nullptr;
    auto fault = isLink ? ReadLink(number, *node) : ReadEntry(number, *node);
    return fault.empty() ? ReadChildren(number, *node) : fault;
  }

 private:
  std::string ReadLink(std::size_t number, Dictionary node) {
    for (const std::string_view key : {"Name", "Class", "Properties", "ID"}) {
      if (node.Find(key) != nullptr) {
        return table_.FaultAt(number, "a link must not have " + Quoted(key));
      }
    }
    std::string_view target;
    auto fault = CheckKeys(number, node, {"Link", "Children"});
    if (fault.empty()) fault = ReadText(number, node, "Link", target);
    if (fault.empty()) table_.links.push_back({number, target});
    return fault;
  }

  std::string ReadEntry(std::size_t number, Dictionary node) {
    RecordedEntry entry;
    auto fault = CheckKeys(number, node, {"Name", "Class", "Properties", "ID", "Children"});
    if (fault.empty()) fault = ReadName(number, node, entry.name);
    if (fault.empty()) fault = ReadClass(number, node, entry.class_);
    if (fault.empty()) fault = ReadProperties(number, node, entry.properties);
    if (!fault.empty()) return fault;
    entries_.push_back(entry);
    table_.nodes[number].entry = static_cast<RegistryEntry>(entries_.size());
    return ReadId(number, node);
  }

  std::string CheckKeys(std::size_t number, Dictionary node,
                        std::initializer_list<std::string_view> known) const {
    const auto unknown = DescribeUnknownKey(node, known);
    return unknown.empty() ? unknown : table_.FaultAt(number, unknown);
  }

  // The string under `key`; `text` is left as it was when the key is absent.
  std::string ReadText(std::size_t number, Dictionary node, std::string_view key,
                       std::string_view& text) const {
    const auto* value = node.Find(key);
    if (value == nullptr) return {};
    const auto string = value->AsString();
    if (!string) return table_.FaultAt(number, Quoted(key) + " is not a string");
    text = *string;
    return {};
  }

  std::string ReadName(std::size_t number, Dictionary node, std::string_view& name) const {
    if (node.Find("Name") == nullptr) {
      const bool isRoot = table_.nodes[number].parent == NoNode;
      return isRoot ? std::string() : table_.FaultAt(number, "\"Name\" is missing");
    }
    auto fault = ReadText(number, node, "Name", name);
    if (!fault.empty()) return fault;
    if (name.empty()) return table_.FaultAt(number, "\"Name\" is empty");
    if (name.find('/') == std::string_view::npos) return {};
    return table_.FaultAt(number, "\"Name\" holds a \"/\"");
  }

  std::string ReadClass(std::size_t number, Dictionary node, std::string_view& name) const {
    auto fault = ReadText(number, node, "Class", name);
    if (!fault.empty() || !name.empty() || node.Find("Class") == nullptr) return fault;
    return table_.FaultAt(number, "\"Class\" is empty");
  }

  std::string ReadProperties(std::size_t number, Dictionary node, Dictionary& properties) const {
    const auto* value = node.Find("Properties");
    if (value == nullptr) return {};
    const auto dictionary = value->AsDictionary();
    if (!dictionary) return table_.FaultAt(number, "\"Properties\" is not a dictionary");
    properties = *dictionary;
    return {};
  }

  std::string ReadId(std::size_t number, Dictionary node) {
    if (node.Find("ID") == nullptr) return {};
    std::string_view id;
    auto fault = ReadText(number, node, "ID", id);
    if (!fault.empty()) return fault;
    if (id.empty()) return table_.FaultAt(number, "\"ID\" is empty");
    const auto& [plane, parent, ordinal, entry] = table_.nodes[number];
    if (table_.entriesById.emplace(id, IdentifiedEntry{entry, plane}).second) return {};
    return table_.FaultAt(number, "the ID " + Quoted(id) + " is taken by an earlier node");
  }

  std::string ReadChildren(std::size_t number, Dictionary node) {
    const auto* value = node.Find("Children");
    if (value == nullptr) return {};
    const auto children = value->AsArray();
    if (!children) return table_.FaultAt(number, "\"Children\" is not an array");
    for (std::size_t i = 0; i < children->size(); ++i) {
      auto fault = ReadNode((*children)[i], number, i);
      if (!fault.empty()) return fault;
    }
    return {};
  }

  NodeTable& table_;
  std::vector<RecordedEntry>& entries_;
};

std::string ReadPlanes(Dictionary top, NodeTable& table, std::vector<RecordedEntry>& entries) {
  const auto* value = top.Find("Planes");
  if (value == nullptr) return "\"Planes\" is missing";
  const auto planes = value->AsDictionary();
  if (!planes) return "Planes: not a dictionary";
  NodeReader reader(table, entries);
  for (const auto& [name, root] : planes->Entries()) {
    if (name.empty()) return "Planes: the name of a plane is empty";
    if (name.find(':') != std::string_view::npos) {
      return "Planes: the name " + Quoted(name) + " contains a \":\"";
    }
    table.planeNames.push_back(name);
    auto fault = reader.ReadNode(root, NoNode, 0);
    if (!fault.empty()) return fault;
  }
  return {};
}

constexpr char TwiceInPlane[] = "the entry already stands in this plane";

std::string ResolveLinks(NodeTable& table) {
  for (const auto& [number, id] : table.links) {
    const auto target = table.entriesById.find(id);
    if (target == table.entriesById.end()) {
      return table.FaultAt(number, "no entry has the ID " + Quoted(id));
    }
    auto& node = table.nodes[number];
    if (target->second.plane == node.plane) return table.FaultAt(number, TwiceInPlane);
    node.entry = target->second.entry;
  }
  return {};
}

std::string PlaceEntries(const NodeTable& table, Recording& recording) {
  for (std::size_t number = 0; number < table.nodes.size(); ++number) {
    const auto& node = table.nodes[number];
    auto& plane = recording.planes[table.planeNames[node.plane]];
    const bool isRoot = node.parent == NoNode;
    const RegistryEntry parent = isRoot ? 0 : table.nodes[node.parent].entry;
    if (!plane.placements.try_emplace(node.entry, RecordedPlane::Placement{parent, {}}).second) {
      return table.FaultAt(number, TwiceInPlane);
    }
    if (isRoot) {
      plane.root = node.entry;
    } else {
      plane.placements[parent].children.push_back(node.entry);
    }
  }
  return {};
}

std::string ReadTopLevel(const PropertyValue& value, Recording& recording) {
  const auto top = value.AsDictionary();
  if (!top) return "a recording is a dictionary";
  NodeTable table;
  auto fault = CheckVersion(*top);
  if (fault.empty()) {
    fault = DescribeUnknownKey(*top, {"Recording Version", "Classes", "Planes"});
  }
  if (fault.empty()) fault = ReadClasses(*top, recording);
  if (fault.empty()) fault = ReadPlanes(*top, table, recording.entries);
  if (fault.empty()) fault = ResolveLinks(table);
  if (fault.empty()) fault = PlaceEntries(table, recording);
  return fault;
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
  auto fault = ReadTopLevel(list.value, recording);
  if (!fault.empty()) return Error{std::move(fault)};
  recording.list = std::move(list);
  return recording;
}

}  // namespace fernwick
