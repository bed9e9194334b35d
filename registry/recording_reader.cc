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

// What is wrong with a dictionary that may have no key but those known; empty when nothing is.
std::string DescribeUnknownKey(Dictionary dictionary,
                               std::initializer_list<std::string_view> known) {
  for (const auto& entry : dictionary.Entries()) {
    if (std::ranges::find(known, entry.key) != known.end()) continue;
    return "the key " + Quoted(entry.key) + " is not known";
  }
  return {};
}

class RecordingReader {
 public:
  Result<Recording> Read(PropertyList list) {
    if (!ReadTopLevel(list.value)) return Error{std::move(error_)};
    recording_.list = std::move(list);
    return std::move(recording_);
  }

 private:
  static constexpr std::size_t NoNode = ~std::size_t{0};

  // Where a node is. Nodes are numbered in the order of the file.
  struct Node {
    std::size_t plane;    // index in planeNames_
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

  bool Fail(std::string message) {
    error_ = std::move(message);
    return false;
  }

  bool FailAt(std::size_t node, std::string_view message) {
    return Fail(PathOf(node) + ": " + std::string(message));
  }

  // Put together only for a message: a recording may have millions of nodes.
  std::string PathOf(std::size_t number) const {
    const auto& node = nodes_[number];
    if (node.parent == NoNode) return "Planes/" + Excerpt(planeNames_[node.plane]);
    return PathOf(node.parent) + "/Children[" + std::to_string(node.ordinal) + "]";
  }

  bool ReadTopLevel(const PropertyValue& value) {
    const auto top = value.AsDictionary();
    if (!top) return Fail("a recording is a dictionary");
    if (!CheckVersion(*top)) return false;
    auto unknown = DescribeUnknownKey(*top, {"Recording Version", "Classes", "Planes"});
    if (!unknown.empty()) return Fail(std::move(unknown));
    return ReadClasses(*top) && ReadPlanes(*top) && ResolveLinks() && PlaceEntries();
  }

  // First of all, so that the error of a recording of another version is its version.
  bool CheckVersion(Dictionary top) {
    const auto* version = top.Find("Recording Version");
    if (version == nullptr) return Fail("\"Recording Version\" is missing");
    if (version->AsInteger() == Integer(1)) return true;
    return Fail("\"Recording Version\" is not the integer 1");
  }

  bool ReadClasses(Dictionary top) {
    const auto* value = top.Find("Classes");
    if (value == nullptr) return true;
    const auto classes = value->AsDictionary();
    if (!classes) return Fail("Classes: not a dictionary");
    for (const auto& [key, superclass] : classes->Entries()) {
      const auto name = superclass.AsString();
      if (key.empty()) return Fail("Classes: the name of a class is empty");
      if (!name) {
        return Fail("Classes: the superclass of " + Quoted(key) + " is not a string");
      }
      if (name->empty()) {
        return Fail("Classes: the name of the superclass of " + Quoted(key) + " is empty");
      }
      recording_.superclasses.emplace(key, *name);
    }
    return CheckClassChains();
  }

  // Walks every chain once: what an earlier walk has seen to end need not be walked again.
  bool CheckClassChains() {
    std::map<std::string_view, std::string_view> walks;  // class to the start of its walk
    for (const auto& [start, ignored] : recording_.superclasses) {
      std::string_view name = start;
      for (;;) {
        const auto [walk, isNew] = walks.emplace(name, start);
        if (!isNew && walk->second == start) {
          return Fail("Classes: the class " + Quoted(name) + " derives from itself");
        }
        const auto superclass = recording_.superclasses.find(name);
        if (!isNew || superclass == recording_.superclasses.end()) break;
        name = superclass->second;
      }
    }
    return true;
  }

  bool ReadPlanes(Dictionary top) {
    const auto* value = top.Find("Planes");
    if (value == nullptr) return Fail("\"Planes\" is missing");
    const auto planes = value->AsDictionary();
    if (!planes) return Fail("Planes: not a dictionary");
    for (const auto& [name, root] : planes->Entries()) {
      if (name.empty()) return Fail("Planes: the name of a plane is empty");
      if (name.find(':') != std::string_view::npos) {
        return Fail("Planes: the name " + Quoted(name) + " contains a \":\"");
      }
      planeNames_.push_back(name);
      if (!ReadNode(root, NoNode, 0)) return false;
    }
    return true;
  }

  bool ReadNode(const PropertyValue& value, std::size_t parent, std::size_t ordinal) {
    const std::size_t number = nodes_.size();
    nodes_.push_back({planeNames_.size() - 1, parent, ordinal, 0});
    const auto node = value.AsDictionary();
    if (!node) return FailAt(number, "not a dictionary");
    const bool isLink = node->Find("Link") != nullptr;
    const bool read = isLink ? ReadLink(number, *node) : ReadEntry(number, *node);
    return read && ReadChildren(number, *node);
  }

