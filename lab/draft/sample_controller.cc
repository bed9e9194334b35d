#include "lab/draft/sample_controller.h"

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/controller_values.h"
#include "registry/board_identity.h"
#include "registry/key_schema.h"
#include "registry/port_inventory.h"
#include "registry/registry.h"
#include "registry/thunderbolt_inventory.h"

namespace fernwick::lab {
namespace {

// The properties of the two entries.
struct SampleProperties {
  Record port = {};
  Record thunderbolt = {};
};

// The property that is converted to the value of a record. A real is written as the whole number
// that it is, since a negative one would not be read as that.
PropertyValue PropertyFor(Conversion conversion, const PropertyValue& value) {
  const auto number = value.AsNumber();
  if (conversion == Conversion::NonZero) return IsNonZero(*number);
  const auto real = value.AsReal();
  if (conversion == Conversion::Signed32 && real) return static_cast<std::int32_t>(*real);
  return value;
}

void SetVersion(const SampleController& controller, SampleProperties& properties) {
  const auto hundredths = controller.version.AsReal();
  const auto& key = *FindKey("Version");
  if (!hundredths) {
    const auto version = static_cast<std::uint32_t>(controller.version.AsInteger()->Bits());
    properties.port.Set(key.port.property, EncodeBcd(version));
    return;
  }
  const double major = std::floor(*hundredths);
  const auto minor = static_cast<int>(std::lround((*hundredths - major) * 100));
  properties.thunderbolt.Set(key.thunderbolt.property,
                             EncodeBcd(static_cast<std::uint32_t>(major)));
  if (minor != 0) {
    properties.thunderbolt.Set(FindKey("Engineering Version")->thunderbolt.property, minor);
  }
}

SampleProperties PropertiesOf(const SampleController& controller) {
  SampleProperties properties;
  if (!controller.shape.hasPort) properties.thunderbolt = {{"Depth", 0}, {"Route String", 0}};
  for (const auto& key : KeySchema()) {
    if (key.name == "Version") SetVersion(controller, properties);
    const auto* value = controller.values.Find(key.name);
    if (value == nullptr) continue;
    const bool isOfPort = !key.port.property.empty();
    const auto& origin = isOfPort ? key.port : key.thunderbolt;
    auto& record = isOfPort ? properties.port : properties.thunderbolt;
    record.Set(origin.property, PropertyFor(origin.conversion, *value));
  }
  return properties;
}

// Builds the nodes of a recording in its arena.
class SampleBuilder {
 public:
  PropertyList Build(std::string_view board, const SampleController& controller) {
    const auto planes = Copy({{DeviceTreePlane, Board(board, controller.boardRevision)},
                              {ServicePlane, Services(controller)}});
    const auto top = Copy({{"Recording Version", 1}, {"Planes", planes}});
    return {std::move(arena_), top};
  }

 private:
  Dictionary Copy(std::initializer_list<DictionaryEntry> entries) {
    return arena_.Copy(std::span(entries.begin(), entries.size()));
  }

  Dictionary Copy(const Record& record) { return arena_.Copy(record.Entries()); }

  Dictionary Board(std::string_view board, int revision) {
    Record properties = {{"board-id", Data{arena_.Copy(std::string(board) + '\0')}}};
    if (revision != 0) {
      const std::string byte(1, static_cast<char>(revision));
      properties.Set(BoardRevisionProperty, Data{arena_.Copy(byte)});
    }
    return Copy({{"Properties", Copy(properties)}});
  }

  Dictionary Services(const SampleController& controller) {
    const auto properties = PropertiesOf(controller);
    std::vector<PropertyValue> children;
    if (controller.shape.hasPort) {
      children.emplace_back(Node("hpm0", PortControllerClass, properties.port, {}));
    }
    if (controller.shape.hasThunderbolt) {
      const auto below = ChildrenOf(children);
      children = {Node("ridge0", ThunderboltControllerClass, properties.thunderbolt, below)};
    }
    return Copy({{"Children", ChildrenOf(children)}});
  }

  Array ChildrenOf(const std::vector<PropertyValue>& nodes) {
    return arena_.Copy(std::span<const PropertyValue>(nodes));
  }

  Dictionary Node(std::string_view name, std::string_view className, const Record& properties,
                  Array children) {
    Record node = {{"Name", name}, {"Class", className}, {"Properties", Copy(properties)}};
    if (!children.empty()) node.Set("Children", children);
    return Copy(node);
  }

  Arena arena_;
};

}  // namespace

PropertyList RecordSample(std::string_view board, const SampleController& controller) {
  return SampleBuilder().Build(board, controller);
}

}  // namespace fernwick::lab
