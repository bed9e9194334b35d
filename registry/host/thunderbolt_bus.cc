// The routes of the switches make the tree: that of a parent lacks the last hop. Sorted by the
// number of hops parents come first, so one pass with a map of the switches so far finds them, and
// leaves out those without one. O(n log n).

#include "registry/host/thunderbolt_bus.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "registry/host/file_text.h"
#include "registry/host/limits.h"
#include "value/unicode/ascii.h"
#include "value/unicode/utf8.h"

namespace fernwick {
namespace {

constexpr char BusDirectory[] = "sys/bus/thunderbolt/devices/";

constexpr unsigned BitsOfHop = 8;

std::optional<std::string> ReadFile(const HostFiles& files, const BusSwitch& bus,
                                    const char* name) {
  return files.Read(BusDirectory + bus.name + "/" + name, MaxSystemFile);
}

// As the kernel writes numbers, so that no two names are those of one switch: without a leading
// zero, letters in lower case.
bool IsCanonical(std::string_view digits) {
  return (digits == "0" || !digits.starts_with('0')) &&
         std::ranges::none_of(digits, [](char c) { return c != ToLowerAscii(c); });
}

std::optional<BusSwitch> ParseName(const std::string& name) {
  const std::string_view text = name;
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto domainDigits = text.substr(0, dash);
  const auto routeDigits = text.substr(dash + 1);
  const auto domain = ParseDigits(domainDigits, 10);
  const auto route = ParseDigits(routeDigits, 16);
  if (!domain || !route || !IsCanonical(domainDigits) || !IsCanonical(routeDigits)) {
    return std::nullopt;
  }
  return BusSwitch{.name = name, .domain = *domain, .route = *route};
}

// The last hop is the highest byte that is not 0.
unsigned HopsOf(std::uint64_t route) {
  unsigned hops = 0;
  for (; route != 0; route >>= BitsOfHop) ++hops;
  return hops;
}

// REQUIRES: a route other than 0.
std::uint64_t WithoutLastHop(std::uint64_t route) {
  return route & ((std::uint64_t{1} << (BitsOfHop * (HopsOf(route) - 1))) - 1);
}

// The first eight bytes of a UUID as a little-endian number.
std::optional<std::uint64_t> ParseUuid(std::string_view text) {
  constexpr std::string_view Form = "01234567-89ab-cdef-0123-456789abcdef";
  constexpr unsigned DigitsOfNumber = 16;
  text = Trimmed(text);
  if (text.size() != Form.size()) return std::nullopt;
  std::uint64_t number = 0;
  unsigned digits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (Form[i] == '-' && text[i] == '-') continue;
    const int digit = HexDigitValue(text[i]);
    if (Form[i] == '-' || digit < 0) return std::nullopt;
    // The first digit of a byte is the high one.
    const unsigned shift = digits / 2 * 8 + (digits % 2 == 0 ? 4 : 0);
    if (digits < DigitsOfNumber) number |= static_cast<std::uint64_t>(digit) << shift;
    ++digits;
  }
  return number;
}

// A switch by the name of its directory; none when that is something else on the bus, such as a
// domain or a service of another computer, or has no unique id.
std::optional<BusSwitch> ReadSwitch(const HostFiles& files, const std::string& name) {
  auto bus = ParseName(name);
  if (!bus) return std::nullopt;
  const auto event = ReadFile(files, *bus, "uevent");
  if (!event || !HasLine(*event, "DEVTYPE=thunderbolt_device")) return std::nullopt;
  const auto uuid = ReadFile(files, *bus, "unique_id");
  const auto uid = uuid ? ParseUuid(*uuid) : std::nullopt;
  if (!uid) return std::nullopt;
  bus->uid = *uid;
  return bus;
}

// The two hexadecimal numbers of "MAJOR.MINOR".
std::optional<std::array<std::uint64_t, 2>> ParseVersion(std::string_view text) {
  text = Trimmed(text);
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos) return std::nullopt;
  const auto major = ParseDigits(text.substr(0, dot), 16);
  const auto minor = ParseDigits(text.substr(dot + 1), 16);
  if (!major || !minor) return std::nullopt;
  return std::array{*major, *minor};
}