  bool ReadLink(std::size_t number, Dictionary node) {
    for (const std::string_view key : {"Name", "Class", "Properties", "ID"}) {
      if (node.Find(key) != nullptr) return FailAt(number, "a link must not have " + Quoted(key));
    }
    std::string_view target;
    if (!CheckKeys(number, node, {"Link", "Children"}) || !ReadText(number, node, "Link", target)) {
      return false;
    }
    links_.push_back({number, target});
    return true;
  }

  bool ReadEntry(std::size_t number, Dictionary node) {
    RecordedEntry entry;
    if (!CheckKeys(number, node, {"Name", "Class", "Properties", "ID", "Children"}) ||
        !ReadName(number, node, entry.name) || !ReadClass(number, node, entry.class_) ||
        !ReadProperties(number, node, entry.properties)) {
      return false;
    }
    recording_.entries.push_back(entry);
    nodes_[number].entry = static_cast<RegistryEntry>(recording_.entries.size());
    return ReadId(number, node);
  }

  bool CheckKeys(std::size_t number, Dictionary node,
                 std::initializer_list<std::string_view> known) {
    const auto unknown = DescribeUnknownKey(node, known);
    if (!unknown.empty()) return FailAt(number, unknown);
    return true;
  }

  // The string under `key`, left as it was when the key is absent.
  bool ReadText(std::size_t number, Dictionary node, std::string_view key, std::string_view& text) {
    const auto* value = node.Find(key);
    if (value == nullptr) return true;
    const auto string = value->AsString();
    if (!string) return FailAt(number, Quoted(key) + " is not a string");
    text = *string;
    return true;
  }

  bool ReadName(std::size_t number, Dictionary node, std::string_view& name) {
    if (node.Find("Name") == nullptr) {
      if (nodes_[number].parent != NoNode) return FailAt(number, "\"Name\" is missing");
      return true;
    }
    if (!ReadText(number, node, "Name", name)) return false;
    if (name.empty()) return FailAt(number, "\"Name\" is empty");
    if (name.find('/') != std::string::npos) return FailAt(number, "\"Name\" holds a \"/\"");
    return true;
  }

  bool ReadClass(std::size_t number, Dictionary node, std::string_view& name) {
    if (!ReadText(number, node, "Class", name)) return false;
    const bool isEmpty = name.empty() && node.Find("Class") != nullptr;
    return !isEmpty || FailAt(number, "\"Class\" is empty");
  }

  bool ReadProperties(std::size_t number, Dictionary node, Dictionary& properties) {
    const auto* value = node.Find("Properties");
    if (value == nullptr) return true;
    if (!value->AsDictionary()) {
      return FailAt(number, "\"Properties\" is not a dictionary");
    }
    properties = *value->AsDictionary();
    return true;
  }

  bool ReadId(std::size_t number, Dictionary node) {
    if (node.Find("ID") == nullptr) return true;
    std::string_view id;
    if (!ReadText(number, node, "ID", id)) return false;
    if (id.empty()) return FailAt(number, "\"ID\" is empty");
    const IdentifiedEntry identified{nodes_[number].entry, nodes_[number].plane};
    if (entriesById_.emplace(id, identified).second) return true;
    return FailAt(number, "the ID " + Quoted(id) + " is taken by an earlier node");
  }

  bool ReadChildren(std::size_t number, Dictionary node) {
    const auto* value = node.Find("Children");
    if (value == nullptr) return true;
    const auto children = value->AsArray();
    if (!children) return FailAt(number, "\"Children\" is not an array");
    for (std::size_t i = 0; i < children->size(); ++i) {
      if (!ReadNode((*children)[i], number, i)) return false;
    }
    return true;
  }

  bool ResolveLinks() {
    for (const auto& [number, id] : links_) {
      const auto target = entriesById_.find(id);
      if (target == entriesById_.end()) return FailAt(number, "no entry has the ID " + Quoted(id));
      if (target->second.plane == nodes_[number].plane) return FailTwiceInPlane(number);
      nodes_[number].entry = target->second.entry;
    }
    return true;
  }

  bool FailTwiceInPlane(std::size_t number) {
    return FailAt(number, "the entry already stands in this plane");
  }

  bool PlaceEntries() {
    for (std::size_t number = 0; number < nodes_.size(); ++number) {
      const auto& node = nodes_[number];
      auto& plane = recording_.planes[planeNames_[node.plane]];
      const bool isRoot = node.parent == NoNode;
      const RegistryEntry parent = isRoot ? 0 : nodes_[node.parent].entry;
      if (!plane.placements.try_emplace(node.entry, RecordedPlane::Placement{parent, {}}).second) {
        return FailTwiceInPlane(number);
      }
      if (isRoot) {
        plane.root = node.entry;
      } else {
        plane.placements[parent].children.push_back(node.entry);
      }
    }
    return true;
  }

  Recording recording_;
  std::string error_;
  std::vector<std::string_view> planeNames_;  // the last one is being read
  std::vector<Node> nodes_;
  std::vector<Link> links_;
  std::map<std::string_view, IdentifiedEntry> entriesById_;
};

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
  return RecordingReader().Read(std::move(list));
}

}  // namespace fernwick
