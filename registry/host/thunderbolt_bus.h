#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "registry/host/host_files.h"
#include "value/arena.h"
#include "value/property_value.h"

namespace fernwick {

/// A switch on the Thunderbolt bus of the kernel: a host controller, whose route is 0, or a device
/// plugged into one or into another device. A route has a byte for each hop from the host, the
/// first hop in the lowest byte.
struct BusSwitch {
  std::string name = {};  // of its directory: DOMAIN-ROUTE, decimal and hexadecimal
  std::uint64_t domain = 0;
  std::uint64_t route = 0;
  std::uint64_t uid = 0;  // read with the list: a run needs the one of every switch
  std::optional<std::size_t> parent = {};  // index in the list; none of a host
};

/// The switches that have a unique id and whose parents are there, hosts first, by the number of
/// their hops, then domain, then route. So each comes after its parent, and those that share one in
/// the order of their routes.
std::vector<BusSwitch> ListSwitches(const HostFiles& files);

/// The names of all properties that a switch can have.
std::set<std::string> SwitchPropertyNames();

/// A property of the switch; absent when its file cannot be read or is not of the expected form.
/// Text is copied into the arena.
std::optional<PropertyValue> ReadSwitchProperty(const HostFiles& files, const BusSwitch& bus,
                                                std::string_view name, Arena& arena);

}  // namespace fernwick
