#include "registry/recording_reader.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "value/property_list_reader.h"
#include "value/text_position.h"

namespace fernwick {
namespace {

std::string Quoted(std::string_view text) {
  return "\"" + Excerpt(text) + "\"";
}

class RecordingReader {
 public:
  RecordingReading Read(const PropertyValue& value) {
    if (!ReadTopLevel(value)) return {std::nullopt, std::move(error_)};
    return {std::move(recording_), {}};
  }

 private:
  // An entry that is put into a plane by a link, to be looked up when all entries are known.
  struct PendingLink {
    std::string nodePath;
    std::string target;  // the ID of the entry
    std::string plane;
    std::size_t place;  // in that plane's shape
  };

  // A node of a plane before its links are resolved.
  struct ShapeNode {
    std::string path;
    RegistryEntry entry;  // 0: a link that is not resolved yet
    std::size_t parent;   // index in the same shape; its own for the root
  };
  using Shape = std::vector<ShapeNode>;

  // An entry that links can refer to.
  struct IdentifiedEntry {
    RegistryEntry entry;
    std::string plane;  // the one that defines it
  };

  bool Fail(std::string_view path, std::string message) {
    error_ = path.empty() ? std::move(message) : std::string(path) + ": " + message;
    return false;
  }

  bool ReadTopLevel(const PropertyValue& value) {
    const auto* top = value.AsDictionary();
    if (top == nullptr) return Fail("", "a recording is a dictionary");
    return CheckVersion(*top) && CheckKeys("", *top, {"Recording Version", "Classes", "Planes"}) &&
           ReadClasses(*top) && ReadPlanes(*top) && ResolveLinks() && PlaceEntries();
  }

  // First of all, so that a recording of another version is told by its version.
  bool CheckVersion(const Dictionary& top) {
    const auto* version = top.Find("Recording Version");
    if (version == nullptr) return Fail("", "\"Recording Version\" is missing");
    const auto* number = version->AsInteger();
    if (number == nullptr || *number != Integer(1)) {
      return Fail("", "\"Recording Version\" is not the integer 1");
    }
    return true;
  }

  bool CheckKeys(std::string_view path, const Dictionary& dictionary,
                 std::initializer_list<std::string_view> known) {
    for (const auto& entry : dictionary.Entries()) {
      const auto key = entry.key.View();
      if (std::ranges::find(known, key) != known.end()) continue;
      return Fail(path, "the key " + Quoted(key) + " is not known");
    }
    return true;
  }

  bool ReadClasses(const Dictionary& top) {
    const auto* value = top.Find("Classes");
    if (value == nullptr) return true;
    const auto* classes = value->AsDictionary();
    if (classes == nullptr) return Fail("Classes", "not a dictionary");
    for (const auto& [key, superclass] : classes->Entries()) {
      const auto name = superclass.AsString();
      if (!name) {
        return Fail("Classes", "the superclass of " + Quoted(key.View()) + " is not a string");
      }
      recording_.superclasses.emplace(key.View(), *name);
    }
    return CheckClassChains();
  }

  // Walks every chain once: what has been seen to end need not be walked again.
  bool CheckClassChains() {
    std::unordered_map<std::string_view, std::string_view>
        walkOf;  // class to the start of its walk
    for (const auto& [start, ignored] : recording_.superclasses) {
      std::string_view name = start;
      for (;;) {
        const auto [walk, isNew] = walkOf.emplace(name, start);
        if (!isNew && walk->second == start) {
          return Fail("Classes", "the class " + Quoted(name) + " derives from itself");
        }
        const auto superclass = recording_.superclasses.find(name);
        if (!isNew || superclass == recording_.superclasses.end()) break;
        name = superclass->second;
      }
    }
    return true;
  }

  bool ReadPlanes(const Dictionary& top) {
    const auto* value = top.Find("Planes");
    if (value == nullptr) return Fail("", "\"Planes\" is missing");
    const auto* planes = value->AsDictionary();
    if (planes == nullptr) return Fail("Planes", "not a dictionary");
    for (const auto& [name, root] : planes->Entries()) {
      plane_ = name.View();
      shapes_.emplace(plane_, Shape());
      if (!ReadNode("Planes/" + plane_, root, 0)) return false;
    }
    return true;
  }

  bool ReadNode(const std::string& path, const PropertyValue& value, std::size_t parent) {
    const auto* node = value.AsDictionary();
    if (node == nullptr) return Fail(path, "not a dictionary");
    auto& shape = shapes_[plane_];
    const std::size_t place = shape.size();
    shape.push_back({path, 0, parent});
    const bool isLink = node->Find("Link") != nullptr;
    const bool read = isLink ? ReadLink(path, *node, place) : ReadEntry(path, *node, place);
    return read && ReadChildren(path, *node, place);
  }

  bool ReadLink(const std::string& path, const Dictionary& node, std::size_t place) {
    for (const std::string_view key : {"Name", "Class", "Properties", "ID"}) {
      if (node.Find(key) != nullptr) {
        return Fail(path, "a link must not have " + Quoted(key));
      }
    }
    std::string target;
    if (!CheckKeys(path, node, {"Link", "Children"}) || !ReadText(path, node, "Link", target)) {
      return false;
    }
    links_.push_back({path, std::move(target), plane_, place});
    return true;
  }

