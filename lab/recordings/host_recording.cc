// A depth-first traversal of both planes, each entry before its children. An entry becomes a node
// when its subtree is known, since that determines whether it is recorded. Costs a read of each
// file whose property is recorded.

#include "lab/recordings/host_recording.h"

#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "driver/bypass_switch.h"
#include "lab/recordings/tool_properties.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

class HostRecorder {
 public:
  HostRecorder(HostRegistry& registry, RecordedProperties recorded)
      : registry_(registry),
        recorded_(recorded),
        options_(registry.LookupEntryByPath(BootOptionsPath)) {}

  PropertyList Record() {
    const auto planes =
        Copy({{"IODeviceTree", Root("IODeviceTree:/")}, {"IOService", Root("IOService:/")}});
    const auto classes = Copy({{HostRegistry::SwitchClass, ThunderboltControllerClass}});
    const auto top = Copy({{"Recording Version", 1}, {"Classes", classes}, {"Planes", planes}});
    return {std::move(arena_), top};
  }

 private:
  Dictionary Copy(const std::vector<DictionaryEntry>& entries) {
    return arena_.Copy(std::span(entries));
  }

  Dictionary Root(std::string_view path) {
    const RegistryEntry root = registry_.LookupEntryByPath(path);
    return Node(root, Properties(root), Children(root));
  }

  Dictionary Node(RegistryEntry entry, Dictionary properties, Array children) {
    std::vector<DictionaryEntry> node;
    node.push_back({"Name", arena_.Copy(registry_.NameOf(entry))});
    const auto className = registry_.ClassOf(entry);
    if (!className.empty()) node.push_back({"Class", className});
    if (properties.Size() > 0) node.push_back({"Properties", properties});
    if (!children.empty()) node.push_back({"Children", children});
    return Copy(node);
  }

  Array Children(RegistryEntry parent) {
    std::vector<PropertyValue> nodes;
    for (const RegistryEntry child : registry_.ChildrenOf(parent)) {
      const auto properties = Properties(child);
      const auto children = Children(child);
      const bool isRecorded = recorded_ == RecordedProperties::All || properties.Size() > 0 ||
                              !children.empty() || child == options_;
      if (isRecorded) nodes.emplace_back(Node(child, properties, children));
    }
    return arena_.Copy(std::span<const PropertyValue>(nodes));
  }

  Dictionary Properties(RegistryEntry entry) {
    std::vector<DictionaryEntry> properties;
    for (const auto& name : registry_.PropertyNamesOf(entry)) {
      if (recorded_ != RecordedProperties::All && !ToolReads(name)) continue;
      const auto value = registry_.GetProperty(entry, name);
      if (value) properties.push_back({arena_.Copy(name), Kept(*value)});
    }
    return Copy(properties);
  }

  // The value in memory of the recording.
  PropertyValue Kept(const PropertyValue& value) {
    if (const auto text = value.AsString()) return arena_.Copy(*text);
    if (const auto bytes = value.AsData()) return Data{arena_.Copy(*bytes)};
    return value;  // a number
  }

  HostRegistry& registry_;
  const RecordedProperties recorded_;
  const RegistryEntry options_;
  Arena arena_;
};

}  // namespace

PropertyList RecordHost(HostRegistry& registry, RecordedProperties recorded) {
  return HostRecorder(registry, recorded).Record();
}

}  // namespace fernwick::lab
