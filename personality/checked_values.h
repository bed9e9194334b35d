#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

#include "value/property_value.h"

namespace fernwick {

/// The names of all keys that the requirement checks read.
inline constexpr std::string_view CheckedKeyNames[] = {
    "Version",
    "Existing Min Version",
    "Existing Max Version",
    "Engineering Version",
    "Port Address",
    "RID",
    "MinBoardRevision",
    "MaxBoardRevision",
    "Port Silicon Vendor ID",
    "Port Silicon Device ID",
    "Port Silicon Revision",
    "Port OTP Revision",
    "Port UUID",
    "Ridge Silicon Vendor ID",
    "Ridge Silicon Device ID",
    "Ridge Silicon Revision",
    "Ridge UID",
    "Device Model Name",
    "Device Model ID",
    "Device Model Revision",
    "Firmware Mode",
};

/// A key that the requirement checks read from a personality or from a hardware record. It is made
/// of its name, and of another name it cannot be made: that does not compile.
class CheckedKey {
 public:
  consteval CheckedKey(const char* name) : place_(PlaceOf(name)) {  // NOLINT: a name is a key
    if (place_ == Count) NoCheckReadsThisKey();
  }

  /// The key of that name, exactly; nothing when no check reads it.
  static std::optional<CheckedKey> Named(std::string_view name);

  /// A literal.
  constexpr std::string_view Name() const { return CheckedKeyNames[place_]; }

 private:
  friend class CheckedValues;

  static constexpr std::size_t Count = std::size(CheckedKeyNames);

  constexpr explicit CheckedKey(std::size_t place) : place_(place) {}

  // Count where there is no such name.
  static constexpr std::size_t PlaceOf(std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(CheckedKeyNames, name) -
                                    std::begin(CheckedKeyNames));
  }

  // Defined nowhere: a constant expression cannot call it.
  static void NoCheckReadsThisKey();

  std::size_t place_;
};

/// Remembers which keys the checks read by their addresses: the records of a file share their keys,
/// mostly, and then nobody has to look at the text of one again. REQUIRES: each key of the records
/// that it is used for lives, in them or as a copy, as long as this does.
class CheckedKeyMemo {
 private:
  friend class CheckedValues;

  struct Slot {
    const void* address = nullptr;
    std::size_t place = 0;
  };

  // The number of names where no check reads the key.
  std::size_t PlaceOf(const DictionaryKey& key);

  std::array<Slot, 256> slots_;  // by address
};

/// The values of a record under the keys that the checks read. All are found in one pass over the
/// record: a check asks for up to 34 of them, often in vain, and the matcher has many pairs.
class CheckedValues {
 public:
  /// REQUIRES: `record` outlives this and does not change.
  CheckedValues(const Dictionary& record);  // NOLINT: what a check is given is a record

  /// The same, with the help of what `memo` remembers.
  CheckedValues(const Dictionary& record, CheckedKeyMemo& memo);

  /// The value of `key`, or null when it is absent. Valid as long as the record.
  const PropertyValue* Find(CheckedKey key) const {
    return (present_ >> key.place_ & 1) != 0 ? values_[key.place_] : nullptr;
  }

 private:
  static_assert(CheckedKey::Count <= 32);

  template <typename PlaceFinder>
  CheckedValues(const Dictionary& record, PlaceFinder placeOf);

  std::uint32_t present_ = 0;  // a bit for each value that is there; the other pointers are not set
  std::array<const PropertyValue*, CheckedKey::Count> values_;
};

}  // namespace fernwick