  bool ReadEntry(const std::string& path, const Dictionary& node, std::size_t place) {
    const bool isRoot = place == 0;
    RecordedEntry entry;
    if (!CheckKeys(path, node, {"Name", "Class", "Properties", "ID", "Children"}) ||
        !ReadName(path, node, isRoot, entry.name) || !ReadText(path, node, "Class", entry.class_) ||
        !ReadProperties(path, node, entry)) {
      return false;
    }
    recording_.entries.push_back(std::move(entry));
    const auto handle = static_cast<RegistryEntry>(recording_.entries.size());
    shapes_[plane_][place].entry = handle;
    return ReadId(path, node, handle);
  }

  // The string under `key`, left as it was when the key is absent.
  bool ReadText(const std::string& path, const Dictionary& node, std::string_view key,
                std::string& text) {
    const auto* value = node.Find(key);
    if (value == nullptr) return true;
    const auto string = value->AsString();
    if (!string) return Fail(path, Quoted(key) + " is not a string");
    text = *string;
    return true;
  }

  bool ReadName(const std::string& path, const Dictionary& node, bool isRoot, std::string& name) {
    if (node.Find("Name") == nullptr) {
      return isRoot || Fail(path, "\"Name\" is missing");
    }
    if (!ReadText(path, node, "Name", name)) return false;
    if (name.empty()) return Fail(path, "\"Name\" is empty");
    if (name.find('/') != std::string::npos) return Fail(path, "\"Name\" holds a \"/\"");
    return true;
  }

  bool ReadProperties(const std::string& path, const Dictionary& node, RecordedEntry& entry) {
    const auto* value = node.Find("Properties");
    if (value == nullptr) return true;
    const auto* properties = value->AsDictionary();
    if (properties == nullptr) return Fail(path, "\"Properties\" is not a dictionary");
    entry.properties = *properties;
    return true;
  }

  bool ReadId(const std::string& path, const Dictionary& node, RegistryEntry handle) {
    if (node.Find("ID") == nullptr) return true;
    std::string id;
    if (!ReadText(path, node, "ID", id)) return false;
    if (id.empty()) return Fail(path, "\"ID\" is empty");
    if (!entriesById_.emplace(id, IdentifiedEntry{handle, plane_}).second) {
      return Fail(path, "the ID " + Quoted(id) + " is taken by an earlier node");
    }
    return true;
  }

  bool ReadChildren(const std::string& path, const Dictionary& node, std::size_t place) {
    const auto* value = node.Find("Children");
    if (value == nullptr) return true;
    const auto* children = value->AsArray();
    if (children == nullptr) return Fail(path, "\"Children\" is not an array");
    for (std::size_t i = 0; i < children->size(); ++i) {
      const auto childPath = path + "/Children[" + std::to_string(i) + "]";
      if (!ReadNode(childPath, (*children)[i], place)) return false;
    }
    return true;
  }

  bool ResolveLinks() {
    for (const auto& link : links_) {
      const auto target = entriesById_.find(link.target);
      if (target == entriesById_.end()) {
        return Fail(link.nodePath, "no entry has the ID " + Quoted(link.target));
      }
      const auto& [entry, definingPlane] = target->second;
      if (definingPlane == link.plane) return FailStandingTwice(link.nodePath);
      shapes_[link.plane][link.place].entry = entry;
    }
    return true;
  }

  bool FailStandingTwice(std::string_view path) {
    return Fail(path, "the entry already stands in this plane");
  }

  bool PlaceEntries() {
    for (const auto& [name, shape] : shapes_) {
      if (!PlaceEntries(shape, recording_.planes[name])) return false;
    }
    return true;
  }

  bool PlaceEntries(const Shape& shape, RecordedPlane& plane) {
    for (std::size_t i = 0; i < shape.size(); ++i) {
      const auto& [path, entry, parent] = shape[i];
      const RegistryEntry parentEntry = i == 0 ? 0 : shape[parent].entry;
      if (!plane.placements.emplace(entry, RecordedPlane::Placement{parentEntry, {}}).second) {
        return FailStandingTwice(path);
      }
      if (parentEntry != 0) plane.placements[parentEntry].children.push_back(entry);
    }
    plane.root = shape.front().entry;
    return true;
  }

  Recording recording_;
  std::string error_;
  std::string plane_;  // the one being read
  std::map<std::string, Shape, std::less<>> shapes_;
  std::vector<PendingLink> links_;
  std::unordered_map<std::string, IdentifiedEntry> entriesById_;
};

}  // namespace

RecordingReading ReadRecording(std::string bytes) {
  auto reading = ReadPropertyList(std::move(bytes));
  if (!reading.value) return {std::nullopt, std::move(reading.error)};
  if (reading.serialisation == Serialisation::Text) {
    return {std::nullopt, "a recording is an XML or binary property list, not the old text form"};
  }
  return InterpretRecording(*reading.value);
}

RecordingReading InterpretRecording(const PropertyValue& value) {
  return RecordingReader().Read(value);
}

}  // namespace fernwick
