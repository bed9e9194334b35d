#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "value/property_value.h"

namespace fernwick {

/// A handle of a registry entry or of an iterator over entries. 0 is the null handle: what every
/// operation returns when there is nothing to return. A handle stays valid as long as the registry,
/// whether or not it is released.
using RegistryEntry = std::uint32_t;

/// 0 is success, anything else a failure.
using RegistryStatus = std::int32_t;

/// The operation succeeded.
inline constexpr RegistryStatus RegistrySuccess = 0;

/// The property is absent or not of the requested kind.
inline constexpr auto RegistryNotFound = static_cast<RegistryStatus>(0xE00002F0);

/// The plane of the services, among them all controllers.
inline constexpr std::string_view ServicePlane = "IOService";

/// Bit of the options of `SearchProperty`: search the entries below, too.
inline constexpr std::uint32_t SearchRecursively = 1;

/// The computer's I/O registry: entries with a class and properties, linked in named planes. The
/// only access to the hardware; the live registry and a recorded one obey the same contract.
/// Synchronous, without side effects on the registry, used from one thread. No operation prints or
/// logs, and each accepts a handle of 0.
class Registry {
 public:
  virtual ~Registry() = default;

  /// The entry at "PLANE:/PATH", such as "IODeviceTree:/options"; "PLANE:/" is the plane's root. 0
  /// when there is none.
  virtual RegistryEntry LookupEntryByPath(std::string_view path) = 0;

  /// The entry's own property; empty when it has no such property or the entry is 0.
  virtual std::optional<PropertyValue> GetProperty(RegistryEntry entry, std::string_view key) = 0;

  /// The entry's own property if it has one. Otherwise, with SearchRecursively in `options`, that
  /// of the first entry below it in `plane` that has the key, depth-first in the plane's child
  /// order.
  virtual std::optional<PropertyValue> SearchProperty(RegistryEntry entry, std::string_view plane,
                                                      std::string_view key,
                                                      std::uint32_t options) = 0;

  /// Status 0 and the entry's parent in `plane`. Another status, and `parent` 0, when it has none.
  virtual RegistryStatus GetParentEntry(RegistryEntry entry, std::string_view plane,
                                        RegistryEntry& parent) = 0;

  /// An iterator over every entry of the service plane whose class is, or derives from,
  /// `className`, in the registry's own order. Callers proceed only when the status is 0 and the
  /// iterator is not 0.
  virtual RegistryStatus MatchServicesByClass(std::string_view className,
                                              RegistryEntry& iterator) = 0;

  /// Rewinds the iterator to its first entry.
  virtual void ResetIterator(RegistryEntry iterator) = 0;

  /// The next entry; 0 when the iteration is exhausted.
  virtual RegistryEntry NextEntry(RegistryEntry iterator) = 0;

  /// Whether the entry's class is, or derives from, `className`.
  virtual bool ConformsToClass(RegistryEntry entry, std::string_view className) = 0;

  /// Releases the handle of an entry or iterator; 0 does nothing.
  virtual void ReleaseEntry(RegistryEntry handle) = 0;
};

}  // namespace fernwick