struct Reader {
  const HostFiles& files;
  const BusSwitch& bus;
  Arena& arena;
};

using Value = std::optional<PropertyValue>;

Value Depth(const Reader& reader) {
  return HopsOf(reader.bus.route);
}

Value RouteString(const Reader& reader) {
  return reader.bus.route;
}

Value Uid(const Reader& reader) {
  return reader.bus.uid;
}

template <std::size_t Part>
Value Version(const Reader& reader) {
  const auto text = ReadFile(reader.files, reader.bus, "nvm_version");
  const auto version = text ? ParseVersion(*text) : std::nullopt;
  if (!version) return std::nullopt;
  return (*version)[Part];
}

Value ModelName(const Reader& reader) {
  const auto text = ReadFile(reader.files, reader.bus, "device_name");
  if (!text || FindInvalidText(*text) != npos) return std::nullopt;
  return reader.arena.Copy(WithoutLineEnd(*text));
}

Value NumberIn(const std::optional<std::string>& text) {
  const auto number = text ? ParseCNumber(*text) : std::nullopt;
  if (!number) return std::nullopt;
  return *number;
}

Value ModelId(const Reader& reader) {
  return NumberIn(ReadFile(reader.files, reader.bus, "device"));
}

// A number of the PCI function of a host: the link "domain0" leads into the function's directory.
Value PciNumber(const Reader& reader, const char* file) {
  if (reader.bus.route != 0) return std::nullopt;
  const auto domain = BusDirectory + ("domain" + std::to_string(reader.bus.domain));
  return NumberIn(reader.files.Read(domain + "/../" + file, MaxSystemFile));
}

Value VendorId(const Reader& reader) {
  return PciNumber(reader, "vendor");
}

Value DeviceId(const Reader& reader) {
  return PciNumber(reader, "device");
}

Value RevisionId(const Reader& reader) {
  return PciNumber(reader, "revision");
}

struct Property {
  std::string_view name;
  Value (*read)(const Reader& reader);
};

constexpr Property Properties[] = {
    {"Depth", Depth},
    {"Route String", RouteString},
    {"UID", Uid},
    {"Vendor ID", VendorId},
    {"Device ID", DeviceId},
    {"Revision ID", RevisionId},
    {"ROM Version", Version<0>},
    {"EEPROM Revision", Version<1>},
    {"Device Model Name", ModelName},
    {"Device Model ID", ModelId},
};

}  // namespace

std::vector<BusSwitch> ListSwitches(const HostFiles& files) {
  auto listing = files.List(BusDirectory);
  auto& names = listing.links;  // to the directories of the devices; those of a copy may be here
  names.insert(names.end(), listing.directories.begin(), listing.directories.end());
  std::vector<BusSwitch> found;
  for (const auto& name : names) {
    if (auto bus = ReadSwitch(files, name)) found.push_back(*std::move(bus));
  }
  std::ranges::sort(found, {}, [](const BusSwitch& bus) {
    return std::tuple(HopsOf(bus.route), bus.domain, bus.route);
  });
  std::vector<BusSwitch> switches;
  std::map<std::pair<std::uint64_t, std::uint64_t>, std::size_t> numbers;  // by domain and route
  for (auto& bus : found) {
    if (bus.route != 0) {
      const auto parent = numbers.find({bus.domain, WithoutLastHop(bus.route)});
      if (parent == numbers.end()) continue;
      bus.parent = parent->second;
    }
    numbers.emplace(std::pair(bus.domain, bus.route), switches.size());
    switches.push_back(std::move(bus));
  }
  return switches;
}

std::set<std::string> SwitchPropertyNames() {
  std::set<std::string> names;
  for (const auto& property : Properties) names.emplace(property.name);
  return names;
}

std::optional<PropertyValue> ReadSwitchProperty(const HostFiles& files, const BusSwitch& bus,
                                                std::string_view name, Arena& arena) {
  const auto* property = std::ranges::find(Properties, name, &Property::name);
  if (property == std::end(Properties)) return std::nullopt;
  return property->read({files, bus, arena});
}

}  // namespace fernwick
