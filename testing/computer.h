#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "registry/recorded_registry.h"
#include "testing/property_values.h"

namespace fernwick::testing {

/// A computer that is built entry by entry, for tests that describe their hardware. It
/// begins with the roots of both planes and "IODeviceTree:/options", all without properties.
class Computer {
 public:
  Computer();
  Computer(const Computer& other);
  Computer& operator=(const Computer&) = delete;

  /// The root of the device tree, which has the board's identity, and the entry below it that
  /// has the boot-time settings.
  RegistryEntry Board() const { return board_; }
  RegistryEntry Options() const { return options_; }

  /// The root of the service plane.
  RegistryEntry Services() const { return services_; }

  /// Sets a property of an entry. Returns the computer, for the next call.
  Computer& Set(RegistryEntry entry, std::string_view key, PropertyValue value);

  /// "board-id" with its zero byte, and "board-rev".
  Computer& SetBoard(std::string_view boardId, unsigned char boardRevision);

  /// Adds an entry to the service plane, as the last child of `parent`.
  RegistryEntry AddService(RegistryEntry parent, std::string_view name, std::string_view className,
                           const Record& properties);

  /// The same, of the two classes of controllers, below the root. A Thunderbolt controller needs
  /// a "UID".
  RegistryEntry AddPort(std::string_view name, const Record& properties);
  RegistryEntry AddThunderbolt(std::string_view name, const Record& properties);

  /// Declares that a class derives from another.
  Computer& Derive(std::string_view className, std::string_view superclass);

  /// Valid as long as the computer; a copy of a computer has a recording of its own.
  const Recording& Recorded() const { return recording_; }

 private:
  RegistryEntry Add(std::string_view plane, RegistryEntry parent, std::string_view name,
                    std::string_view className, const Record& properties);

  Recording recording_;
  std::vector<Record> properties_;  // of the entry with the same index
  RegistryEntry board_;
  RegistryEntry options_;
  RegistryEntry services_;
};

}  // namespace fernwick::testing
